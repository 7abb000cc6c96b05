#include "toolkit/headless/headless_toolkit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/ini_profile.h"
#include "common/messages.h"
#include "tests/support/test_dir.h"
#include "toolkit/headless/headless_fixture.h"
#include "toolkit/make_event.h"

namespace px::tk {
namespace {

using namespace sample;
using ::testing::ElementsAre;

using EventsTest = HeadlessTest;

TEST_F(EventsTest, WindowsGetCreateResizeCloseDestroyInOrder) {
  Window w = tk.create_window(kSampleWindow, rec.handler());
  ASSERT_TRUE(w.exists());
  EXPECT_THAT(rec.take(), ElementsAre("0", "3 340x160"));
  EXPECT_TRUE(tk.close(w));  // the handler keeps it open
  EXPECT_TRUE(w.exists());
  w.send_user_event(7);
  tk.resize(w, {400, 200});
  w.destroy();
  EXPECT_THAT(rec.take(), ElementsAre("5", "19 7", "3 400x200", "1"));
  EXPECT_FALSE(w.exists());
  w.set_title("gone");  // a handle of a gone window is quiet
  EXPECT_EQ(w.title(), "");
  EXPECT_FALSE(w.control(2).exists());
}

TEST_F(EventsTest, HandlerMayDestroyItsWindowWhileHandlingAnEvent) {
  int destroys = 0;
  Window w = tk.create_window(kSampleWindow, [&](const Event& e) {
    if (e.type == EventType::kClose) e.window.destroy();
    if (e.type == EventType::kDestroy) {
      ++destroys;
      e.window.destroy();  // a second destroy while going away is ignored
      EXPECT_EQ(e.window.control(kOk).text(), "Close");  // controls still answer
    }
  });
  EXPECT_TRUE(tk.close(w));
  EXPECT_FALSE(w.exists());
  EXPECT_EQ(destroys, 1);
}

TEST_F(EventsTest, TaskWindowCarriesTheMenuBarAndTakesEveryWindowWithIt) {
  Recorder other;
  tk.run_application({kMenuBarBase, rec.handler()});
  Window task = tk.task_window();
  ASSERT_TRUE(task.exists());
  EXPECT_EQ(task.title(), "Velmar Nexa Output Server");
  Window view = tk.create_window(kSampleWindow, other.handler());
  EXPECT_TRUE(tk.choose_menu(task, kCmdPauseServer));
  EXPECT_TRUE(tk.request_help(task));
  EXPECT_TRUE(tk.send_quit(false));
  EXPECT_FALSE(tk.send_quit(true));  // the handler did not allow it
  EXPECT_TRUE(tk.mouse(task, {3, 4}));
  tk.shut_down();
  EXPECT_FALSE(view.exists());
  EXPECT_FALSE(tk.running());
  EXPECT_THAT(rec.take(), ElementsAre("0", "3 960x600", "13 1037", "18 0", "17", "17 query", "6", "1"));
  EXPECT_EQ(other.lines.back(), "1");
}

TEST_F(EventsTest, QuitQueryIsAllowedOnlyByTheHandler) {
  tk.run_application({kMenuBarBase, [](const Event& e) {
                        if (e.type == EventType::kQuit && e.query) e.window.toolkit().allow_quit();
                      }});
  EXPECT_TRUE(tk.send_quit(true));
}

TEST_F(EventsTest, TimersFireAsTimePassesAndDieWithTheirWindow) {
  Window w = tk.create_window(kSampleWindow, rec.handler());
  long fast = w.start_timer(300);
  long slow = w.start_timer(1000);
  rec.take();
  tk.advance_time(999);
  EXPECT_THAT(rec.take(), ElementsAre("16 " + std::to_string(fast), "16 " + std::to_string(fast),
                                      "16 " + std::to_string(fast)));
  tk.advance_time(1);
  EXPECT_THAT(rec.take(), ElementsAre("16 " + std::to_string(slow)));
  w.stop_timer(fast);
  EXPECT_THAT(tk.timers(w), ElementsAre(slow));
  EXPECT_EQ(tk.timer_interval(slow), 1000);
  w.destroy();
  EXPECT_TRUE(tk.timers(w).empty());
  tk.advance_time(5000);
  EXPECT_THAT(rec.take(), ElementsAre("1"));
  tk.fire_timer(slow);
  ASSERT_EQ(failures.size(), 1u);
  failures.clear();
}

TEST_F(EventsTest, MenuItemsFollowTheirStateAndAccelerators) {
  tk.run_application({kMenuBarEmail, rec.handler()});
  Window task = tk.task_window();
  EXPECT_TRUE(task.has_menu_item(kCmdEmailLog));
  task.set_menu_enabled(kCmdCut, false);
  task.set_menu_enabled(kCmdSaveSecond, false);  // on no menu bar: ignored
  EXPECT_FALSE(task.menu_enabled(kCmdCut));
  EXPECT_FALSE(tk.press_accelerator(task, "Ctrl+X"));
  EXPECT_FALSE(tk.choose_menu(task, kCmdCut));
  EXPECT_TRUE(tk.press_accelerator(task, "ctrl+c"));
  EXPECT_TRUE(tk.press_accelerator(task, "Del"));
  task.set_menu_checked(kCmdSave, true);
  EXPECT_TRUE(task.menu_checked(kCmdSave));
  rec.take();
  EXPECT_FALSE(tk.choose_menu(task, 4242));
  task.set_enabled(false);
  EXPECT_FALSE(tk.choose_menu(task, kCmdSave));
  EXPECT_TRUE(rec.lines.empty());

  HeadlessToolkit base(lookup());
  base.run_application({kMenuBarBase, Handler()});
  EXPECT_FALSE(base.task_window().has_menu_item(kCmdEmailLog));
  EXPECT_TRUE(base.task_window().has_menu_item(kCmdManagedMemory));
}

TEST_F(EventsTest, DrawingOnlyDuringPaint) {
  Window w = tk.create_window(kSampleWindow, [](const Event& e) {
    if (e.type != EventType::kPaint) return;
    e.window.clear(kLightGrey);
    e.window.draw_text({5, 20}, "header");
    EXPECT_FALSE(e.window.draw_image({0, 0}, "/no/such/ssplash.bmp"));
  });
  EXPECT_THAT(tk.paint(w), ElementsAre("header"));
  ASSERT_EQ(tk.last_drawing(w).size(), 2u);
  EXPECT_EQ(tk.last_drawing(w)[0].color.red, 192);
  w.draw_text({0, 0}, "outside");
  EXPECT_EQ(failures.size(), 1u);
  failures.clear();
}

TEST_F(EventsTest, HelpHookSeesEveryEventFirst) {
  TestDir dir;
  std::string help = dir.write("pxcntrl.html", "<HTML><body><a name=\"status\">x</a></body></html>");
  std::string not_help = dir.write("notes.txt", "plain");
  std::vector<int> seen;
  tk.set_help_hook([&](const Event& e) {
    seen.push_back(e.number());
    return e.type == EventType::kHelp && e.window.toolkit().process_help_event(e);
  });
  Window w = tk.create_window(kSampleWindow, rec.handler());
  EXPECT_FALSE(tk.open_help_file(not_help));
  EXPECT_FALSE(tk.open_help_file(dir.path()));
  tk.request_help(w);  // no help file yet: the handler gets it
  ASSERT_TRUE(tk.open_help_file(help));
  w.toolkit().set_help_topic(w.id(), 0, "status");
  tk.request_help(w);  // taken by the hook
  EXPECT_THAT(seen, ElementsAre(0, 3, 18, 18));
  EXPECT_THAT(rec.take(), ElementsAre("0", "3 340x160", "18 0"));
  EXPECT_THAT(tk.help_topics_shown(), ElementsAre("status"));
  w.destroy();
  Window again = tk.create_window(kSampleWindow, Handler());
  Event asked = help_event(0);
  asked.window = again;
  EXPECT_TRUE(tk.process_help_event(asked));
  EXPECT_EQ(tk.help_topics_shown().back(), "");  // no topic left: the contents
}

TEST_F(EventsTest, SuspendedListMustBeResumedBeforeTheEventEnds) {
  Window w = tk.create_window(kSampleWindow, [](const Event& e) {
    if (e.type == EventType::kUser) e.window.control(2).suspend();
  });
  w.send_user_event(1);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_NE(failures[0].find("left suspended"), std::string::npos);
  failures.clear();
}

class DialogTest : public HeadlessTest {};

Handler closing_on_buttons(Recorder& rec) {
  Handler record = rec.handler();
  return [record](const Event& e) {
    record(e);
    if (e.type == EventType::kCreate) e.window.control(kName).set_text("hello");
    if (e.is_control(kOk, Notice::kClicked) || e.is_control(kCancel, Notice::kClicked)) e.window.destroy();
  };
}

TEST_F(DialogTest, ModalDialogReturnsWhenItsScriptCloses) {
  std::string seen;
  tk.on_dialog(kSampleDialog, [&](Window d) {
    seen = d.control(kName).text();
    EXPECT_EQ(tk.focused_top_window(), d);
    EXPECT_TRUE(tk.press_enter(d));
  });
  EXPECT_TRUE(tk.run_modal_dialog(kSampleDialog, closing_on_buttons(rec)));
  EXPECT_EQ(seen, "hello");
  EXPECT_THAT(rec.take(), ElementsAre("0", "3 424x420", "15 1 clicked", "1"));
}

TEST_F(DialogTest, NestedDialogsTakeTheirScriptsInOrder) {
  Recorder inner;
  tk.on_dialog(kSampleDialog, [&](Window d) {
    EXPECT_TRUE(tk.type(d, kName, "ab"));
    EXPECT_TRUE(tk.click(d, kKeep));  // opens the bare dialog
    EXPECT_TRUE(tk.press_escape(d));
  });
  tk.on_dialog(kBareDialog, [&](Window d) {
    Window outer = tk.find_window(kSampleDialog);
    EXPECT_FALSE(tk.click(outer, kOk));  // blocked by the inner dialog
    EXPECT_TRUE(tk.press_escape(d));     // no cancel button: the close event
    EXPECT_TRUE(d.exists());
    d.destroy();
  });
  Handler outer = closing_on_buttons(rec);
  EXPECT_TRUE(tk.run_modal_dialog(kSampleDialog, [&](const Event& e) {
    outer(e);
    if (e.is_control(kKeep, Notice::kClicked)) {
      EXPECT_TRUE(e.window.toolkit().run_modal_dialog(kBareDialog, inner.handler()));
    }
  }));
  EXPECT_THAT(inner.lines, ElementsAre("0", "3 140x68", "5", "1"));
}

TEST_F(DialogTest, UnscriptedOrMismatchedDialogsFailAndAreClosed) {
  EXPECT_TRUE(tk.run_modal_dialog(kSampleDialog, rec.handler()));
  EXPECT_EQ(rec.lines.back(), "1");
  tk.on_dialog(kBareDialog, [](Window) {});
  EXPECT_TRUE(tk.run_modal_dialog(kSampleDialog, Handler()));
  tk.verify_scripts_used();
  tk.on_dialog(kSampleDialog, [](Window) {});  // leaves it open
  EXPECT_TRUE(tk.run_modal_dialog(kSampleDialog, Handler()));
  EXPECT_EQ(failures.size(), 4u);
  EXPECT_TRUE(tk.open_windows().empty());
  failures.clear();
}

TEST_F(DialogTest, DialogClosingItselfOnCreateNeedsNoScript) {
  EXPECT_TRUE(tk.run_modal_dialog(kSampleDialog, [](const Event& e) {
    if (e.type == EventType::kCreate) e.window.destroy();
  }));
  EXPECT_FALSE(tk.run_modal_dialog(4242, Handler()));
  EXPECT_FALSE(tk.create_window(kSampleDialog, Handler()).exists());  // dialogs are modal
  EXPECT_FALSE(tk.run_modal_dialog(kSampleWindow, Handler()));
}

class BoxTest : public HeadlessTest {
 protected:
  void SetUp() override {
    ini::flush_cache();
    messages::reset();
    ini::set_file(dir_.write("pxcntrl.ini", "[Messages]\nMsg183=10 Nexa Control\n"));
  }
  void TearDown() override {
    HeadlessTest::TearDown();
    messages::reset();
    ini::flush_cache();
  }
  TestDir dir_;
};

TEST_F(BoxTest, AnswersComeFromTheQueueInOrder) {
  tk.answer_ask(Answer::kThird, "unsaved");
  tk.expect_error("cannot");
  tk.expect_note();
  EXPECT_EQ(tk.post_ask("Save the unsaved edits?", "Save", "Discard", "Cancel"), Answer::kThird);
  tk.post_error("The file cannot be opened.");
  tk.post_note("Done.");
  ASSERT_EQ(tk.boxes().size(), 3u);
  EXPECT_EQ(tk.boxes()[0].caption, "Nexa Control");  // without its "[183]"
  EXPECT_THAT(tk.boxes()[0].buttons, ElementsAre("Save", "Discard", "Cancel"));
  EXPECT_EQ(tk.boxes()[1].kind, BoxKind::kError);
  EXPECT_EQ(tk.boxes()[2].kind, BoxKind::kNote);
}

TEST_F(BoxTest, BoxesNobodyExpectedFail) {
  tk.post_error("surprise");
  tk.expect_note("other");
  tk.post_error("not a note");
  tk.answer_ask(Answer::kThird);
  EXPECT_EQ(tk.post_ask("two buttons only", "Yes", "No"), Answer::kSecond);
  tk.expect_error("never shown");
  tk.verify_scripts_used();
  EXPECT_EQ(failures.size(), 4u);
  failures.clear();
}

TEST_F(BoxTest, FileDialogAnswersAreScriptedToo) {
  tk.answer_file_dialog("/tmp/x.html");
  tk.answer_file_dialog(std::nullopt);
  EXPECT_EQ(tk.choose_file_to_open({"Please Find and Open help file...", "", ""}), "/tmp/x.html");
  EXPECT_EQ(tk.choose_file_to_open({"again", "", ""}), std::nullopt);
  EXPECT_EQ(tk.file_requests()[0].prompt, "Please Find and Open help file...");
  EXPECT_EQ(tk.choose_file_to_open({"third", "", ""}), std::nullopt);
  EXPECT_EQ(failures.size(), 1u);
  failures.clear();
}

}  // namespace
}  // namespace px::tk
