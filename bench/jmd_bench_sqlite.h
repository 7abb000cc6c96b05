// The JMD in SQLite, for comparison in the JMD benchmark: the four tables
// with a unique NOCASE index on each key column (PrinterName, TaskId,
// PrinterId) and a NOCASE index on the job's FormName (jobs repeat it per
// step), imported with the JMD reader in one transaction and dumped in the
// JMD's order and line format.
#pragma once

#include <sqlite3.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "jmd/jmd_reader.h"
#include "jmd/jmd_writer.h"

namespace px::bench {

class SqliteJmd {
 public:
  explicit SqliteJmd(const std::string& path) {
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) std::abort();
    run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;");
    for (int slot = 0; slot < jmd::kTableCount; ++slot) create_table(jmd::table_schema(slot));
    lookup_ = prepare("SELECT * FROM job WHERE FormName = ?1 COLLATE NOCASE ORDER BY rowid");
  }
  ~SqliteJmd() { close(); }

  void close() {
    for (sqlite3_stmt* s : inserts_) sqlite3_finalize(s);
    for (sqlite3_stmt* s : selects_) sqlite3_finalize(s);
    sqlite3_finalize(lookup_);
    inserts_.clear();
    selects_.clear();
    lookup_ = nullptr;
    if (db_) sqlite3_close(db_);
    db_ = nullptr;
  }

  // Reads the JMD at path into the tables; false when a row is refused.
  bool import(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (!file) return false;
    run("BEGIN");
    jmd::LineSource lines(file);
    Quiet quiet;
    bool ok = jmd::read_jmd(lines, path, quiet, [&](int slot, std::span<const char> record) {
      return insert(slot, record);
    });
    std::fclose(file);
    run(ok ? "COMMIT" : "ROLLBACK");
    return ok;
  }

  // Writes the JMD (header and records, sorted) to path.
  bool dump(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (!file) return false;
    std::fputs("# Plexar Job Management Database (JMD) file\n", file);
    std::string line;
    for (int slot = 0; slot < jmd::kTableCount; ++slot) {
      const jmd::TableSchema& schema = jmd::table_schema(slot);
      std::vector<char> record(schema.record_size, '\0');
      sqlite3_stmt* select = selects_[static_cast<size_t>(slot)];
      while (sqlite3_step(select) == SQLITE_ROW) {
        fill(select, schema, record);
        line.assign(schema.line_key);
        jmd::append_fields(line, schema, record);
        line += '\n';
        std::fwrite(line.data(), 1, line.size(), file);
      }
      sqlite3_reset(select);
    }
    return std::fclose(file) == 0;
  }

  // Reads every job row of one form; the number of rows.
  long lookup_form(const std::string& name) {
    const jmd::TableSchema& schema = jmd::table_schema(jmd::kJobTable);
    std::vector<char> record(schema.record_size, '\0');
    sqlite3_bind_text(lookup_, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    long rows = 0;
    while (sqlite3_step(lookup_) == SQLITE_ROW) {
      fill(lookup_, schema, record);
      ++rows;
    }
    sqlite3_reset(lookup_);
    return rows;
  }

 private:
  // Creates the table of a JMD table and its index, and prepares its insert
  // and its select in the JMD's order.
  void create_table(const jmd::TableSchema& schema) {
    std::string columns, marks;
    for (size_t i = 1; i < schema.fields.size(); ++i) {
      columns += (i > 1 ? ", " : "") + std::string(schema.fields[i].name);
      marks += i > 1 ? ", ?" : "?";
    }
    std::string name(schema.name);
    run("CREATE TABLE " + name + " (" + columns + ")");
    std::string unique = schema.unique_column.empty() ? "" : "UNIQUE ";
    run("CREATE " + unique + "INDEX " + name + "_key ON " + name + " (" +
        std::string(schema.sort_column) + " COLLATE NOCASE)");
    inserts_.push_back(prepare("INSERT INTO " + name + " VALUES (" + marks + ")"));
    selects_.push_back(prepare("SELECT * FROM " + name + " ORDER BY " +
                               std::string(schema.sort_column) + " COLLATE NOCASE, rowid"));
  }

  class Quiet : public jmd::Reporter {
   public:
    void message(int, const std::vector<std::string>&) override {}
    void trace(std::string_view) override {}
  };

  void run(const std::string& sql) {
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::abort();
  }
  sqlite3_stmt* prepare(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) std::abort();
    return statement;
  }

  bool insert(int slot, std::span<const char> record) {
    const jmd::TableSchema& schema = jmd::table_schema(slot);
    sqlite3_stmt* insert = inserts_[static_cast<size_t>(slot)];
    for (size_t i = 1; i < schema.fields.size(); ++i) {
      const jmd::FieldDef& field = schema.fields[i];
      int column = static_cast<int>(i);
      if (field.type == jmd::kTypeInteger || field.type == jmd::kTypeLong) {
        sqlite3_bind_int(insert, column, jmd::int_field(record, field));
      } else if (field.type == jmd::kTypeCharacter) {
        char c = jmd::char_field(record, field);
        sqlite3_bind_text(insert, column, &c, c ? 1 : 0, SQLITE_TRANSIENT);
      } else {
        std::string_view text = jmd::string_field(record, field);
        sqlite3_bind_text(insert, column, text.data(), static_cast<int>(text.size()),
                          SQLITE_TRANSIENT);
      }
    }
    bool ok = sqlite3_step(insert) == SQLITE_DONE;
    sqlite3_reset(insert);
    return ok;
  }

  static void fill(sqlite3_stmt* row, const jmd::TableSchema& schema, std::span<char> record) {
    for (size_t i = 1; i < schema.fields.size(); ++i) {
      const jmd::FieldDef& field = schema.fields[i];
      int column = static_cast<int>(i - 1);
      if (field.type == jmd::kTypeInteger || field.type == jmd::kTypeLong) {
        jmd::set_int_field(record, field, sqlite3_column_int(row, column));
      } else {
        const char* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
        std::string_view value(text ? text : "",
                               static_cast<size_t>(sqlite3_column_bytes(row, column)));
        jmd::set_field_text(record, field, value);
      }
    }
  }

  sqlite3* db_ = nullptr;
  std::vector<sqlite3_stmt*> inserts_;
  std::vector<sqlite3_stmt*> selects_;
  sqlite3_stmt* lookup_ = nullptr;
};

}  // namespace px::bench
