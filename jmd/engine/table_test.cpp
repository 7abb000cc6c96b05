#include "jmd/engine/table.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "common/ini_profile.h"
#include "jmd/engine/engine_test_log.h"
#include "jmd/engine/table_test_support.h"
#include "tests/support/test_dir.h"

namespace px::engine {
namespace {

bool file_exists(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0;
}

TEST(IndexKeys, StringHashRotatesInBitThree) {
  EXPECT_EQ(string_hash("ABCD", false), 0x44434241u);
  EXPECT_EQ(string_hash("ABCDE", false), 0x888684C7u);  // old bit 3 clear
  EXPECT_EQ(string_hash("IBCDE", false), 0x888684D6u);  // old bit 3 set
  EXPECT_EQ(string_hash("abcd", true), string_hash("ABCD", true));
  EXPECT_EQ(string_hash("abcd", true), 0x64636261u);
  EXPECT_NE(string_hash("abcd", false), string_hash("ABCD", false));
  EXPECT_EQ(string_hash(std::string_view("AB\0CD", 5), false), string_hash("AB", false));
  EXPECT_EQ(string_hash("", false), 0u);
}

TEST(IndexKeys, EachTypeFormsItsKey) {
  auto key = [](int32_t type, auto value) {
    return index_key(type, reinterpret_cast<const std::byte*>(&value), sizeof value);
  };
  EXPECT_EQ(key(kTypeInt, int32_t{-5}), -5);
  EXPECT_EQ(key(kTypeShort, int16_t{-2}), -2);
  EXPECT_EQ(key(kTypeUnsignedShort, uint16_t{0xFFFF}), 65535);
  EXPECT_EQ(key(kTypeChar, int8_t{-1}), -1);
  EXPECT_EQ(key(kTypeUnsignedChar, uint8_t{255}), 255);
  EXPECT_EQ(key(kTypeDouble, 1.5), std::bit_cast<int32_t>(1.5f));
  EXPECT_EQ(key(kTypeTextNoCase, int32_t{12345}), 0);
  EXPECT_FALSE(key(16, int32_t{1}));
  EXPECT_FALSE(key(0, int32_t{1}));
  char text[8] = "abcd";
  EXPECT_EQ(index_key(kTypeStringNoCase, reinterpret_cast<const std::byte*>(text), 8),
            static_cast<int32_t>(0x64636261u));
  EXPECT_EQ(index_key(kTypeString, reinterpret_cast<const std::byte*>(text), 2),
            static_cast<int32_t>(string_hash("ab", false)));
}

class TableTest : public EngineTest {};

TEST_F(TableTest, AddGetAndTheHeaderRow) {
  Table t = open_printers();
  ASSERT_TRUE(t);
  Printer header{};
  ASSERT_TRUE(t.get_row(0, record_bytes(header)));  // an empty table has its header too
  EXPECT_EQ(header.deleted, 0);
  EXPECT_EQ(t.add_row(record_bytes(printer("P1", "ID1", 5))), 1);
  EXPECT_EQ(t.add_row(record_bytes(printer("P2", "ID2", 6))), 2);
  EXPECT_EQ(t.add_row(record_bytes(printer("P3", "ID1", 7))), 3);
  EXPECT_EQ(t.add_row(record_bytes(printer("P4", "ID1", 7)), 8), 0);  // only append
  EXPECT_EQ(t.row_count(), 3);
  Printer p{};
  ASSERT_TRUE(t.get_row(2, record_bytes(p)));
  EXPECT_STREQ(p.name, "P2");
  EXPECT_EQ(p.priority, 6);
  ASSERT_TRUE(t.get_row(0, record_bytes(p)));
  int32_t count = 0;
  std::memcpy(&count, &p, 4);
  EXPECT_EQ(count, 3);
  log_.clear();
  EXPECT_FALSE(t.get_row(4, record_bytes(p)));
  EXPECT_EQ(log_.text(), "");  // silently
  EXPECT_EQ(t.find_column("PrinterId"), 2);
  EXPECT_EQ(t.find_column("printerid"), -1);
  EXPECT_TRUE(t.dirty());
  EXPECT_TRUE(t.flush());
  EXPECT_FALSE(t.dirty());
}

TEST_F(TableTest, UniqueKeyRefusedWithoutRegardToCaseLeavesEverythingAsBefore) {
  Table t = open_printers(/*deleted_indexed=*/true);
  ASSERT_TRUE(t);
  ASSERT_EQ(t.add_row(record_bytes(printer("LASER", "A", 1))), 1);
  ASSERT_EQ(t.add_row(record_bytes(printer("ink", "B", 2))), 2);
  log_.clear();
  EXPECT_EQ(t.add_row(record_bytes(printer("laser", "C", 3))), 0);
  EXPECT_TRUE(log_.contains("[-370]")) << log_.text();
  EXPECT_TRUE(log_.contains(t.name())) << log_.text();
  EXPECT_TRUE(log_.contains("PrinterName")) << log_.text();
  EXPECT_EQ(t.row_count(), 2);
  // Column 0's index was updated before the refusal and is rolled back.
  EXPECT_EQ(rows_of(t, 0), (std::vector<long>{1, 2}));
  EXPECT_EQ(rows_of(t, 1), (std::vector<long>{2, 1}));  // ink, LASER
  // The refused record's row number is given to the next add.
  EXPECT_EQ(t.add_row(record_bytes(printer("laser2", "C", 3))), 3);
  Printer p{};
  ASSERT_TRUE(t.get_row(3, record_bytes(p)));
  EXPECT_STREQ(p.name, "laser2");
}

TEST_F(TableTest, UpdateKeepsIndexesInStepAndRefusesDuplicates) {
  Table t = open_printers();
  ASSERT_EQ(t.add_row(record_bytes(printer("B", "X", 1))), 1);
  ASSERT_EQ(t.add_row(record_bytes(printer("C", "X", 2))), 2);
  ASSERT_EQ(t.add_row(record_bytes(printer("D", "Y", 3))), 3);
  ASSERT_TRUE(t.add_index(2));
  EXPECT_TRUE(t.update_row(2, record_bytes(printer("A", "X", 9))));
  EXPECT_EQ(rows_of(t, 1), (std::vector<long>{2, 1, 3}));
  EXPECT_EQ(rows_of(t, 2), (std::vector<long>{1, 2, 3}));
  EXPECT_TRUE(t.update_row(1, record_bytes(printer("B", "Z", 1))));
  EXPECT_EQ(rows_of(t, 2), (std::vector<long>{2, 3, 1}));
  log_.clear();
  EXPECT_FALSE(t.update_row(3, record_bytes(printer("b", "Y", 3))));
  EXPECT_TRUE(log_.contains("[-370]"));
  // The refused row is as it was, still listed under its own key.
  EXPECT_EQ(rows_of(t, 1), (std::vector<long>{2, 1, 3}));
  Printer kept{};
  ASSERT_TRUE(t.get_row(3, record_bytes(kept)));
  EXPECT_STREQ(kept.name, "D");
  EXPECT_FALSE(t.update_row(4, record_bytes(printer("Q", "Y", 3))));
  EXPECT_FALSE(t.update_row(0, record_bytes(printer("Q", "Y", 3))));
}

// A refused update changes nothing: the row reads, lists and updates as
// before, in the indexes of the columns it was to change (Deleted, before
// the refusing unique name, and PrinterId, after it) and the others.
TEST_F(TableTest, ARefusedUpdateLeavesTheRowAsItWas) {
  Table t = open_printers(true);
  ASSERT_EQ(t.add_row(record_bytes(printer("A", "X", 1))), 1);
  ASSERT_EQ(t.add_row(record_bytes(printer("B", "Y", 2))), 2);
  ASSERT_TRUE(t.add_index(2));
  ASSERT_TRUE(t.add_index(3));
  Printer changed = printer("a", "W", 2);
  changed.deleted = 'T';
  log_.clear();
  EXPECT_FALSE(t.update_row(2, record_bytes(changed)));
  EXPECT_TRUE(log_.contains("[-370]"));
  Printer p{};
  ASSERT_TRUE(t.get_row(2, record_bytes(p)));
  EXPECT_STREQ(p.name, "B");
  EXPECT_STREQ(p.id, "Y");
  EXPECT_EQ(p.deleted, 'F');
  for (int c = 0; c < 4; ++c) {
    EXPECT_EQ(rows_of(t, c), (std::vector<long>{1, 2})) << c;
  }
  EXPECT_EQ(rows_of(t, 1, Value("b"), true), (std::vector<long>{2}));
  EXPECT_EQ(rows_of(t, 2, Value("W"), true), (std::vector<long>{}));
  EXPECT_TRUE(t.update_row(2, record_bytes(printer("C", "W", 2))));
  EXPECT_EQ(rows_of(t, 2), (std::vector<long>{2, 1}));
}

TEST_F(TableTest, DeletingFromColumnOneHidesTheRowFromThatIndexOnly) {
  Table t = open_printers();
  ASSERT_EQ(t.add_row(record_bytes(printer("A", "X", 1))), 1);
  ASSERT_EQ(t.add_row(record_bytes(printer("B", "X", 2))), 2);
  ASSERT_TRUE(t.add_index(2));
  EXPECT_TRUE(t.delete_index_row(1, 1));
  EXPECT_EQ(rows_of(t, 1), (std::vector<long>{2}));
  EXPECT_EQ(rows_of(t, 2), (std::vector<long>{1, 2}));
  EXPECT_EQ(t.row_count(), 2);
  EXPECT_FALSE(t.delete_index_row(1, 1));  // already gone
  // The name is free again for a new row.
  EXPECT_EQ(t.add_row(record_bytes(printer("a", "X", 3))), 3);
  EXPECT_TRUE(t.insert_index_row(2, 4));  // no index on column 4: nothing to do
  EXPECT_FALSE(t.insert_index_row(9, 1));
}

TEST_F(TableTest, TheChangeCountMovesWithEveryChangeAndNothingElse) {
  Table t = open_printers();
  ASSERT_EQ(t.add_row(record_bytes(printer("A", "X", 1))), 1);
  uint64_t after_add = t.change_count();
  EXPECT_GT(after_add, 0u);
  // Reads, queries and index builds change no row.
  Printer read{};
  ASSERT_TRUE(t.get_row(1, record_bytes(read)));
  ASSERT_TRUE(t.add_index(2));
  EXPECT_TRUE(Query::start(t, 1, std::nullopt, false));
  EXPECT_EQ(t.change_count(), after_add);
  ASSERT_TRUE(t.update_row(1, record_bytes(printer("A", "Y", 1))));
  uint64_t after_update = t.change_count();
  EXPECT_GT(after_update, after_add);
  ASSERT_TRUE(t.delete_index_row(1, 1));
  EXPECT_GT(t.change_count(), after_update);
  uint64_t after_delete = t.change_count();
  EXPECT_FALSE(t.delete_index_row(1, 1));  // refused: nothing changed
  EXPECT_EQ(t.change_count(), after_delete);
}

TEST_F(TableTest, IndexAddAcceptsTheColumnCountAndIndexFilesComeAndGo) {
  Table t = open_printers();
  const int count = t.column_count();
  EXPECT_TRUE(t.add_index(count));  // empty table: no key has to be formed
  EXPECT_TRUE(t.has_index(count));
  EXPECT_TRUE(t.drop_index(count));
  EXPECT_FALSE(t.add_index(count + 1));
  EXPECT_FALSE(t.add_index(-1));
  EXPECT_TRUE(log_.contains("[-357]"));
  ASSERT_EQ(t.add_row(record_bytes(printer("A", "X", 1))), 1);
  EXPECT_FALSE(t.add_index(1));  // the unique column was indexed by the add
  EXPECT_FALSE(t.add_index(count));  // a row's key cannot be formed
  std::string index_file = t.index_file_name(3);
  EXPECT_EQ(index_file.substr(index_file.size() - 4), ".i03");
  ASSERT_TRUE(t.add_index(3));
  EXPECT_TRUE(t.has_index(3));
  EXPECT_TRUE(t.drop_index(3));
  EXPECT_FALSE(t.drop_index(3));
  // A created table's files have no name while it is open: a killed process
  // leaves nothing behind.
  std::string table_file = t.name();
  std::string unique_index = t.index_file_name(1);
  EXPECT_FALSE(file_exists(table_file));
  EXPECT_FALSE(file_exists(unique_index));
  EXPECT_FALSE(file_exists(index_file));
  EXPECT_TRUE(t.close());
  EXPECT_FALSE(file_exists(table_file));
  EXPECT_FALSE(file_exists(unique_index));
}

TEST_F(TableTest, OpenChecksItsArgumentsAndThePoolOfTen) {
  EXPECT_FALSE(Table::open("tiny.tmp", 3, kOpenNew, printer_columns()));
  EXPECT_TRUE(log_.contains("[-357]"));
  EXPECT_FALSE(Table::open("short.tmp", 20, kOpenNew, printer_columns()));  // columns past the end
  static const ColumnDef narrow[] = {{"Real", 0, 4, kTypeDouble, 0, nullptr}};
  EXPECT_FALSE(Table::open("narrow.tmp", 16, kOpenNew, narrow));  // a double in 4 bytes
  std::vector<Table> tables;
  for (int i = 0; i < 10; ++i) {
    tables.push_back(Table::open("t" + std::to_string(i) + ".tmp", 64, kOpenNew, printer_columns()));
    ASSERT_TRUE(tables.back()) << i;
  }
  log_.clear();
  EXPECT_FALSE(Table::open("eleven.tmp", 64, kOpenNew, printer_columns()));
  EXPECT_TRUE(log_.contains("[-385]"));
  tables.pop_back();
  EXPECT_TRUE(Table::open("eleven.tmp", 64, kOpenNew, printer_columns()));
}

TEST_F(TableTest, ReopenedTableKeepsItsRows) {
  {
    Table t = Table::open("kept.tmp", 64, kOpenCreateIfMissing, printer_columns());
    ASSERT_TRUE(t);
    ASSERT_EQ(t.add_row(record_bytes(printer("A", "X", 1))), 1);
    ASSERT_EQ(t.add_row(record_bytes(printer("B", "X", 2))), 2);
  }
  Table t = Table::open("kept.tmp", 64, kOpenCreateIfMissing, printer_columns());
  ASSERT_TRUE(t);
  EXPECT_EQ(t.row_count(), 2);
  EXPECT_EQ(rows_of(t, 1), (std::vector<long>{1, 2}));
  EXPECT_EQ(t.add_row(record_bytes(printer("a", "X", 1))), 0);
}

TEST_F(TableTest, TypesOrderByTheirKeys) {
  struct Numbers {
    int32_t signed_value;
    uint32_t unsigned_value;
    double real;
    char text[12];
    char custom[4];
  };
  static const ColumnDef columns[] = {
      {"Signed", offsetof(Numbers, signed_value), 4, kTypeInt, 0, nullptr},
      {"Unsigned", offsetof(Numbers, unsigned_value), 4, kTypeUnsigned, 0, nullptr},
      {"Real", offsetof(Numbers, real), 8, kTypeDouble, 0, nullptr},
      {"Hashed", offsetof(Numbers, text), 12, kTypeString, kUniqueKey, nullptr},
      {"Custom", offsetof(Numbers, custom), 4, kTypeCustom, 0,
       [](const void* a, const void* b) {  // descending by the first byte
         return static_cast<int>(*static_cast<const uint8_t*>(b)) -
                static_cast<int>(*static_cast<const uint8_t*>(a));
       }},
  };
  Table t = Table::open("numbers.tmp", sizeof(Numbers), kOpenNew, columns);
  ASSERT_TRUE(t);
  Numbers rows[] = {{-1, 0xFFFFFFFFu, 1.00000001, "abc", {3}},
                    {5, 1, 1.00000002, "ABC", {9}},
                    {0, 7, -2.5, "b", {1}}};
  for (const Numbers& n : rows) ASSERT_NE(t.add_row(record_bytes(n)), 0);
  EXPECT_EQ(rows_of(t, 0), (std::vector<long>{1, 3, 2}));
  EXPECT_EQ(rows_of(t, 1), (std::vector<long>{2, 3, 1}));
  EXPECT_EQ(rows_of(t, 2), (std::vector<long>{3, 1, 2}));  // equal as floats, settled as doubles
  EXPECT_EQ(rows_of(t, 4), (std::vector<long>{2, 1, 3}));
  Numbers again = {1, 1, 1, "abc", {0}};
  EXPECT_EQ(t.add_row(record_bytes(again)), 0);  // type 11 is case-sensitive: "abc" taken
  std::memcpy(again.text, "Abc", 4);
  EXPECT_EQ(t.add_row(record_bytes(again)), 4);
}

TEST_F(TableTest, TraceLinesOfOpenAddGetAndQuery) {
  close_engine_trace();
  std::string trace = dir_.file("gdb.trace");
  ini::set_file(dir_.write("trace.ini", "[Debug]\nGDBTraceFile=" + trace + "\n"));
  {
    Table t = open_printers();
    ASSERT_TRUE(t);
    ASSERT_EQ(t.add_row(record_bytes(printer("Laser", "L1", -3))), 1);
    ASSERT_EQ(t.add_row(record_bytes(printer("ink jet", "I1", 2))), 2);
    EXPECT_EQ(t.add_row(record_bytes(printer("LASER", "L2", 4))), 0);
    Printer p{};
    ASSERT_TRUE(t.get_row(1, record_bytes(p)));
    Query q = Query::start(t, 1, Value("l"), false);
    ASSERT_TRUE(q);
    EXPECT_EQ(q.next(), 1);
    EXPECT_EQ(q.next(), 0);
    Query all = Query::start(t, 1, std::nullopt, false);
    EXPECT_EQ(all.next(), 2);
    EXPECT_EQ(all.previous(), 0);
    all.stop();
    q.stop();
    EXPECT_TRUE(t.flush());
  }
  close_engine_trace();
  ini::set_file(dir_.write("empty.ini", ""));
  std::string name = dir_.file("printers.tmp");
  std::string row1 = "Column Deleted 70\nColumn PrinterName Laser\nColumn PrinterId L1\n"
                     "Column Priority -3\nColumn Comment note\n";
  std::string expected =
      "TableOpen " + name + " 64 3 5 1\n"
      "ColumnDef 0 Deleted 0 1 7 0\n"
      "ColumnDef 1 PrinterName 1 10 14 2\n"
      "ColumnDef 2 PrinterId 11 9 14 0\n"
      "ColumnDef 3 Priority 20 4 3 0\n"
      "ColumnDef 4 Comment 24 40 14 0\n"
      "RowAdd " + name + " 16 1\n" + row1 +
      "RowAdd " + name + " 16 2\n"
      "Column Deleted 70\nColumn PrinterName ink jet\nColumn PrinterId I1\n"
      "Column Priority 2\nColumn Comment note\n"
      "RowAdd " + name + " 16 0\n"
      "Column Deleted 70\nColumn PrinterName LASER\nColumn PrinterId L2\n"
      "Column Priority 4\nColumn Comment note\n"
      "RowGet " + name + " 1 1\n" + row1 +
      "QueryStart " + name + " PrinterName l 0 1\n"
      "QueryNext 1 1\n"
      "QueryNext 1 0\n"
      "QueryStart " + name + " PrinterName <NULL> 0 2\n"
      "QueryNext 2 2\n"
      "QueryPrev 2 0\n"
      "QueryStop 2\n"
      "QueryStop 1\n"
      "Flush " + name + " 1\n"
      "TableClose " + name + " 1\n";
  EXPECT_EQ(dir_.read("gdb.trace"), expected);
}

}  // namespace
}  // namespace px::engine
