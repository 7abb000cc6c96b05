// Test helpers for the table engine: a printer-like record, its columns, a
// fixture that gives every test its own directory and message log, and the
// rows a query yields.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

#include "common/ini_profile.h"
#include "jmd/engine/engine_test_log.h"
#include "jmd/engine/table.h"
#include "tests/support/test_dir.h"

namespace px::engine {

struct Printer {
  char deleted;
  char name[10];
  char id[9];
  int32_t priority;
  char comment[40];
};
static_assert(sizeof(Printer) == 64);

inline Printer printer(const char* name, const char* id, int32_t priority) {
  Printer p{};
  p.deleted = 'F';
  std::strncpy(p.name, name, sizeof p.name - 1);
  std::strncpy(p.id, id, sizeof p.id - 1);
  p.priority = priority;
  std::strcpy(p.comment, "note");
  return p;
}

// Deleted, PrinterName (unique), PrinterId, Priority, Comment; Deleted is
// indexed at open when asked.
inline std::span<const ColumnDef> printer_columns(bool deleted_indexed = false) {
  static const ColumnDef plain[] = {
      {"Deleted", offsetof(Printer, deleted), 1, kTypeChar, 0, nullptr},
      {"PrinterName", offsetof(Printer, name), 10, kTypeTextNoCase, kUniqueKey, nullptr},
      {"PrinterId", offsetof(Printer, id), 9, kTypeTextNoCase, 0, nullptr},
      {"Priority", offsetof(Printer, priority), 4, kTypeLong, 0, nullptr},
      {"Comment", offsetof(Printer, comment), 40, kTypeTextNoCase, 0, nullptr},
  };
  static const ColumnDef indexed[] = {
      {"Deleted", offsetof(Printer, deleted), 1, kTypeChar, kIndexAtOpen, nullptr},
      plain[1], plain[2], plain[3], plain[4],
  };
  return deleted_indexed ? std::span<const ColumnDef>(indexed) : std::span<const ColumnDef>(plain);
}

class EngineTest : public ::testing::Test {
 protected:
  EngineTest() {
    close_engine_trace();
    ini::set_file(dir_.write("engine.ini",
                             "[Messages]\n"
                             "Msg357=30 Table @P1 could not be used.\n"
                             "Msg370=30 Table @P1 already has a row with this @P2 value.\n"
                             "Msg385=30 No room to open table @P1 .\n"));
    set_engine_directory(dir_.path());
  }
  ~EngineTest() override { set_engine_directory(""); }

  Table open_printers(bool deleted_indexed = false) {
    return Table::open("printers.tmp", sizeof(Printer), kOpenNew, printer_columns(deleted_indexed));
  }

  TestDir dir_;
  MessageCapture log_{dir_};
};

// Every row a query over column yields, in order.
inline std::vector<long> rows_of(Table& t, int column, std::optional<Value> bound = std::nullopt,
                                 bool exact = false) {
  std::vector<long> rows;
  Query q = Query::start(t, column, bound, exact);
  if (!q) return {-1};
  for (long row = q.next(); row != 0 && rows.size() < 100000; row = q.next()) rows.push_back(row);
  return rows;
}

}  // namespace px::engine
