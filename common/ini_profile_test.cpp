#include "common/ini_profile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <unistd.h>

#include "common/directory_map.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

class IniProfileTest : public ::testing::Test {
 protected:
  void SetUp() override { ini::flush_cache(); }
  void TearDown() override { ini::flush_cache(); }
  TestDir dir_;
};

TEST_F(IniProfileTest, MissingFileStaysMissingUntilDropped) {
  std::string path = dir_.file("late.ini");
  EXPECT_EQ(ini::get_string("S", "k", "dflt", 1024, path), "dflt");
  dir_.write("late.ini", "[S]\nk=v\n");
  EXPECT_EQ(ini::get_string("S", "k", "dflt", 1024, path), "dflt");
  ini::drop_file(path);
  EXPECT_EQ(ini::get_string("S", "k", "dflt", 1024, path), "v");
}

TEST_F(IniProfileTest, FileNamesMatchWithoutCase) {
  std::string path = dir_.write("a.ini", "[S]\nk=1\n");
  EXPECT_EQ(ini::get_string("S", "k", "", 1024, path), "1");
  dir_.write("a.ini", "[S]\nk=2\n");
  std::string upper = path;
  for (char& c : upper) c = static_cast<char>(toupper(c));
  // The upper-case name is served from the cached text of the original.
  EXPECT_EQ(ini::get_string("S", "k", "", 1024, upper), "1");
}

TEST_F(IniProfileTest, DefaultsIntegersAndSwitches) {
  std::string path = dir_.write("n.ini", "[S]\nn= -42xyz\nempty=\nword=abc\n");
  EXPECT_EQ(ini::get_int("S", "n", 7, path), -42);
  EXPECT_EQ(ini::get_int("S", "word", 7, path), 0);
  EXPECT_EQ(ini::get_int("S", "absent", 7, path), 7);
  EXPECT_EQ(ini::get_string("S", "empty", "dflt", 1024, path), "");
  EXPECT_EQ(ini::get_string("S", "absent", "abcdef", 4, path), "abc");
  // A Yes/No switch is on when its value begins with "y" or "Y".
  for (const char* yes : {"Yes", "yes", "Y", "yep"}) EXPECT_TRUE(ini::is_yes(yes)) << yes;
  for (const char* no : {"No", "", " yes", "true", "1", "on"}) EXPECT_FALSE(ini::is_yes(no)) << no;
}

TEST_F(IniProfileTest, WritesAreSeenAndByteExact) {
  std::string path = dir_.write("w.ini", "; header comment\n[A]\nk=1\n\n[B]\nx=2\n");
  EXPECT_EQ(ini::get_string("A", "k", "", 1024, path), "1");
  ASSERT_TRUE(ini::write_string("A", "k", "new", path));
  EXPECT_EQ(ini::get_string("A", "k", "", 1024, path), "new");
  ASSERT_TRUE(ini::write_int("B", "n", 12, path));
  ASSERT_TRUE(ini::write_string("C", "z", "3", path));
  EXPECT_EQ(dir_.read("w.ini"), "; header comment\n[A]\nk=new\n\n[B]\nx=2\nn=12\n\n[C]\nz=3\n");
}

TEST_F(IniProfileTest, WriteCreatesMissingFile) {
  std::string path = dir_.file("new.ini");
  ASSERT_TRUE(ini::write_string("S", "k", "v", path));
  EXPECT_EQ(dir_.read("new.ini"), "[S]\nk=v\n");
  EXPECT_FALSE(ini::write_string("S", "k", "v", dir_.file("no/such/dir.ini")));
}

TEST_F(IniProfileTest, ChangesThatCannotBeReadBackAreRefused) {
  std::string path = dir_.write("w.ini", "[S]\nk=1\n");
  EXPECT_FALSE(ini::write_string("S", "k", "a\n[Evil]\nX=1", path));
  EXPECT_FALSE(ini::write_string("A]B", "k", "v", path));
  EXPECT_FALSE(ini::write_string("S", "a=b", "v", path));
  EXPECT_FALSE(ini::write_string("S", " k", std::nullopt, path));
  EXPECT_EQ(dir_.read("w.ini"), "[S]\nk=1\n");
  EXPECT_FALSE(ini::write_string("S", "k", "v\n", dir_.file("new.ini")));
  EXPECT_EQ(access(dir_.file("new.ini").c_str(), F_OK), -1);
}

