// The Qt back end under a private X server: every resource builds into real
// widgets with the right labels, styles, tab order and menus; modal dialogs
// answer Enter and Escape; controls keep the rules the headless back end
// keeps; message boxes carry message 183 as their caption.
#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTimer>
#include <QtTest/QtTest>

#include "common/ini_profile.h"
#include "common/messages.h"
#include "tests/support/test_dir.h"
#include "toolkit/headless/sample_resources.h"
#include "toolkit/qt/qt_toolkit.h"

using namespace px::tk;

namespace {

bool kind_matches(ControlKind kind, QWidget* w) {
  switch (kind) {
    case ControlKind::kStatic: return qobject_cast<QLabel*>(w);
    case ControlKind::kGroupBox: return qobject_cast<QGroupBox*>(w);
    case ControlKind::kButton: return qobject_cast<QPushButton*>(w);
    case ControlKind::kEdit: return qobject_cast<QLineEdit*>(w);
    case ControlKind::kCheckBox: return qobject_cast<QCheckBox*>(w);
    case ControlKind::kRadioButton: return qobject_cast<QRadioButton*>(w);
    case ControlKind::kListBox: return qobject_cast<QListWidget*>(w);
    case ControlKind::kComboBox:
    case ControlKind::kDropDownList: {
      auto* combo = qobject_cast<QComboBox*>(w);
      return combo && combo->isEditable() == (kind == ControlKind::kComboBox);
    }
    case ControlKind::kHScrollBar:
    case ControlKind::kVScrollBar: return qobject_cast<QScrollBar*>(w);
    case ControlKind::kTextEdit: return qobject_cast<QPlainTextEdit*>(w);
  }
  return false;
}

QString label_of(QWidget* w) {
  if (auto* label = qobject_cast<QLabel*>(w)) return label->text();
  if (auto* button = qobject_cast<QAbstractButton*>(w)) return button->text();
  if (auto* group = qobject_cast<QGroupBox*>(w)) return group->title();
  if (auto* edit = qobject_cast<QLineEdit*>(w)) return edit->text();
  return {};
}

// Runs act on the active modal widget as soon as it is shown.
void when_modal(const std::function<void(QWidget*)>& act) {
  auto* timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, qApp, [timer, act] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible()) return;
    timer->stop();
    timer->deleteLater();
    act(modal);
  });
  timer->start(20);
}

}  // namespace

class QtBackEndTest : public QObject {
  Q_OBJECT

 private:
  QtToolkit* tk_ = nullptr;
  int argc_ = 1;
  char name_[16] = "toolkit_qt_test";
  char* argv_[2] = {name_, nullptr};

 private Q_SLOTS:
  void initTestCase() { tk_ = new QtToolkit(argc_, argv_, sample::lookup()); }
  void cleanupTestCase() { delete tk_; }

  void every_resource_builds_with_its_controls() {
    for (const WindowDef* def : all_window_defs()) {
      if (def->kind == WindowKind::kTask) continue;
      Window w = tk_->open_for_review(def->id);
      QVERIFY2(w.exists(), qPrintable(QString("resource %1").arg(def->id)));
      QWidget* frame = tk_->frame_widget(w.id());
      QCOMPARE(frame->windowTitle(), to_qt(def->title));
      QWidget* previous_field = nullptr;
      for (const ControlDef& d : def->controls) {
        QString where = QString("resource %1 control %2").arg(def->id).arg(d.id);
        QWidget* widget = d.id == kNoId ? nullptr : tk_->control_widget(w.id(), d.id);
        if (d.id == kNoId) {
          for (QWidget* child : frame->findChildren<QWidget*>("static")) {
            if (label_of(child) == to_qt(d.label)) widget = child;
          }
        }
        // QFAIL, not QVERIFY2: QFAIL always returns, so the checks below
        // plainly never see a null widget (QVERIFY2 returns as qVerify says).
        if (!widget) QFAIL(qPrintable(where));
        QVERIFY2(kind_matches(d.kind, widget), qPrintable(where));
        if (d.kind != ControlKind::kListBox && d.kind != ControlKind::kTextEdit) {
          QCOMPARE(label_of(widget), to_qt(d.label));
        }
        QCOMPARE(widget->isEnabled(), !(d.style & kDisabled));
        QCOMPARE(widget->isHidden(), bool(d.style & kHidden));
        QVERIFY2(widget->parentWidget()->rect().contains(widget->geometry()), qPrintable(where));
        if (takes_focus(d.kind)) {
          if (previous_field) {  // Tab goes through the fields in definition order
            QWidget* next = previous_field->nextInFocusChain();
            while (next && next->focusPolicy() == Qt::NoFocus && next != widget) next = next->nextInFocusChain();
            if (qobject_cast<QComboBox*>(widget) && next == static_cast<QComboBox*>(widget)->lineEdit()) next = widget;
            QCOMPARE(next, widget);
          }
          if (widget->focusPolicy() != Qt::NoFocus) previous_field = widget;
          // An editable combo box passes the focus on from its own line edit.
          if (auto* combo = qobject_cast<QComboBox*>(widget); combo && combo->lineEdit()) {
            previous_field = combo->lineEdit();
          }
        }
      }
      w.destroy();
    }
  }

