// The monitoring windows on the headless toolkit, over an installation in a
// temporary directory with the shipped message catalogue.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

#include "common/directory_map.h"
#include "common/expand.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/instances.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"
#include "toolkit/headless/headless_toolkit.h"
#include "toolkit/resources/resource_ids.h"
#include "views/status_queue.h"
#include "views/view_messages.h"
#include "views/views_test_support.h"
#include "views/windows/file_windows.h"
#include "views/windows/log_window.h"
#include "views/windows/status_window.h"

namespace px::views {
namespace {

std::string numbered(int from, int to) {
  std::string text;
  for (int i = from; i < to; ++i) text += "line " + std::to_string(i) + "\n";
  return text;
}

std::tm clock_time(int hour, int minute, int second) {
  std::tm moment{};
  moment.tm_hour = hour;
  moment.tm_min = minute;
  moment.tm_sec = second;
  return moment;
}

std::vector<std::string> rows_of(tk::Control list) {
  std::vector<std::string> rows;
  for (int i = 0; i < list.count(); ++i) rows.push_back(list.row(i));
  return rows;
}

std::vector<std::string> paragraphs_of(tk::Control text) {
  std::vector<std::string> rows;
  for (int i = 0; i < text.paragraph_count(); ++i) rows.push_back(text.paragraph(i));
  return rows;
}

// Polls shown every 20 ms for up to five seconds.
bool eventually_shown(const std::function<bool()>& shown) {
  for (int i = 0; i < 250; ++i) {
    if (shown()) return true;
    ::usleep(20000);
  }
  return false;
}

class ViewWindowsTest : public ::testing::Test {
 protected:
  ViewWindowsTest() {
    tk.set_failure_handler([this](const std::string& what) { failures.push_back(what); });
  }
  ~ViewWindowsTest() override {
    for (tk::Window w : tk.open_windows()) w.destroy();
    set_current_instance({});
    ini::flush_cache();
    messages::reset();
    clear_named_values();
    load_directory_map("");
  }
  void TearDown() override {
    tk.verify_scripts_used();
    EXPECT_TRUE(failures.empty()) << failures.front();
  }

  // The shipped console INI with options added, and one instance "north"
  // with its directories; config_extra goes at the end of its configuration.
  void install(const std::string& options, const std::string& config_extra = "") {
    std::string console = read_file(PX_SOURCE_DIR "/demo/pxcntrl.ini").value_or("");
    console.replace(console.find("\nInstall=\n"), 10, "\nInstall=" + dir.file("plexar.ini") + "\n");
    console.replace(console.find("\n[Options]\n"), 11, "\n[Options]\n" + options);
    console.erase(console.find("QueueRefreshCycle=5\n"), 20);  // the shipped value
    dir.write("pxcntrl.ini", console);
    for (const char* d : {"data", "errors", "mail", "mail-errors", "logs"}) {
      ::mkdir(dir.file(d).c_str(), 0755);
    }
    dir.write("agent.ini", "[Plexar]\nLogFile=" + dir.file("logs/agent.log") + "\n[Paths]\nDataPath=" +
                               dir.file("mail") + "\nErrorPath=" + dir.file("mail-errors") + "\n");
    config = dir.write("north.ini",
                       "[Plexar]\nWindowTitle=North\nStatusFile=" + dir.file("north.sts") +
                           "\nLogFile=" + dir.file("logs/server.log") +
                           "\n[Options]\nFileSpec=*.DAT\n[Paths]\nDataPath=" + dir.file("data") +
                           "\nErrorPath=" + dir.file("errors") + "\n[PXEMIO]\nIniFileName=" +
                           dir.file("agent.ini") + "\n" + config_extra);
    dir.write("north.sts", "Nexa is running\n");
    dir.write("plexar.ini", "[Configuration]\nnorth=" + config + "\n");
    ini::flush_cache();
    ini::set_file(dir.file("pxcntrl.ini"));
    messages::reset();
    messages::init("pxcntrl");
    set_current_instance({"north", "North", config});
  }
  void queued(const std::string& name, time_t age) {
    dir.write(name, "^job INVOICE\n");
    set_modified(dir.file(name), age);
  }