TEST_F(IniProfileTest, SeveralChangesMakeOneRewriteThatCanKeepABackup) {
  std::string path = dir_.write("m.ini", "[A]\nk=1\n; note\n[B]\nx=2\n");
  std::vector<IniChange> changes = {{"A", "k", "2"}, {"B", "y", "3"}, {"B", "x", std::nullopt}};
  ASSERT_TRUE(ini::write_changes(changes, path, {.keep_backup = true}));
  EXPECT_EQ(dir_.read("m.ini"), "[A]\nk=2\n; note\n[B]\ny=3\n");
  EXPECT_EQ(dir_.read("m.ini.bak"), "[A]\nk=1\n; note\n[B]\nx=2\n");
  ASSERT_TRUE(ini::write_string("A", "k", "3", path));  // no flag: the backup stays
  EXPECT_EQ(dir_.read("m.ini.bak"), "[A]\nk=1\n; note\n[B]\nx=2\n");
  ASSERT_TRUE(ini::write_string("A", "k", "4", path, {.keep_backup = true}));
  EXPECT_EQ(dir_.read("m.ini.bak"), "[A]\nk=3\n; note\n[B]\ny=3\n");
  // A new file has nothing to back up.
  ASSERT_TRUE(ini::write_string("S", "k", "v", dir_.file("fresh.ini"), {.keep_backup = true}));
  EXPECT_FALSE(std::filesystem::exists(dir_.file("fresh.ini.bak")));
}

// Each step of the rewrite failed: the file stays byte for byte and the
// result names the message to show.
TEST_F(IniProfileTest, AFailedRewriteLeavesTheFileAsItWas) {
  const std::string old_text = "; keep me\r\n[A]\r\nk=1\r\n";
  std::string path = dir_.write("f.ini", old_text);
  for (auto [step, message] : kRewriteFaults) {
    for (int error : kRewriteErrors) {
      FaultyFileSystem files(step, error);
      FileResult result = ini::write_string("A", "k", "2", path, {.files = &files});
      EXPECT_EQ(failure_message(result, path).number, message) << step << " " << error;
      EXPECT_EQ(dir_.read("f.ini"), old_text);
      EXPECT_EQ(ini::get_string("A", "k", "", 10, path), "1");
    }
  }
  for (const auto& entry : std::filesystem::directory_iterator(dir_.path())) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".f.ini")) << entry.path();
  }
}

TEST_F(IniProfileTest, KeyArrayGrowsPastOneBuffer) {
  std::string text = "[Big]\n";
  for (int i = 0; i < 2000; ++i) text += "key_number_" + std::to_string(i) + "=v\n";
  std::string path = dir_.write("big.ini", text);
  EXPECT_TRUE(ini::get_key_list("Big", 10240, path).overflow);
  std::vector<std::string> keys = ini::get_key_array("Big", path);
  ASSERT_EQ(keys.size(), 2000u);
  EXPECT_EQ(keys.back(), "key_number_1999");
}

TEST_F(IniProfileTest, DelimitersResetOnLoad) {
  std::string first = dir_.write("d1.ini", "[S]\nk:v\n");
  std::string second = dir_.write("d2.ini", "[S]\nk:v\n");
  ini::get_string("S", "k", "", 100, first);
  ini::delimiters().separator = ':';
  EXPECT_EQ(ini::get_string("S", "k", "", 100, first), "v");
  // Loading another file puts the default "=" back.
  EXPECT_EQ(ini::get_string("S", "k", "", 100, second), "");
  EXPECT_EQ(ini::delimiters().separator, '=');
}

TEST_F(IniProfileTest, SetFileMakesTheDefault) {
  std::string path = dir_.write("prog.ini", "[Options]\nX=1\n");
  ini::set_file(path);
  EXPECT_EQ(ini::default_file(), path);
  EXPECT_EQ(ini::get_string("Options", "X", "", 100), "1");
}

TEST_F(IniProfileTest, DefaultFileIsFoundBesideProgramOrCurrentDirectory) {
  dir_.write("tool.ini", "[S]\nk=beside\n");
  ini::set_program_path(dir_.file("tool.x.bin"));
  EXPECT_EQ(ini::default_file(), dir_.file("tool.ini"));
  // Not found anywhere: the name beside the program is kept.
  ini::set_program_path(dir_.file("nothere"));
  EXPECT_EQ(ini::default_file(), dir_.file("nothere.ini"));
  ini::set_program_path("");
}

TEST_F(IniProfileTest, DirectoryMap) {
  std::string install = dir_.write("install.ini",
                                   "[Directories-one]\n"
                                   "/data=/srv/data\n"
                                   "/data/in=/mnt/in\n"
                                   "/q=/quoted/base\"\n"
                                   "[Special-one]\n"
                                   "CaseMap=lower\n");
  ini::set_file(dir_.write("prog.ini", "[Plexar]\nInstall=" + install + "\n"));
  ASSERT_TRUE(load_directory_map("one"));
  EXPECT_EQ(map_directory("/DATA/IN/x.dat"), "/mnt/in/x.dat");
  EXPECT_EQ(map_directory("/data/y"), "/srv/data/y");
  EXPECT_EQ(map_directory("/q/z"), "/quoted/base/z\"");
  EXPECT_EQ(map_directory("/Other/Path"), "/other/path");
  // No install file named: the map is empty and paths pass through.
  ini::set_file(dir_.write("bare.ini", "[Plexar]\n"));
  EXPECT_FALSE(load_directory_map("one"));
  EXPECT_EQ(map_directory("/DATA/x"), "/DATA/x");
}

}  // namespace
}  // namespace px