  void every_menu_bar_builds() {
    for (const MenuBarDef* bar : all_menu_bars()) {
      Window task = tk_->start_application({bar->id, Handler()});
      auto* frame = static_cast<QMainWindow*>(tk_->frame_widget(task.id()));
      QList<QAction*> menus = frame->menuBar()->actions();
      QCOMPARE(menus.size(), qsizetype(bar->menus.size()));
      for (size_t m = 0; m < bar->menus.size(); ++m) {
        QAction* menu = menus[qsizetype(m)];
        QCOMPARE(menu->text(), to_qt(bar->menus[m].label));
        compare_items(menu->menu(), bar->menus[m].items);
      }
      task.destroy();
    }
  }

  // A tooltip says why an item is disabled: the menu shows it, and taking it
  // away leaves the item's own text as Qt's default.
  void tooltips_of_menu_items_and_controls() {
    Window task = tk_->start_application({kMenuBarBase, Handler()});
    task.set_menu_enabled(kCmdPauseServer, false);
    task.set_menu_tip(kCmdPauseServer, "Read-only here");
    QCOMPARE(task.menu_tip(kCmdPauseServer), std::string("Read-only here"));
    QCOMPARE(task.menu_tip(kCmdResumeServer), std::string());
    auto* frame = static_cast<QMainWindow*>(tk_->frame_widget(task.id()));
    QAction* pause = frame->findChild<QAction*>(QString("menu_%1").arg(kCmdPauseServer));
    QVERIFY(pause);
    QCOMPARE(pause->toolTip(), QString("Read-only here"));
    int menus = 0;
    for (QObject* owner : pause->associatedObjects()) {
      if (auto* menu = qobject_cast<QMenu*>(owner)) {
        QVERIFY(menu->toolTipsVisible());
        ++menus;
      }
    }
    QCOMPARE(menus, 1);
    task.set_menu_tip(kCmdPauseServer, "");
    QCOMPARE(task.menu_tip(kCmdPauseServer), std::string());
    task.destroy();

    Window d = tk_->open_for_review(kSelectInstanceDialog);
    d.control(kOk).set_tip("Not now");
    QCOMPARE(d.control(kOk).tip(), std::string("Not now"));
    QCOMPARE(tk_->control_widget(d.id(), kOk)->toolTip(), QString("Not now"));
    d.destroy();
  }

  void enter_presses_ok_and_escape_presses_cancel() {
    for (auto [key, button] : {std::pair{Qt::Key_Return, kOk}, std::pair{Qt::Key_Escape, kCancel}}) {
      sample::Recorder rec;
      Handler record = rec.handler();
      when_modal([key = key](QWidget* dialog) { QTest::keyClick(dialog, key); });
      QVERIFY(tk_->run_modal_dialog(kSelectInstanceDialog, [record](const Event& e) {
        record(e);
        if (e.type == EventType::kControl && e.notice == Notice::kClicked) e.window.destroy();
      }));
      std::erase(rec.lines, "4");  // paint events come as the X server pleases
      QCOMPARE(rec.lines.front(), std::string("0"));
      QCOMPARE(rec.lines.size(), size_t(4));
      QCOMPARE(rec.lines[2], "15 " + std::to_string(button) + " clicked");
      QCOMPARE(rec.lines[3], std::string("1"));
    }
  }