  TestDir dir;
  std::string config;
  tk::HeadlessToolkit tk;
  RecordingOperator op;
  FixedClock clock{clock_time(14, 41, 9)};
  ViewHost host{tk, op, clock, {}, {}, {}, {}};
  std::vector<std::string> failures;
};

TEST_F(ViewWindowsTest, StatusViewRefreshesOnItsTimerAndKeepsTheSelectedRow) {
  install("");  // no QueueRefreshCycle: every 10 seconds
  queued("data/B.DAT", 200);
  queued("data/C.DAT", 300);
  show_status_queue(host);
  tk::Window w = status_queue_window(tk);
  ASSERT_TRUE(w.exists());
  EXPECT_EQ(w.title(), "Nexa Status and Queue");
  tk::Control list = w.control(tk::kStatusList);
  EXPECT_EQ(rows_of(list), status_queue_rows());
  ASSERT_EQ(list.count(), 4);
  EXPECT_EQ(list.selected(), 0);
  EXPECT_TRUE(list.has_focus());

  // With nothing changed on disk, only the timer refills the list.
  EXPECT_EQ(tk.paint(w),
            std::vector<std::string>{std::string(kStatusHeader) + "    last updated 14:41:09"});
  clock.set(clock_time(9, 0, 0));
  tk.advance_time(9999);
  EXPECT_EQ(tk.paint(w).front(), std::string(kStatusHeader) + "    last updated 14:41:09");
  tk.advance_time(1);
  EXPECT_EQ(tk.paint(w).front(), std::string(kStatusHeader) + "    last updated 09:00:00");

  ASSERT_TRUE(tk.click_row(w, tk::kStatusList, 3));  // C.DAT
  queued("data/A.DAT", 100);                           // an older file comes first
  tk.advance_time(10000);
  ASSERT_EQ(list.count(), 5);
  EXPECT_TRUE(list.row(2).ends_with("  A.DAT"));
  EXPECT_TRUE(list.row(list.selected()).ends_with("  C.DAT"));

  // Opening it again refills the one window at once.
  std::remove(dir.file("data/A.DAT").c_str());
  show_status_queue(host);
  EXPECT_EQ(tk.open_windows().size(), 1u);
  EXPECT_EQ(list.count(), 4);
  EXPECT_TRUE(list.row(list.selected()).ends_with("  C.DAT"));
  tk.resize(w, {600, 400});
  tk::Rect area = list.rect();  // the headless toolkit: 2 pixels a unit
  EXPECT_EQ(area.x + area.width, 500);
  EXPECT_EQ(area.y + area.height, 390);
  tk::Rect close = w.control(tk::kStatusClose).rect();
  EXPECT_EQ(close.x, 520);
  EXPECT_EQ(close.y, area.y + area.height / 2 - 110);

  ASSERT_TRUE(tk.click(w, tk::kStatusClose));
  EXPECT_FALSE(status_queue_window(tk).exists());
  EXPECT_TRUE(op.shown().empty());
}

// The operator scrolled away from the selected row: refills, whether a
// watched change or the timer brings them, leave the list where it was and
// keep the selected file selected even when its row moves.
TEST_F(ViewWindowsTest, StatusViewKeepsTheOperatorsPlaceAcrossRefills) {
  install("");
  for (int i = 0; i < 60; ++i) queued("data/F" + std::to_string(100 + i) + ".DAT", 1000 + i);
  tk::Window w = show_status_queue(host);
  ASSERT_TRUE(w.exists());
  tk::Control list = w.control(tk::kStatusList);
  ASSERT_EQ(list.count(), 62);  // the instance, its status, 60 files
  ASSERT_TRUE(tk.click_row(w, tk::kStatusList, 40));
  ASSERT_TRUE(list.row(40).ends_with("  F138.DAT")) << list.row(40);
  ASSERT_TRUE(tk.scroll_list(w, tk::kStatusList, 5));

  queued("data/A.DAT", 500);  // older than all: every file row moves down
  tk.advance_time(2 * kWatchPeriodMs);
  ASSERT_EQ(list.count(), 63);
  EXPECT_EQ(list.selected(), 41);
  EXPECT_TRUE(list.row(41).ends_with("  F138.DAT")) << list.row(41);
  EXPECT_EQ(list.top_row(), 5);

  clock.set(clock_time(15, 0, 0));
  tk.advance_time(10000);  // the refresh timer
  EXPECT_EQ(tk.paint(w).front(), std::string(kStatusHeader) + "    last updated 15:00:00");
  EXPECT_EQ(list.selected(), 41);
  EXPECT_EQ(list.top_row(), 5);

  std::remove(dir.file("data/A.DAT").c_str());
  tk.advance_time(2 * kWatchPeriodMs);
  EXPECT_EQ(list.selected(), 40);
  EXPECT_EQ(list.top_row(), 5);
}

TEST_F(ViewWindowsTest, StatusViewRefreshesAtOnceWhenAQueueOrStatusChanges) {
  install("");
  show_status_queue(host);
  tk::Control list = status_queue_window(tk).control(tk::kStatusList);
  tk.advance_time(kWatchPeriodMs);
  EXPECT_EQ(list.count(), 3);
  queued("data/A.DAT", 100);
  tk.advance_time(2 * kWatchPeriodMs);
  EXPECT_TRUE(list.row(2).ends_with("  A.DAT")) << list.row(2);
  dir.write("north.sts", "Nexa is paused\n");
  tk.advance_time(kWatchPeriodMs);
  EXPECT_EQ(list.row(1), "  - Nexa is running");  // not twice in one second
  tk.advance_time(kWatchPeriodMs);
  EXPECT_EQ(list.row(1), "  - Nexa is paused");
  dir.write("unwatched.txt", "x");
  dir.write("north.sts", "Nexa is paused\n");  // the same text: a refill shows the same rows
  tk.advance_time(kWatchPeriodMs);
  EXPECT_EQ(list.count(), 3);
}

// A status file that is a FIFO without a writer blocks its reader, as a
// hung network file system would: the window stays usable and shows the
// rows when the listing ends.
TEST_F(ViewWindowsTest, AHungListingLeavesTheStatusViewAnswering) {
  install("");
  std::string fifo = dir.file("north.sts");
  std::remove(fifo.c_str());
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  auto before = std::chrono::steady_clock::now();
  tk::Window w = show_status_queue(host);
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
  ASSERT_TRUE(w.exists());
  tk::Control list = w.control(tk::kStatusList);
  EXPECT_EQ(list.count(), 0);
  tk.advance_time(10000);  // the refresh timer starts no second listing
  EXPECT_EQ(list.count(), 0);
  EXPECT_EQ(tk.paint(w).size(), 1u);

  int writer = ::open(fifo.c_str(), O_WRONLY);  // the hung open goes through
  ASSERT_GE(writer, 0);
  ASSERT_EQ(::write(writer, "Nexa is running\n", 16), 16);
  ::close(writer);
  EXPECT_TRUE(eventually_shown([&] {
    tk.advance_time(kWatchPeriodMs);
    return list.count() == 3;
  }));
  EXPECT_EQ(list.row(1), "  - Nexa is running");
}

TEST_F(ViewWindowsTest, StatusViewTakesItsPeriodFromQueueRefreshCycle) {
  install("QueueRefreshCycle=2\n");
  show_status_queue(host);
  tk::Control list = status_queue_window(tk).control(tk::kStatusList);
  EXPECT_TRUE(list.row(2).ends_with("  " + message_row(msg::kNoFiles))) << list.row(2);
  queued("data/A.DAT", 100);
  tk.advance_time(2000);
  EXPECT_TRUE(list.row(2).ends_with("  A.DAT")) << list.row(2);
}

TEST_F(ViewWindowsTest, RejectsWindowListsFilesAndViewsTheChosenOne) {
  install("");
  dir.write("errors/ORD1.DAT", "^job INVOICE\nline two\n");
  open_rejects(host, false);
  tk::Window w = tk.find_window(tk::kRejectsWindow);
  ASSERT_TRUE(w.exists());
  EXPECT_EQ(w.title(), message_label(msg::kServerRejectsTitle));
  EXPECT_EQ(w.control(tk::kFilesCaption).text(), message_label(msg::kRejectsCaption));
  EXPECT_EQ(rows_of(w.control(tk::kFilesList)), std::vector<std::string>{"ORD1.DAT"});
  EXPECT_EQ(w.control(tk::kFilesList).selected(), 0);

  ASSERT_TRUE(tk.click(w, tk::kRejectsViewFile));
  tk::Window file = tk.find_window(tk::kLogWindow);
  ASSERT_TRUE(file.exists());
  EXPECT_EQ(file.title(), message_label(msg::kRejectTitle) + " North");
  EXPECT_EQ(file.control(tk::kLogCaption).text(), message_label(msg::kRejectCaption) + " ORD1.DAT");
  EXPECT_EQ(paragraphs_of(file.control(tk::kLogText)),
            (std::vector<std::string>{"^job INVOICE", "line two"}));

  // The E-mail Agent's rejects are empty: the one row, nothing to view.
  open_rejects(host, true);
  tk::Window mail = tk.find_window(tk::kRejectsWindow);
  ASSERT_NE(mail.id(), w.id());
  EXPECT_EQ(mail.title(), message_label(msg::kAgentRejectsTitle));
  EXPECT_EQ(rows_of(mail.control(tk::kFilesList)), std::vector<std::string>{message_row(msg::kNoRejects)});
  EXPECT_FALSE(mail.control(tk::kFilesList).enabled());
  EXPECT_FALSE(mail.control(tk::kRejectsViewFile).enabled());
  EXPECT_TRUE(op.shown().empty());
}

TEST_F(ViewWindowsTest, WindowsThatCannotListCloseAfterTheirMessage) {
  install("");
  ::rmdir(dir.file("errors").c_str());
  open_rejects(host, false);
  EXPECT_FALSE(tk.find_window(tk::kRejectsWindow).exists());
  EXPECT_EQ(op.last(), msg::kErrorDirectoryMissing);
  ::rmdir(dir.file("mail").c_str());
  open_email_queue(host);
  EXPECT_FALSE(tk.find_window(tk::kEmailQueueWindow).exists());
  EXPECT_EQ(op.last(), msg::kDirectoryMissing);
  open_email_log(host);  // the agent's log does not exist
  EXPECT_FALSE(tk.find_window(tk::kLogWindow).exists());
  EXPECT_EQ(op.last(), msg::kFileNotOpened);
}

TEST_F(ViewWindowsTest, EmailQueueShowsTheStopRequestFirst) {
  install("");
  queued("mail/B.dat", 200);
  queued("mail/A.dat", 300);
  queued("mail/stopread.msg", 900);
  open_email_queue(host);
  tk::Window w = tk.find_window(tk::kEmailQueueWindow);
  ASSERT_TRUE(w.exists());
  EXPECT_EQ(w.title(), message_label(msg::kAgentQueueTitle));
  EXPECT_EQ(w.control(tk::kFilesCaption).text(), message_label(msg::kQueueCaption));
  EXPECT_EQ(rows_of(w.control(tk::kFilesList)),
            (std::vector<std::string>{"stopread.msg", "B.dat", "A.dat"}));
  ASSERT_TRUE(tk.click(w, tk::kFilesClose));
  EXPECT_FALSE(w.exists());
}

TEST_F(ViewWindowsTest, SmallLogsLoadWholeWrappedAndFollowTheirEnd) {
  install("LogLineWrap=20\nLogLineIndent=4\n", "[Processes]\nPXSERVER=Server\n");
  dir.write("logs/server.log", "short\n" + std::string(30, 'x') + "\n");
  open_server_log(host);  // one process with a log: no choice
  tk::Window w = tk.find_window(tk::kLogWindow);
  ASSERT_TRUE(w.exists());
  EXPECT_EQ(w.title(), message_label(msg::kLogTitle) + " North");
  EXPECT_EQ(w.control(tk::kLogCaption).text(),
            message_label(msg::kLogCaption) + " " + dir.file("logs/server.log"));
  tk::Control text = w.control(tk::kLogText);
  EXPECT_EQ(paragraphs_of(text), (std::vector<std::string>{"short", std::string(20, 'x'),
                                                           "    " + std::string(10, 'x')}));
  std::ofstream(dir.file("logs/server.log"), std::ios::app) << "appended\n";
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(text.paragraph_count(), 4);
  EXPECT_EQ(text.paragraph(3), "appended");
}

// A last line still being written is shown when the log opens; its line
// end, arriving later, does not show it a second time.
TEST_F(ViewWindowsTest, ALastLineShownUnfinishedIsNotShownAgainWhenItEnds) {
  install("", "[Processes]\nPXSERVER=Server\n");
  dir.write("logs/server.log", "a\nb\nc");
  open_server_log(host);
  tk::Window w = tk.find_window(tk::kLogWindow);
  ASSERT_TRUE(w.exists());
  tk::Control text = w.control(tk::kLogText);
  EXPECT_EQ(paragraphs_of(text), (std::vector<std::string>{"a", "b", "c"}));
  std::ofstream(dir.file("logs/server.log"), std::ios::app) << "\nd\n";
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(paragraphs_of(text), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST_F(ViewWindowsTest, LargeLogsPageAndFollowOnlyWhileAtTheEnd) {
  install("", "[Processes]\nPXSERVER=Server\n");
  std::string log = dir.file("logs/server.log");
  dir.write("logs/server.log", numbered(0, 10000));
  open_server_log(host);
  tk::Window w = tk.find_window(tk::kLogWindow);
  ASSERT_TRUE(w.exists());
  tk::Control text = w.control(tk::kLogText);
  ASSERT_EQ(text.paragraph_count(), 30);
  EXPECT_EQ(text.paragraph(0), "line 9970");
  tk::Control bar = w.control(tk::kLogVScroll);
  EXPECT_EQ(bar.position(), 9970);

  // At the end, the view follows the log as it grows.
  std::ofstream(log, std::ios::app) << numbered(10000, 10005);
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(text.paragraph(0), "line 9975");
  EXPECT_EQ(text.paragraph(29), "line 10004");

  // Scrolled up, it stays where the operator is.
  ASSERT_TRUE(tk.scroll(w, tk::kLogVScroll, tk::ScrollAction::kPageUp));
  EXPECT_EQ(text.paragraph(0), "line 9945");
  ASSERT_TRUE(tk.scroll(w, tk::kLogVScroll, tk::ScrollAction::kLineDown));
  EXPECT_EQ(text.paragraph(0), "line 9946");
  std::ofstream(log, std::ios::app) << numbered(10005, 10010);
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(text.paragraph(0), "line 9946");
  EXPECT_EQ(bar.range().maximum, 9980);

  ASSERT_TRUE(tk.scroll(w, tk::kLogVScroll, tk::ScrollAction::kThumb, 100));
  EXPECT_EQ(text.paragraph(0), "line 100");
  ASSERT_TRUE(tk.scroll(w, tk::kLogHScroll, tk::ScrollAction::kLineDown));
  EXPECT_EQ(text.origin().column, 8);  // no further than the widest row shown

  // Rotated: loaded again from the new log.
  dir.write("logs/server.log", "fresh start\n");
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(paragraphs_of(text), std::vector<std::string>{"fresh start"});
  EXPECT_TRUE(op.shown().empty());
}

TEST_F(ViewWindowsTest, FindLooksThroughAPagedLogAndTheLoadedText) {
  install("", "[Processes]\nPXSERVER=Server\n");
  std::string text = numbered(0, 20000);
  text.replace(text.find("line 1234\n"), 10, "LINE 1234 ERROR\n");
  text.replace(text.find("line 19990\n"), 11, "line 19990 error\n");
  dir.write("logs/server.log", text);
  tk::Window w = open_process_log(host, "PXSERVER");
  ASSERT_TRUE(w.exists());
  tk::Control page = w.control(tk::kLogText);
  ASSERT_TRUE(tk.type(w, tk::kLogFindText, "error"));
  ASSERT_TRUE(tk.click(w, tk::kLogFindPrevious));  // back from the last page
  EXPECT_EQ(page.paragraph(0), "line 19970");      // the page keeps to the end
  ASSERT_TRUE(tk.click(w, tk::kLogFindPrevious));
  EXPECT_EQ(page.paragraph(0), "LINE 1234 ERROR");
  ASSERT_TRUE(tk.click(w, tk::kLogFindPrevious));  // nothing before it
  EXPECT_EQ(tk.beeps(), 1);
  EXPECT_EQ(page.paragraph(0), "LINE 1234 ERROR");
  ASSERT_TRUE(tk.click(w, tk::kLogFindNext));
  EXPECT_EQ(page.paragraph(10), "line 19980");

  // A small log: the loaded paragraphs are searched and scrolled to.
  dir.write("logs/agent.log", numbered(0, 500) + "mail ERROR\n" + numbered(501, 600));
  tk::Window small = open_email_log(host);
  ASSERT_TRUE(small.exists());
  ASSERT_TRUE(tk.type(small, tk::kLogFindText, "Error"));
  ASSERT_TRUE(tk.click(small, tk::kLogFindPrevious));
  EXPECT_EQ(small.control(tk::kLogText).origin().line, 500);
}

// Ctrl+F, F3, Shift+F3 and Enter in the find field, over a paged log that
// stays a page of 30 lines while the whole file is searched.
TEST_F(ViewWindowsTest, FindKeysSearchTheWholeLogFromThePageShown) {
  install("", "[Processes]\nPXSERVER=Server\n");
  std::string text = numbered(0, 20000);
  text.replace(text.find("line 10\n"), 8, "line 10 needle\n");
  text.replace(text.find("line 12345\n"), 11, "line 12345 NEEDLE\n");
  dir.write("logs/server.log", text);
  tk::Window w = open_process_log(host, "PXSERVER");
  ASSERT_TRUE(w.exists());
  tk::Control page = w.control(tk::kLogText);
  ASSERT_TRUE(tk.focus_control(w, tk::kLogText));
  ASSERT_TRUE(tk.press_key(w, 0, tk::Key::kCtrlF));
  EXPECT_EQ(w.focused_control(), tk::kLogFindText);
  ASSERT_TRUE(tk.type(w, tk::kLogFindText, "needle"));
  ASSERT_TRUE(tk.press_key(w, 0, tk::Key::kShiftF3));  // back from the last page
  EXPECT_EQ(page.paragraph(0), "line 12345 NEEDLE");
  ASSERT_TRUE(tk.press_key(w, 0, tk::Key::kShiftF3));
  EXPECT_EQ(page.paragraph(0), "line 10 needle");
  ASSERT_TRUE(tk.press_key(w, 0, tk::Key::kF3));
  EXPECT_EQ(page.paragraph(0), "line 12345 NEEDLE");
  EXPECT_EQ(w.control(tk::kLogVScroll).position(), 12345);
  ASSERT_TRUE(tk.press_key(w, tk::kLogFindText, tk::Key::kEnter));  // nothing after it
  EXPECT_EQ(tk.beeps(), 1);
  EXPECT_EQ(page.paragraph(0), "line 12345 NEEDLE");
  EXPECT_EQ(page.paragraph_count(), 30);

  // Enter elsewhere finds nothing; Ctrl+F selects the text, so typing
  // replaces it, and the new text is looked for from the page shown.
  ASSERT_TRUE(tk.press_key(w, tk::kLogText, tk::Key::kEnter));
  EXPECT_EQ(tk.beeps(), 1);
  ASSERT_TRUE(tk.press_key(w, tk::kLogText, tk::Key::kCtrlF));
  EXPECT_EQ(w.focused_control(), tk::kLogFindText);
  ASSERT_TRUE(tk.type(w, tk::kLogFindText, "line 1235"));
  EXPECT_EQ(w.control(tk::kLogFindText).text(), "line 1235");
  ASSERT_TRUE(tk.press_key(w, tk::kLogFindText, tk::Key::kEnter));
  EXPECT_EQ(page.paragraph(0), "line 12350");
  ASSERT_TRUE(tk.press_key(w, 0, tk::Key::kShiftF3));
  EXPECT_EQ(page.paragraph(0), "line 1235");
  EXPECT_EQ(page.paragraph_count(), 30);
}

// The view follows its log only while the operator is at its end, whole
// or paged; back at the end, it follows again.
TEST_F(ViewWindowsTest, LogsFollowAgainWhenTheOperatorReturnsToTheEnd) {
  install("", "[Processes]\nPXSERVER=Server\n");
  std::string small_log = dir.file("logs/server.log");
  dir.write("logs/server.log", numbered(0, 100));
  tk::Window small = open_process_log(host, "PXSERVER");
  ASSERT_TRUE(small.exists());
  tk::Control text = small.control(tk::kLogText);
  const int lines = text.visible_lines();
  ASSERT_LT(lines, 90);
  EXPECT_EQ(text.origin().line, 100 - lines);
  ASSERT_TRUE(tk.scroll(small, tk::kLogVScroll, tk::ScrollAction::kLineUp));
  std::ofstream(small_log, std::ios::app) << numbered(100, 110);
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(text.paragraph_count(), 110);
  EXPECT_EQ(text.origin().line, 99 - lines);
  tk::Control bar = small.control(tk::kLogVScroll);
  ASSERT_TRUE(tk.scroll(small, tk::kLogVScroll, tk::ScrollAction::kThumb, bar.range().maximum));
  EXPECT_EQ(text.origin().line, 110 - lines);
  std::ofstream(small_log, std::ios::app) << numbered(110, 120);
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(text.origin().line, 120 - lines);
  EXPECT_EQ(bar.position(), 120 - lines);

  std::string big_log = dir.file("logs/agent.log");
  dir.write("logs/agent.log", numbered(0, 10000));
  tk::Window big = open_email_log(host);
  ASSERT_TRUE(big.exists());
  tk::Control page = big.control(tk::kLogText);
  ASSERT_TRUE(tk.scroll(big, tk::kLogVScroll, tk::ScrollAction::kPageUp));
  std::ofstream(big_log, std::ios::app) << numbered(10000, 10005);
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(page.paragraph(0), "line 9940");
  ASSERT_TRUE(tk.scroll(big, tk::kLogVScroll, tk::ScrollAction::kPageDown));
  EXPECT_EQ(page.paragraph(0), "line 9970");  // one page down: not yet the end
  std::ofstream(big_log, std::ios::app) << numbered(10005, 10010);
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(page.paragraph(0), "line 9970");
  tk::Control big_bar = big.control(tk::kLogVScroll);
  ASSERT_TRUE(tk.scroll(big, tk::kLogVScroll, tk::ScrollAction::kThumb, big_bar.range().maximum));
  EXPECT_EQ(page.paragraph(29), "line 10009");
  std::ofstream(big_log, std::ios::app) << numbered(10010, 10012);
  tk.advance_time(kFollowPeriodMs);
  EXPECT_EQ(page.paragraph(29), "line 10011");
  EXPECT_EQ(big_bar.position(), 10012 - 30);
  EXPECT_TRUE(op.shown().empty());
}

TEST_F(ViewWindowsTest, SeveralProcessesAskWhichLogToShow) {
  install("", "[Processes]\nPXSERVER=Server\nPXEMIO=Agent\nPXMERGE=Print Agent\n[PXMERGE]\nLogFile=" +
                  dir.file("logs/merge.log") + "\n");
  dir.write("logs/merge.log", "merging\n");
  dir.write("logs/server.log", "serving\n");
  tk.on_dialog(tk::kLogProcessDialog, [&](tk::Window d) {
    tk::Control list = d.control(tk::kLogProcessList);
    EXPECT_EQ(rows_of(list), (std::vector<std::string>{"Server", "Print Agent"}));
    EXPECT_EQ(list.selected(), 0);
    tk.double_click_row(d, tk::kLogProcessList, 1);
  });
  open_server_log(host);
  tk::Window w = tk.find_window(tk::kLogWindow);
  ASSERT_TRUE(w.exists());
  EXPECT_EQ(paragraphs_of(w.control(tk::kLogText)), std::vector<std::string>{"merging"});

  tk.on_dialog(tk::kLogProcessDialog, [&](tk::Window d) { tk.click(d, tk::kCancel); });
  open_server_log(host);
  EXPECT_EQ(tk.open_windows().size(), 1u);
}

TEST_F(ViewWindowsTest, OnlyTheAgentListedOffersAnEmptyChoice) {
  install("", "[Processes]\nPXEMIO=Agent\n");
  dir.write("logs/server.log", "serving\n");
  bool asked = false;
  tk.on_dialog(tk::kLogProcessDialog, [&](tk::Window d) {
    asked = true;
    tk::Control list = d.control(tk::kLogProcessList);
    EXPECT_TRUE(rows_of(list).empty());
    EXPECT_EQ(list.selected(), -1);
    tk.click(d, tk::kOk);  // nothing to choose: the dialog closes
    EXPECT_FALSE(d.exists());
  });
  open_server_log(host);
  EXPECT_TRUE(asked);
  EXPECT_TRUE(tk.open_windows().empty());
  EXPECT_TRUE(op.shown().empty());

  // Without the server's log there is nothing to choose from: no dialog.
  install("", "[Processes]\nPXEMIO=Agent\n");
  ASSERT_TRUE(ini::write_string("Plexar", "LogFile", std::nullopt, config));
  ini::flush_cache();
  open_server_log(host);
  EXPECT_TRUE(tk.open_windows().empty());
  EXPECT_TRUE(op.shown().empty());
}

// Every entry under root with what a write, a new file, a rename or a
// change of its attributes would change (not the access time).
std::map<std::string, std::string> entries_under(const std::string& root) {
  std::map<std::string, std::string> entries;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    struct stat info {};
    if (::lstat(entry.path().c_str(), &info) != 0) continue;
    entries[entry.path().string()] =
        std::to_string(info.st_ino) + " " + std::to_string(info.st_size) + " " +
        std::to_string(info.st_mode) + " " + std::to_string(info.st_mtim.tv_sec) + "." +
        std::to_string(info.st_mtim.tv_nsec) + " " + std::to_string(info.st_ctim.tv_sec) + "." +
        std::to_string(info.st_ctim.tv_nsec);
  }
  return entries;
}

// Every view opened, refreshed, followed, searched and closed over the
// server's files: not one of them is created, changed or locked.
TEST_F(ViewWindowsTest, ViewsLeaveTheServersFilesAsTheyWere) {
  install("", "[Processes]\nPXSERVER=Server\n");
  queued("data/A.DAT", 100);
  queued("data/pxctrl01.msg", 50);
  queued("mail/M.dat", 100);
  queued("mail/stopread.msg", 100);
  dir.write("errors/R.DAT", "^job INVOICE\n");
  dir.write("logs/server.log", numbered(0, 12000));
  dir.write("logs/agent.log", numbered(0, 50));
  auto before = entries_under(dir.path());

  std::vector<tk::Window> windows = {show_status_queue(host), open_rejects(host, false),
                                     open_email_queue(host), open_process_log(host, "PXSERVER"),
                                     open_email_log(host), open_reject_file(host, false, "R.DAT")};
  for (tk::Window w : windows) ASSERT_TRUE(w.exists());
  ASSERT_TRUE(tk.type(windows[3], tk::kLogFindText, "line 5"));
  ASSERT_TRUE(tk.press_key(windows[3], 0, tk::Key::kShiftF3));
  tk.advance_time(10000);
  for (const char* name : {"north.sts", "data/A.DAT", "logs/server.log", "logs/agent.log", "errors/R.DAT"}) {
    int fd = ::open(dir.file(name).c_str(), O_RDONLY);
    ASSERT_GE(fd, 0) << name;
    EXPECT_EQ(::flock(fd, LOCK_EX | LOCK_NB), 0) << name << " is locked";
    ::close(fd);
  }
  for (tk::Window w : windows) w.destroy();
  EXPECT_EQ(entries_under(dir.path()), before);
  EXPECT_TRUE(op.shown().empty());
}

TEST_F(ViewWindowsTest, CjkLocalesChooseTheSystemFont) {
  const char* saved = std::getenv("LC_ALL");
  std::string old = saved ? saved : "";
  setenv("LC_ALL", "ja_JP.UTF-8", 1);
  EXPECT_TRUE(cjk_locale());
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  EXPECT_FALSE(cjk_locale());
  if (saved) {
    setenv("LC_ALL", old.c_str(), 1);
  } else {
    unsetenv("LC_ALL");
  }
}

}  // namespace
}  // namespace px::views
