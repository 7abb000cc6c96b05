// The table engine on a JMD-sized job table: add N rows of a 328-byte record
// with a unique case-insensitive key column (type 14, ~30 characters) and an
// integer column, then walk the key's index in order reading every row. The
// same work in SQLite (a NOCASE unique index, one transaction, a sorted
// select) runs beside it when SQLite is built in.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "common/file_util.h"
#include "jmd/engine/table.h"
#include "jmd/engine/vlist.h"

#ifdef PX_HAVE_SQLITE
#include <sqlite3.h>
#endif

namespace {

using px::engine::ColumnDef;
using px::engine::Query;
using px::engine::Table;

struct Job {
  char deleted;
  char form[52];
  char printer[10];
  char mdf[82];
  char preamble[82];
  int32_t macro;
  char task[10];
  char comment[86];
};
static_assert(sizeof(Job) == 328);

const ColumnDef kJobColumns[] = {
    {"Deleted", offsetof(Job, deleted), 1, px::engine::kTypeChar, 0, nullptr},
    {"FormName", offsetof(Job, form), 52, px::engine::kTypeTextNoCase, px::engine::kUniqueKey, nullptr},
    {"PrinterName", offsetof(Job, printer), 10, px::engine::kTypeTextNoCase, 0, nullptr},
    {"MDFName", offsetof(Job, mdf), 82, px::engine::kTypeTextNoCase, 0, nullptr},
    {"PreambleName", offsetof(Job, preamble), 82, px::engine::kTypeTextNoCase, 0, nullptr},
    {"MacroNum", offsetof(Job, macro), 4, px::engine::kTypeInt, 0, nullptr},
    {"TaskId", offsetof(Job, task), 10, px::engine::kTypeTextNoCase, 0, nullptr},
    {"Comment", offsetof(Job, comment), 82, px::engine::kTypeTextNoCase, 0, nullptr},
};

// The job table as the JMD opens it: no column indexed or unique; the save's
// query builds the FormName index.
const ColumnDef kPlainJobColumns[] = {
    kJobColumns[0],
    {"FormName", offsetof(Job, form), 52, px::engine::kTypeTextNoCase, 0, nullptr},
    kJobColumns[2], kJobColumns[3], kJobColumns[4], kJobColumns[5], kJobColumns[6], kJobColumns[7],
};

// Row i's key: scattered, so that neither the adds nor the walk go in file
// order, or in order as in a JMD file that was saved before.
void make_key(char* out, size_t size, long i, long n, bool sorted) {
  std::snprintf(out, size, "Form_%08ld_abcdefghijklmnop", sorted ? i : (i * 7919) % n);
}

Job make_job(long i, long n, bool sorted = false) {
  Job job{};
  job.deleted = 'F';
  make_key(job.form, sizeof job.form, i, n, sorted);
  std::strcpy(job.printer, "LASER1");
  std::snprintf(job.mdf, sizeof job.mdf, "/forms/mdf/form%06ld.mdf", i);
  std::strcpy(job.preamble, "*");
  job.macro = static_cast<int32_t>(i);
  std::strcpy(job.task, "TASK1");
  std::strcpy(job.comment, "generated for the benchmark");
  return job;
}

double ms_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void BM_EngineLoadAndWalk(benchmark::State& state) {
  const long n = state.range(0);
  std::vector<Job> jobs;
  for (long i = 0; i < n; ++i) jobs.push_back(make_job(i, n));
  std::string dir = px::temp_directory();
  double load_ms = 0, walk_ms = 0;
  for ([[maybe_unused]] auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    std::string name = dir + "/pxbench" + std::to_string(getpid()) + ".tmp";
    Table table = Table::open(name, sizeof(Job), px::engine::kOpenNew, kJobColumns);
    for (const Job& job : jobs) {
      if (table.add_row(px::engine::record_bytes(job)) == 0) state.SkipWithError("add failed");
    }
    load_ms += ms_since(start);
    start = std::chrono::steady_clock::now();
    Query query = Query::start(table, 1, std::nullopt, false);
    Job job;
    long rows = 0, sum = 0;
    for (long row = query.next(); row != 0; row = query.next()) {
      table.get_row(row, px::engine::record_bytes(job));
      sum += job.macro;
      ++rows;
    }
    if (rows != n) state.SkipWithError("walk lost rows");
    benchmark::DoNotOptimize(sum);
    query.stop();
    table.close();
    walk_ms += ms_since(start);
  }
  state.counters["load_ms"] = load_ms / static_cast<double>(state.iterations());
  state.counters["walk_ms"] = walk_ms / static_cast<double>(state.iterations());
  auto io = px::engine::block_cache::counters();
  state.counters["reads"] = static_cast<double>(io.reads) / static_cast<double>(state.iterations());
  state.counters["maps"] = static_cast<double>(io.maps) / static_cast<double>(state.iterations());
  state.counters["writes"] = static_cast<double>(io.writes) / static_cast<double>(state.iterations());
  px::engine::block_cache::reset_counters();
}
BENCHMARK(BM_EngineLoadAndWalk)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EngineLoadAndWalk)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

