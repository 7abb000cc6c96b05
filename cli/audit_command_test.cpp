// pxctl audit on an AuditLog that names no regular file: it is reported as
// unreadable (1704, exit 1) at once, never read for ever.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "cli/pxctl_test_fixture.h"

namespace px {
namespace {

class PxctlAuditTest : public PxctlFixture {
 protected:
  void use_audit_log(const std::string& path) {
    ini_ = dir_.write("test.ini",
                      "[Messages]\nMsg1704=30 cannot read @P1 because @P2\n[Options]\nAuditLog=" + path +
                          "\n");
  }
  ProgramResult audit(std::vector<std::string> words = {}) {
    words.insert(words.begin(), {"-aii" + ini_, "audit"});
    return run_program(PXCTL_PATH, words, dir_.path(), ProgramLimits{10, 0});
  }
};

TEST_F(PxctlAuditTest, AnythingButARegularFileIsReportedUnreadable) {
  std::string fifo = dir_.file("fifo.log");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::filesystem::create_directory(dir_.file("folder.log"));
  for (const std::string& path : {fifo, dir_.file("folder.log"), std::string("/dev/zero")}) {
    use_audit_log(path);
    for (const std::vector<std::string>& words : {std::vector<std::string>{},
                                                 std::vector<std::string>{"--since", "2026-01-01"}}) {
      ProgramResult r = audit(words);
      EXPECT_FALSE(r.timed_out) << path;
      EXPECT_EQ(r.status, 1) << path;
      EXPECT_EQ(r.out, "");
      EXPECT_TRUE(r.err.starts_with("[1704]cannot read " + path + " because ")) << r.err;
    }
  }
  // A regular file is printed as it stands; --since leaves out lines that
  // are no record.
  use_audit_log(dir_.write("audit.log",
                           "2026-11-24T13:59:06Z\tann\tops1\tpxctl\tnorth\tpause\tdone\t157\n"
                           "not a record\n"));
  EXPECT_EQ(audit().out, dir_.read("audit.log"));
  EXPECT_EQ(audit({"--since", "2026-11-24T13:59:06Z"}).out,
            "2026-11-24T13:59:06Z\tann\tops1\tpxctl\tnorth\tpause\tdone\t157\n");
  EXPECT_EQ(audit({"--since", "2026-11-24T13:59:07Z"}).out, "");
}

}  // namespace
}  // namespace px
