#include "sim/control_jobs.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include "tests/support/test_dir.h"

namespace px::sim {
namespace {

// Sets a file's modification time to seconds after the epoch.
void set_age(const std::string& path, time_t seconds) {
  utimbuf times{seconds, seconds};
  ASSERT_EQ(utime(path.c_str(), &times), 0);
}

// A control job as the console writes it from the demo's template.
std::string job_text(std::string_view command, std::string_view printers = "",
                     std::string_view form = "") {
  std::string text = "^job PXCNTRLJOB\n^field CommandString\n" + std::string(command) + "\n";
  text += "^field LogicalPrinter\n" + std::string(printers);
  text += "^field MDFFileName\n" + std::string(form);
  text += "^field SystemDate\n240628\n^field SystemTime\n10:15:00\n^field RequestorID\nPXCNTRL\n";
  return text;
}

TEST(ControlJobs, CommandTextsMatchWithoutCase) {
  EXPECT_EQ(parse_command("Pause Server"), Command::kPause);
  EXPECT_EQ(parse_command("  resume server\r"), Command::kResume);
  EXPECT_EQ(parse_command("JOB TABLE RELOAD"), Command::kReloadJobs);
  EXPECT_EQ(parse_command("Printer Reload"), Command::kReloadPrinter);
  EXPECT_EQ(parse_command("Shut Down Server"), Command::kShutDown);
  EXPECT_EQ(parse_command("Pause"), Command::kNone);
  EXPECT_EQ(parse_command("Pause Server now"), Command::kNone);
}

TEST(ControlJobs, StopFileFirstThenOldestFirst) {
  TestDir dir;
  set_age(dir.write("pxctrl05.msg", job_text("Pause Server")), 3000);
  set_age(dir.write("PXCTRL01.MSG", job_text("Resume Server")), 1000);
  set_age(dir.write("pxctrl02.msg", job_text("Job Table Reload")), 2000);
  set_age(dir.write("StopServ.Msg", job_text("Shut Down Server")), 9000);
  dir.write("other.msg", "not a control job");
  dir.write("pxctrl03.dat", "not a control job either");
  EXPECT_EQ(waiting_control_jobs(dir.path()),
            (std::vector<std::string>{"StopServ.Msg", "PXCTRL01.MSG", "pxctrl02.msg", "pxctrl05.msg"}));
}

TEST(ControlJobs, SameAgeKeepsNameOrder) {
  TestDir dir;
  set_age(dir.write("pxctrl09.msg", job_text("Pause Server")), 5000);
  set_age(dir.write("pxctrl00.msg", job_text("Resume Server")), 5000);
  EXPECT_EQ(waiting_control_jobs(dir.path()),
            (std::vector<std::string>{"pxctrl00.msg", "pxctrl09.msg"}));
}

TEST(ControlJobs, ReadsTheCommandOfAConsoleJob) {
  TestDir dir;
  dir.write("pxctrl00.msg", job_text("Pause Server"));
  ControlJob job = read_control_job(dir.path(), "pxctrl00.msg");
  EXPECT_EQ(job.command, Command::kPause);
  EXPECT_EQ(job.command_text, "Pause Server");
  EXPECT_TRUE(job.printers.empty());
}

TEST(ControlJobs, PrinterReloadCarriesPrintersAndForm) {
  TestDir dir;
  dir.write("pxctrl01.msg", job_text("Printer Reload", "LASER1\nLASER2\n", "forms/invoice.mdf\n"));
  ControlJob job = read_control_job(dir.path(), "pxctrl01.msg");
  EXPECT_EQ(job.command, Command::kReloadPrinter);
  EXPECT_EQ(job.printers, (std::vector<std::string>{"LASER1", "LASER2"}));
  EXPECT_EQ(job.form, "forms/invoice.mdf");
}

TEST(ControlJobs, CrLfLinesReadTheSame) {
  TestDir dir;
  dir.write("pxctrl02.msg", "^job PXCNTRLJOB\r\n^field CommandString\r\nResume Server\r\n");
  EXPECT_EQ(read_control_job(dir.path(), "pxctrl02.msg").command, Command::kResume);
}

TEST(ControlJobs, OtherJobsAndUnknownCommandsAreRefused) {
  TestDir dir;
  dir.write("pxctrl00.msg", "^job INVOICE\n^field CommandString\nPause Server\n");
  dir.write("pxctrl01.msg", job_text("Restart Everything"));
  dir.write("pxctrl02.msg", "Pause Server\n");  // no job header at all
  EXPECT_EQ(read_control_job(dir.path(), "pxctrl00.msg").command, Command::kNone);
  EXPECT_EQ(read_control_job(dir.path(), "pxctrl01.msg").command, Command::kNone);
  EXPECT_EQ(read_control_job(dir.path(), "pxctrl02.msg").command, Command::kNone);
  EXPECT_EQ(read_control_job(dir.path(), "pxctrl77.msg").command, Command::kNone);  // missing
}

TEST(ControlJobs, StopFileAlwaysShutsDown) {
  TestDir dir;
  dir.write("stopserv.msg", "");
  ControlJob job = read_control_job(dir.path(), "stopserv.msg");
  EXPECT_EQ(job.command, Command::kShutDown);
  EXPECT_EQ(job.command_text, "Shut Down Server");

  dir.write("StopServ.Msg",
            "^job PXCNTRLJOB\nPrinter Reload\n^field LogicalPrinter\nLASER1\n^field MDFFileName\na.mdf\n");
  job = read_control_job(dir.path(), "StopServ.Msg");
  EXPECT_EQ(job.command, Command::kShutDown);
  EXPECT_EQ(job.command_text, "Shut Down Server");
  EXPECT_TRUE(job.printers.empty());
  EXPECT_TRUE(job.form.empty());
}

}  // namespace
}  // namespace px::sim