  void controls_keep_the_rules_of_the_headless_back_end() {
    using namespace sample;
    Recorder rec;
    Window d = tk_->open_for_review(kSampleDialog, rec.handler());
    QWidget* frame = tk_->frame_widget(d.id());
    frame->activateWindow();
    QVERIFY(QTest::qWaitForWindowExposed(frame));
    rec.take();

    QTest::keyClicks(tk_->control_widget(d.id(), kName), "abcdefg");  // limit 5
    QCOMPARE(d.control(kName).text(), std::string("abcde"));
    QCOMPARE(std::count(rec.lines.begin(), rec.lines.end(), "15 3 changed"), 5);
    d.control(kName).set_selection(1, 3);
    QCOMPARE(d.control(kName).selection().end, 3);

    rec.take();
    d.control(kKeep).set_checked(true);
    d.control(kSingle).add("alpha");
    d.control(kSingle).add("beta");
    d.control(kSingle).select(0);
    QVERIFY(rec.lines.empty());  // the program's changes never notify
    QTest::mouseClick(tk_->control_widget(d.id(), kKeep), Qt::LeftButton);
    QVERIFY(!d.control(kKeep).checked());
    QCOMPARE(rec.lines.back(), std::string("15 4 clicked"));

    QTest::mouseClick(tk_->control_widget(d.id(), kMinutes), Qt::LeftButton);
    QTest::mouseClick(tk_->control_widget(d.id(), kLeft), Qt::LeftButton);
    QTest::mouseClick(tk_->control_widget(d.id(), kSeconds), Qt::LeftButton);
    QVERIFY(!d.control(kMinutes).checked());
    QVERIFY(d.control(kSeconds).checked() && d.control(kLeft).checked());
    d.control(kSeconds).set_checked(false);
    QVERIFY(!d.control(kSeconds).checked());

    auto* list = static_cast<QListWidget*>(tk_->control_widget(d.id(), kSingle));
    rec.take();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
    QCOMPARE(d.control(kSingle).selected(), 1);
    QVERIFY(std::count(rec.lines.begin(), rec.lines.end(), "15 9 selection") == 1);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
    QCOMPARE(rec.lines.back(), std::string("15 9 double"));
    QTest::keyClick(list, Qt::Key_Insert);
    QCOMPARE(rec.lines.back(), std::string("15 9 key insert"));
    Control multi = d.control(kMulti);
    for (const char* row : {"a", "b", "c"}) multi.add(row);
    multi.select(0);
    multi.select(2);
    QCOMPARE(multi.selected_rows(), (std::vector<int>{0, 2}));

    Control combo = d.control(kCombo);
    combo.set_text("typed");
    combo.add("LPT1");
    QCOMPARE(combo.text(), std::string("type"));
    QCOMPARE(combo.selected(), -1);
    combo.select(0);
    QCOMPARE(combo.text(), std::string("LPT1"));

    Control text = d.control(kText);
    text.suspend();
    for (const char* p : {"one", "two", "three", "four"}) text.add_paragraph(p);
    text.resume();
    QCOMPARE(text.paragraph_count(), 3);
    QCOMPARE(text.paragraph(0), std::string("one"));
    QCOMPARE(text.text(), std::string("one\ntwo\nthree"));

    Control spin = d.control(kSpin);
    spin.set_range(1, 999);
    spin.set_position(5000);
    QCOMPARE(spin.position(), 999);
    d.destroy();
  }

  void window_keys_and_the_list_position() {
    using namespace sample;
    Recorder rec;
    Window w = tk_->open_for_review(kSampleWindow, rec.handler());
    QWidget* frame = tk_->frame_widget(w.id());
    frame->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(frame));
    auto* list = static_cast<QListWidget*>(tk_->control_widget(w.id(), 2));
    list->setFocus(Qt::TabFocusReason);
    rec.take();
    QTest::keyClick(list, Qt::Key_F, Qt::ControlModifier);
    QTest::keyClick(list, Qt::Key_F3);
    QTest::keyClick(list, Qt::Key_Insert);
    QTest::keyClick(list, Qt::Key_F3, Qt::ShiftModifier);  // not one of its keys
    QCOMPARE(rec.lines, (std::vector<std::string>{"15 2 key ctrl+f", "15 2 key f3", "15 2 key insert"}));
    // A field keeps the keys it types with; the window's keys still reach it.
    auto* field = tk_->control_widget(w.id(), 3);
    field->setFocus(Qt::TabFocusReason);
    rec.take();
    QTest::keyClicks(field, "ab");
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(rec.lines, (std::vector<std::string>{"15 3 changed", "15 3 changed", "15 3 key enter",
                                                  "15 3 key ctrl+f"}));
    QCOMPARE(w.control(3).text(), std::string("ab"));