// The JMD's own path for its job table: rows added in key order without an
// index, then a query that builds the index and walks it.
void BM_EngineSortedLoadIndexAtQuery(benchmark::State& state) {
  const long n = state.range(0);
  std::vector<Job> jobs;
  for (long i = 0; i < n; ++i) jobs.push_back(make_job(i, n, true));
  std::string name = px::temp_directory() + "/pxbench" + std::to_string(getpid()) + ".tmp";
  for ([[maybe_unused]] auto _ : state) {
    Table table = Table::open(name, sizeof(Job), px::engine::kOpenNew, kPlainJobColumns);
    for (const Job& job : jobs) table.add_row(px::engine::record_bytes(job));
    Query query = Query::start(table, 1, std::nullopt, false);
    Job job;
    long rows = 0;
    for (long row = query.next(); row != 0; row = query.next()) {
      table.get_row(row, px::engine::record_bytes(job));
      ++rows;
    }
    if (rows != n) state.SkipWithError("walk lost rows");
  }
  auto io = px::engine::block_cache::counters();
  state.counters["reads"] = static_cast<double>(io.reads) / static_cast<double>(state.iterations());
  state.counters["maps"] = static_cast<double>(io.maps) / static_cast<double>(state.iterations());
  px::engine::block_cache::reset_counters();
}
BENCHMARK(BM_EngineSortedLoadIndexAtQuery)->Arg(100000)->Unit(benchmark::kMillisecond);

#ifdef PX_HAVE_SQLITE
void BM_SqliteLoadAndWalk(benchmark::State& state) {
  const long n = state.range(0);
  std::vector<Job> jobs;
  for (long i = 0; i < n; ++i) jobs.push_back(make_job(i, n));
  std::string name = px::temp_directory() + "/pxbench" + std::to_string(getpid()) + ".db";
  double load_ms = 0, walk_ms = 0;
  for ([[maybe_unused]] auto _ : state) {
    std::remove(name.c_str());
    auto start = std::chrono::steady_clock::now();
    sqlite3* db = nullptr;
    sqlite3_open(name.c_str(), &db);
    sqlite3_exec(db,
                 "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;"
                 "CREATE TABLE jobs(form TEXT, macro INTEGER, record BLOB);"
                 "CREATE UNIQUE INDEX jobs_form ON jobs(form COLLATE NOCASE);",
                 nullptr, nullptr, nullptr);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO jobs VALUES(?, ?, ?)", -1, &insert, nullptr);
    for (const Job& job : jobs) {
      sqlite3_bind_text(insert, 1, job.form, -1, SQLITE_STATIC);
      sqlite3_bind_int(insert, 2, job.macro);
      sqlite3_bind_blob(insert, 3, &job, sizeof job, SQLITE_STATIC);
      if (sqlite3_step(insert) != SQLITE_DONE) state.SkipWithError("insert failed");
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    load_ms += ms_since(start);
    start = std::chrono::steady_clock::now();
    sqlite3_stmt* select = nullptr;
    sqlite3_prepare_v2(db, "SELECT form, macro, record FROM jobs ORDER BY form COLLATE NOCASE",
                       -1, &select, nullptr);
    long rows = 0, sum = 0;
    Job job;
    while (sqlite3_step(select) == SQLITE_ROW) {
      std::memcpy(&job, sqlite3_column_blob(select, 2), sizeof job);
      sum += job.macro;
      ++rows;
    }
    if (rows != n) state.SkipWithError("select lost rows");
    benchmark::DoNotOptimize(sum);
    sqlite3_finalize(select);
    sqlite3_close(db);
    walk_ms += ms_since(start);
  }
  std::remove(name.c_str());
  state.counters["load_ms"] = load_ms / static_cast<double>(state.iterations());
  state.counters["walk_ms"] = walk_ms / static_cast<double>(state.iterations());
}
BENCHMARK(BM_SqliteLoadAndWalk)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SqliteLoadAndWalk)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);
#endif

}  // namespace
