#include "common/job_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <vector>

#include "tests/support/test_dir.h"

namespace px {
namespace {

using namespace std::string_literals;

// Every field next_field delivers, in order, until the end.
std::vector<std::pair<std::string, std::string>> all_fields(JobFile& job) {
  std::vector<std::pair<std::string, std::string>> fields;
  Field field;
  while (job.next_field(field) == 0 && !field.name.empty()) fields.emplace_back(field.name, field.value);
  return fields;
}

using Fields = std::vector<std::pair<std::string, std::string>>;

class JobFileTest : public ::testing::Test {
 protected:
  JobFile open(std::string_view text) {
    JobFile job(dir_.write("job.txt", text));
    return job;
  }
  TestDir dir_;
};

TEST_F(JobFileTest, NamesAreFirstWordsOfFirstCommand) {
  JobFile job = open("data\n^JOB \tPAYROLL extra\n^job OTHER\n^Form  invoice\tx\r\n");
  EXPECT_EQ(job.job_name(), "PAYROLL");
  EXPECT_EQ(job.form_name(), "invoice");
  EXPECT_EQ(job.last_error(), 0);

  JobFile none = open("^jobs X\n^job\tY\n^field job\nZ\n");
  EXPECT_EQ(none.job_name(), std::nullopt);
  EXPECT_EQ(none.form_name(), std::nullopt);
  EXPECT_EQ(none.last_error(), 0);
}

TEST_F(JobFileTest, NamesAreCachedUntilOpen) {
  JobFile job = open("^job FIRST\n");
  EXPECT_EQ(job.job_name(), "FIRST");
  dir_.write("job.txt", "^job SECOND\n");
  EXPECT_EQ(job.job_name(), "FIRST");
  job.open(dir_.file("job.txt"));
  EXPECT_EQ(job.job_name(), "SECOND");
}

TEST_F(JobFileTest, MissingFileGives602AndIsNotCached) {
  JobFile job(dir_.file("absent.txt"));
  EXPECT_EQ(job.job_name(), std::nullopt);
  EXPECT_EQ(job.last_error(), kJobFileMissing);
  EXPECT_EQ(job.field_value("x"), std::nullopt);
  EXPECT_EQ(job.last_error(), kJobFileMissing);
  Field field;
  EXPECT_EQ(job.next_field(field), kJobFileMissing);

  dir_.write("absent.txt", "^job LATE\n^field x\n1\n");
  EXPECT_EQ(job.job_name(), "LATE");
  EXPECT_EQ(job.last_error(), 0);
  EXPECT_EQ(job.next_field(field), 0);
  EXPECT_EQ(field.name, "x");
}

TEST_F(JobFileTest, FieldValueLookup) {
  JobFile job = open(
      "^job J\n"
      "^field status\n0\n"
      "^FIELD Address\nline one\n\nline three\r\n"
      "^field status\n99\n"
      "^eject\n"
      "^field \nnameless\n"
      "^field last\nend");
  EXPECT_EQ(job.field_value("STATUS"), "0");
  EXPECT_EQ(job.field_value("address"), "line one\n\nline three");
  EXPECT_EQ(job.field_value("last"), "end");
  EXPECT_EQ(job.field_value(""), std::nullopt);
  EXPECT_EQ(job.field_value("missing"), std::nullopt);
  EXPECT_EQ(job.last_error(), 0);
}

TEST_F(JobFileTest, IterationCarriesPendingLine) {
  JobFile job = open(
      "junk before\n^job J\n"
      "^field a\n1\n2\n3\n"
      "^field b\n"
      "^form F1\n^eject\n"
      "^field c\nx\n");
  Field field;
  ASSERT_EQ(job.next_field(field), 0);
  EXPECT_EQ(field.name, "a");
  EXPECT_EQ(field.value, "1\n2\n3");
  // A lookup in between must not disturb the iteration.
  EXPECT_EQ(job.field_value("c"), "x");
  ASSERT_EQ(job.next_field(field), 0);
  EXPECT_EQ(field.name, "b");
  EXPECT_EQ(field.value, "");
  ASSERT_EQ(job.next_field(field), 0);
  EXPECT_EQ(field.name, "c");
  EXPECT_EQ(job.next_field(field), 0);
  EXPECT_EQ(field.name, "");
  EXPECT_EQ(job.next_field(field), 0);
  EXPECT_EQ(field.name, "");

  job.open(job.name());
  EXPECT_EQ(all_fields(job).size(), 3u);
}

TEST_F(JobFileTest, ItemsReportFormsAndEjects) {
  JobFile job = open("^field a\n1\n^FORM invoice extra\n^EJECT\n^ejected\n^field b\n2\n^eject");
  Field field;
  EXPECT_EQ(job.next_item(field), 0);
  EXPECT_EQ(field.name, "a");
  EXPECT_EQ(job.next_item(field), kItemForm);
  EXPECT_EQ(field.name, "^form");
  EXPECT_EQ(field.value, "invoice");
  EXPECT_EQ(job.next_item(field), kItemEject);
  EXPECT_EQ(field.name, "^eject");
  EXPECT_EQ(job.next_item(field), 0);
  EXPECT_EQ(field.name, "b");
  EXPECT_EQ(field.value, "2");
  EXPECT_EQ(job.next_item(field), kItemEject);
  EXPECT_EQ(job.next_item(field), 0);
  EXPECT_EQ(field.name, "");
}

TEST_F(JobFileTest, OpenSelectsAndResets) {
  std::string other = dir_.write("other.txt", "^field o\n1\n");
  JobFile job = open("^field a\n1\n^field b\n2\n");
  Field field;
  job.next_field(field);
  job.open(other);
  EXPECT_EQ(all_fields(job), (Fields{{"o", "1"}}));
  job.open("");
  EXPECT_EQ(job.name(), dir_.file("job.txt"));
  job.open(std::string(600, 'n'));
  EXPECT_EQ(job.name().size(), kJobFileNameLimit);
}

TEST_F(JobFileTest, LongLinesArriveInPieces) {
  std::string a(1023, 'a'), b(1023, 'b'), c(954, 'c');
  JobFile job = open("^field long\n" + a + b + c + "\n^field full\n" + std::string(1023, 'f') +
                     "\n^field fits\n" + std::string(1022, 'g') + "\r\n");
  EXPECT_EQ(job.field_value("long"), a + "\n" + b + "\n" + c);
  // 1,023 characters fill the buffer; the LF then arrives as an empty line.
  EXPECT_EQ(job.field_value("full"), std::string(1023, 'f') + "\n");
  EXPECT_EQ(job.field_value("fits"), std::string(1022, 'g'));
  std::string piece_command = "^field x\n" + std::string(1023, 'y') + "^field z\n";
  JobFile split = open(piece_command);
  EXPECT_EQ(all_fields(split), (Fields{{"x", std::string(1023, 'y')}, {"z", ""}}));
}

TEST_F(JobFileTest, BinaryDataDoesNotBreakReading) {
  std::string text = "^field bin\n\0\x01\xff\n^fi\0ld x\n\0\n^field after\nok\n"s;
  JobFile job = open(text);
  EXPECT_EQ(job.field_value("bin"), std::string("\0\x01\xff", 3));
  EXPECT_EQ(job.field_value("after"), "ok");
  EXPECT_EQ(all_fields(job).size(), 2u);
}

class JobFileIncludeTest : public JobFileTest {};

TEST_F(JobFileIncludeTest, IncludedLinesStandInPlace) {
  std::string part = dir_.write("part.txt", "continued\n^job INNER\n^field inner\nx\n");
  JobFile job = open("^field head\nfirst\n^file " + part + "\nafter\n^file " +
                     dir_.file("none.txt") + "\n^field tail\nt\n");
  EXPECT_EQ(all_fields(job), (Fields{{"head", "first\ncontinued"}, {"inner", "x\nafter"}, {"tail", "t"}}));
  EXPECT_EQ(job.job_name(), "INNER");
  EXPECT_EQ(job.field_value("head"), "first\ncontinued");
  EXPECT_EQ(job.last_error(), 0);
  // A scan stops at the missing include, even inside a value it is reading.
  EXPECT_EQ(job.field_value("inner"), std::nullopt);
  EXPECT_EQ(job.last_error(), kJobFileMissing);
  EXPECT_EQ(job.field_value("tail"), std::nullopt);
  EXPECT_EQ(job.last_error(), kJobFileMissing);
}

TEST_F(JobFileIncludeTest, BackslashPathsAreFound) {
  ASSERT_EQ(mkdir(dir_.file("sub").c_str(), 0700), 0);
  dir_.write("sub/part.txt", "^field inner\nx\n");
  std::string windows = dir_.path() + "\\sub\\part.txt";
  JobFile job = open("^file " + windows + "\n");
  EXPECT_EQ(all_fields(job), (Fields{{"inner", "x"}}));
}

TEST_F(JobFileIncludeTest, EleventhNestedFileIsIgnored) {
  for (int i = 0; i <= 10; ++i) {
    std::string text = "^field level" + std::to_string(i) + "\nv\n";
    if (i < 10) text += "^file " + dir_.file("f" + std::to_string(i + 1)) + "\n";
    dir_.write("f" + std::to_string(i), text);
  }
  JobFile job(dir_.file("f0"));
  Fields fields = all_fields(job);
  ASSERT_EQ(fields.size(), 10u);
  EXPECT_EQ(fields.back().first, "level9");
  EXPECT_EQ(job.field_value("level9"), "v");
  EXPECT_EQ(job.field_value("level10"), std::nullopt);
  EXPECT_EQ(job.last_error(), 0);
}

TEST_F(JobFileIncludeTest, SelfIncludeEndsAtDepthLimit) {
  std::string path = dir_.file("self.txt");
  dir_.write("self.txt", "^field a\n1\n^file " + path + "\n^file " + path + "\n");
  JobFile job(path);
  // Two includes per file, ten levels deep: 2^10 - 1 files are read.
  EXPECT_EQ(all_fields(job).size(), 1023u);
  EXPECT_EQ(job.field_value("none"), std::nullopt);
  EXPECT_EQ(job.last_error(), 0);
}

class JobFileXmlTest : public JobFileTest {
 protected:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  // is_xml on a file holding bytes, and the position it leaves.
  std::pair<bool, long> check(std::string_view bytes) {
    std::unique_ptr<std::FILE, Closer> file(std::fopen(dir_.write("x.xml", bytes).c_str(), "rb"));
    bool xml = is_xml(file.get());
    return {xml, std::ftell(file.get())};
  }
};

TEST_F(JobFileXmlTest, ByteOrderMarksAndCase) {
  EXPECT_EQ(check("\xEF\xBB\xBF<?xml version"), std::make_pair(true, 3L));
  EXPECT_EQ(check("<?XML version"), std::make_pair(true, 0L));
  EXPECT_EQ(check("\xFF\xFE<?xMl"), std::make_pair(true, 2L));
  EXPECT_EQ(check("\xFE\xFF<?xml"), std::make_pair(true, 2L));
  EXPECT_EQ(check("^job X\n"), std::make_pair(false, 0L));
  EXPECT_EQ(check("\xEF\xBB\xBF^job"), std::make_pair(false, 3L));
  EXPECT_EQ(check("\xEF\xBB\xBF<?xm"), std::make_pair(false, 3L));
  EXPECT_EQ(check(" <?xml"), std::make_pair(false, 0L));
  EXPECT_EQ(check(""), std::make_pair(false, 0L));
}

}  // namespace
}  // namespace px