    Control rows = w.control(2);
    for (int i = 0; i < 200; ++i) rows.add("row " + std::to_string(i));
    rows.set_top_row(50);
    QCOMPARE(rows.top_row(), 50);
    rows.set_row(51, "changed");
    rows.add("row 200");
    rows.select(52);  // in view
    QCOMPARE(rows.top_row(), 50);
    rows.select(5);   // out of view: scrolled to
    QCOMPARE(rows.top_row(), 5);
    rows.set_top_row(120);
    rows.select(5);   // already selected
    QCOMPARE(rows.top_row(), 120);
    rows.clear_rows();
    QCOMPARE(rows.top_row(), 0);
    w.destroy();
  }

  void timers_paint_and_close_reach_the_handler() {
    int ticks = 0;
    int paints = 0;
    int closes = 0;
    Window w = tk_->open_for_review(sample::kSampleWindow, [&](const Event& e) {
      if (e.type == EventType::kTimer) ++ticks;
      if (e.type == EventType::kClose) ++closes;
      if (e.type != EventType::kPaint) return;
      ++paints;
      e.window.clear(kLightGrey);
      e.window.draw_text({5, 20}, "header");
    });
    long timer = w.start_timer(20);
    QTRY_VERIFY_WITH_TIMEOUT(ticks >= 2, 2000);
    w.stop_timer(timer);
    QTRY_VERIFY_WITH_TIMEOUT(paints >= 1, 2000);
    QImage shot = tk_->frame_widget(w.id())->grab().toImage();
    QCOMPARE(shot.pixelColor(shot.width() - 2, shot.height() - 2), QColor(192, 192, 192));
    tk_->frame_widget(w.id())->close();  // the close box: the handler decides
    QCOMPARE(closes, 1);
    QVERIFY(w.exists());
    w.destroy();
    QVERIFY(!w.exists());
  }

  void message_boxes_carry_the_caption() {
    px::TestDir dir;
    px::ini::flush_cache();
    px::messages::reset();
    px::ini::set_file(dir.write("pxcntrl.ini", "[Messages]\nMsg183=10 Nexa Control\n"));
    QString title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    when_modal([&](QWidget* w) {
      auto* box = qobject_cast<QMessageBox*>(w);
      title = box->windowTitle();
      icon = box->icon();
      box->buttons().front()->click();
    });
    tk_->post_note("Done.");
    QCOMPARE(title, QString("Nexa Control"));
    QCOMPARE(icon, QMessageBox::Information);
    when_modal([](QWidget* w) { QTest::keyClick(w, Qt::Key_Escape); });
    QCOMPARE(tk_->post_ask("Save?", "Save", "Discard", "Cancel"), Answer::kThird);
    when_modal([](QWidget* w) {
      for (QAbstractButton* b : static_cast<QMessageBox*>(w)->buttons()) {
        if (b->text() == "Discard") b->click();
      }
    });
    QCOMPARE(tk_->post_ask("Save?", "Save", "Discard", "Cancel"), Answer::kSecond);
    px::messages::reset();
    px::ini::flush_cache();
  }

 private:
  void compare_items(QMenu* menu, std::span<const MenuItemDef> items) {
    QVERIFY(menu);
    QList<QAction*> actions = menu->actions();
    QCOMPARE(actions.size(), qsizetype(items.size()));
    for (size_t i = 0; i < items.size(); ++i) {
      const MenuItemDef& item = items[i];
      QAction* action = actions[qsizetype(i)];
      QCOMPARE(action->isSeparator(), item.kind == MenuItemKind::kSeparator);
      if (item.kind == MenuItemKind::kSeparator) continue;
      QCOMPARE(action->text(), to_qt(item.label));
      if (item.kind == MenuItemKind::kSubmenu) {
        compare_items(action->menu(), item.submenu);
        continue;
      }
      QCOMPARE(action->shortcut(), QKeySequence(to_qt(item.accelerator), QKeySequence::PortableText));
      QCOMPARE(action->objectName(), QString("menu_%1").arg(item.id));
    }
  }
};

QTEST_MAIN(QtBackEndTest)
#include "qt_resources_test.moc"
