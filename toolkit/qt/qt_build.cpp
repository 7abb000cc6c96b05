// Building real widgets from the resource tables: controls placed by their
// dialog units, labels tied to their fields, radio groups, the operator's
// acts wired to notifications, and the task window's menu bar.
#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>

#include <cmath>

#include "toolkit/make_event.h"
#include "toolkit/qt/qt_toolkit.h"

namespace px::tk {

namespace {

// Reports focus moved by the operator (Tab, a click, a label's Alt key);
// focus that moves with window activation or by the program is not told.
class FocusWatcher : public QObject {
 public:
  FocusWatcher(QtToolkit& tk, WindowId w, QObject* parent) : QObject(parent), tk_(tk), w_(w) {}

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::FocusIn && event->type() != QEvent::FocusOut) return false;
    Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason != Qt::TabFocusReason && reason != Qt::BacktabFocusReason &&
        reason != Qt::MouseFocusReason && reason != Qt::ShortcutFocusReason) {
      return false;
    }
    int id = watched->property("px_control").toInt();
    tk_.notify(w_, id, event->type() == QEvent::FocusIn ? Notice::kFocusIn : Notice::kFocusOut);
    return false;
  }

 private:
  QtToolkit& tk_;
  WindowId w_;
};

// Reports the keys a list box has no use for itself (Notice::kKey): Insert,
// and Enter outside a dialog (where it presses the default button).
class ListKeyWatcher : public QObject {
 public:
  ListKeyWatcher(QtToolkit& tk, WindowId w, int id, QObject* parent)
      : QObject(parent), tk_(tk), w_(w), id_(id) {}

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    auto* press = static_cast<QKeyEvent*>(event);
    if (press->modifiers() != Qt::NoModifier && press->modifiers() != Qt::KeypadModifier) {
      return false;
    }
    Key key = Key::kNone;
    if (press->key() == Qt::Key_Insert) {
      key = Key::kInsert;
    } else if (press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter) {
      auto* widget = qobject_cast<QWidget*>(watched);
      if (widget == nullptr || qobject_cast<QDialog*>(widget->window()) != nullptr) return false;
      key = Key::kEnter;
    }
    if (key == Key::kNone) return false;
    tk_.deliver(w_, key_event(id_, key));
    return true;
  }

 private:
  QtToolkit& tk_;
  WindowId w_;
  int id_;
};

ScrollAction scroll_action(int action) {
  switch (action) {
    case QAbstractSlider::SliderSingleStepSub: return ScrollAction::kLineUp;
    case QAbstractSlider::SliderSingleStepAdd: return ScrollAction::kLineDown;
    case QAbstractSlider::SliderPageStepSub: return ScrollAction::kPageUp;
    case QAbstractSlider::SliderPageStepAdd: return ScrollAction::kPageDown;
    case QAbstractSlider::SliderMove: return ScrollAction::kThumbTrack;
    default: return ScrollAction::kThumb;
  }
}

QWidget* make_button(QtToolkit& tk, WindowId w, const ControlDef& d, QWidget* parent) {
  auto* button = new QPushButton(to_qt(d.label), parent);
  button->setAutoDefault(false);
  button->setDefault(d.style & kDefaultButton);
  QObject::connect(button, &QPushButton::clicked, parent,
                   [&tk, w, id = d.id] { tk.notify(w, id, Notice::kClicked); });
  return button;
}

QWidget* make_edit(QtToolkit& tk, WindowId w, const ControlDef& d, QWidget* parent) {
  auto* edit = new QLineEdit(to_qt(d.label), parent);
  if (d.limit > 0) edit->setMaxLength(d.limit);
  if (d.style & kPassword) edit->setEchoMode(QLineEdit::Password);
  edit->setReadOnly(d.style & kReadOnly);
  QObject::connect(edit, &QLineEdit::textEdited, parent,
                   [&tk, w, id = d.id] { tk.notify(w, id, Notice::kChanged); });
  return edit;
}

QWidget* make_check(QtToolkit& tk, WindowId w, const ControlDef& d, QWidget* parent) {
  QAbstractButton* button = nullptr;
  if (d.kind == ControlKind::kCheckBox) {
    button = new QCheckBox(to_qt(d.label), parent);
  } else {
    button = new QRadioButton(to_qt(d.label), parent);
    button->setAutoExclusive(false);  // groups follow the resource instead
  }
  QObject::connect(button, &QAbstractButton::clicked, parent,
                   [&tk, w, id = d.id] { tk.notify(w, id, Notice::kClicked); });
  return button;
}

QWidget* make_list(QtToolkit& tk, WindowId w, const ControlDef& d, QWidget* parent) {
  auto* list = new QListWidget(parent);
  list->setSelectionMode((d.style & kMultiSelect) ? QAbstractItemView::MultiSelection
                                                 : QAbstractItemView::SingleSelection);
  list->setUniformItemSizes(true);
  list->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  QObject::connect(list, &QListWidget::itemSelectionChanged, parent,
                   [&tk, w, id = d.id] { tk.notify(w, id, Notice::kSelectionChanged); });
  QObject::connect(list, &QListWidget::itemDoubleClicked, parent,
                   [&tk, w, id = d.id] { tk.notify(w, id, Notice::kDoubleClicked); });
  list->installEventFilter(new ListKeyWatcher(tk, w, d.id, list));
  return list;
}

QWidget* make_combo(QtToolkit& tk, WindowId w, const ControlDef& d, QWidget* parent) {
  auto* combo = new QComboBox(parent);
  bool editable = d.kind == ControlKind::kComboBox;
  combo->setEditable(editable);
  if (editable) {
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setEditText(to_qt(d.label));
    if (d.limit > 0) combo->lineEdit()->setMaxLength(d.limit);
    QObject::connect(combo->lineEdit(), &QLineEdit::textEdited, parent,
                     [&tk, w, id = d.id] { tk.notify(w, id, Notice::kChanged); });
  }
  QObject::connect(combo, &QComboBox::activated, parent,
                   [&tk, w, id = d.id] { tk.notify(w, id, Notice::kSelectionChanged); });
  return combo;
}

QWidget* make_scroll_bar(QtToolkit& tk, WindowId w, const ControlDef& d, QWidget* parent) {
  auto* bar = new QScrollBar(d.kind == ControlKind::kHScrollBar ? Qt::Horizontal : Qt::Vertical, parent);
  bar->setRange(0, 100);
  bar->setPageStep(10);
  bar->setSingleStep(1);
  bar->setFocusPolicy(Qt::NoFocus);
  QObject::connect(bar, &QScrollBar::actionTriggered, parent, [&tk, w, id = d.id, bar](int action) {
    tk.notify(w, id, Notice::kScrolled, scroll_action(action), bar->sliderPosition());
  });
  QObject::connect(bar, &QScrollBar::sliderReleased, parent, [&tk, w, id = d.id, bar] {
    tk.notify(w, id, Notice::kScrolled, ScrollAction::kThumb, bar->value());
  });
  return bar;
}

QWidget* make_text_edit(const ControlDef& d, QWidget* parent) {
  auto* text = new QPlainTextEdit(parent);
  text->setReadOnly(d.style & kReadOnly);
  text->setLineWrapMode(QPlainTextEdit::NoWrap);
  text->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  text->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  text->setUndoRedoEnabled(false);
  return text;
}

QWidget* make_static(const ControlDef& d, QWidget* parent) {
  if (d.kind == ControlKind::kGroupBox) return new QGroupBox(to_qt(d.label), parent);
  auto* label = new QLabel(to_qt(d.label), parent);
  Qt::Alignment align = Qt::AlignLeft;
  if (d.style & kAlignRight) align = Qt::AlignRight;
  if (d.style & kAlignCenter) align = Qt::AlignHCenter;
  label->setAlignment(align | Qt::AlignVCenter);
  if (d.style & kBorder) {
    label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  }
  return label;
}

QWidget* make_widget(QtToolkit& tk, WindowId w, const ControlDef& d, QWidget* parent) {
  switch (d.kind) {
    case ControlKind::kStatic:
    case ControlKind::kGroupBox: return make_static(d, parent);
    case ControlKind::kButton: return make_button(tk, w, d, parent);
    case ControlKind::kEdit: return make_edit(tk, w, d, parent);
    case ControlKind::kCheckBox:
    case ControlKind::kRadioButton: return make_check(tk, w, d, parent);
    case ControlKind::kListBox: return make_list(tk, w, d, parent);
    case ControlKind::kComboBox:
    case ControlKind::kDropDownList: return make_combo(tk, w, d, parent);
    case ControlKind::kHScrollBar:
    case ControlKind::kVScrollBar: return make_scroll_bar(tk, w, d, parent);
    case ControlKind::kTextEdit: return make_text_edit(d, parent);
  }
  return nullptr;
}

// Radio buttons defined one after the other form an exclusive group.
void group_radio_buttons(QtWindow& win) {
  QButtonGroup* group = nullptr;
  for (QtControl& c : win.controls) {
    if (c.kind != ControlKind::kRadioButton) {
      group = nullptr;
      continue;
    }
    if (!group || (c.def->style & kNewGroup)) {
      group = new QButtonGroup(win.canvas);
      group->setExclusive(true);
    }
    group->addButton(static_cast<QAbstractButton*>(c.widget));
  }
}

// A static with a mnemonic labels the next control that takes the focus.
void tie_labels(QtWindow& win) {
  for (size_t i = 0; i < win.controls.size(); ++i) {
    auto* label = qobject_cast<QLabel*>(win.controls[i].widget);
    if (!label || mnemonic_letter(win.controls[i].def->label) == 0) continue;
    for (size_t j = i + 1; j < win.controls.size(); ++j) {
      if (takes_focus(win.controls[j].kind)) {
        label->setBuddy(win.controls[j].widget);
        break;
      }
    }
  }
}

}  // namespace

QString to_qt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string from_qt(const QString& text) { return text.toStdString(); }

QFont make_qfont(const Font& font) {
  QFont f;
  switch (font.family) {
    case Font::Family::kFixed: f = QFontDatabase::systemFont(QFontDatabase::FixedFont); break;
    case Font::Family::kProportional: f = QFontDatabase::systemFont(QFontDatabase::GeneralFont); break;
    case Font::Family::kNamed: f = QFont(to_qt(font.name)); break;
    case Font::Family::kFixedCjk: {
      f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
      for (auto system : {QFontDatabase::Japanese, QFontDatabase::SimplifiedChinese, QFontDatabase::Korean}) {
        for (const QString& family : QFontDatabase::families(system)) {
          if (QFontDatabase::isFixedPitch(family)) {
            f = QFont(family);
            f.setStyleHint(QFont::Monospace);
            break;
          }
        }
      }
      break;
    }
  }
  if (font.points > 0) f.setPointSize(font.points);
  f.setBold(font.bold);
  f.setItalic(font.italic);
  return f;
}

void build_controls(QtToolkit& tk, QtWindow& win) {
  auto* watcher = new FocusWatcher(tk, win.id, win.canvas);
  for (const ControlDef& d : win.def->controls) {
    QtControl c;
    c.id = d.id;
    c.kind = d.kind;
    c.def = &d;
    c.paragraph_limit = d.kind == ControlKind::kTextEdit ? d.limit : 0;
    c.widget = make_widget(tk, win.id, d, win.canvas);
    c.widget->setObjectName(d.id == kNoId ? QString("static") : QString("ctl_%1").arg(d.id));
    c.widget->setGeometry(static_cast<int>(std::lround(d.box.x * tk.unit_x())),
                          static_cast<int>(std::lround(d.box.y * tk.unit_y())),
                          static_cast<int>(std::lround(d.box.width * tk.unit_x())),
                          static_cast<int>(std::lround(d.box.height * tk.unit_y())));
    if (d.style & kFixedFont) c.widget->setFont(make_qfont(Font{}));
    if (d.style & kDisabled) c.widget->setEnabled(false);
    if (d.style & kHidden) c.widget->setVisible(false);
    if (d.kind == ControlKind::kGroupBox) c.widget->lower();
    if (takes_focus(d.kind)) {
      auto* combo = qobject_cast<QComboBox*>(c.widget);
      QWidget* focus_target = combo && combo->isEditable() ? combo->lineEdit() : c.widget;
      focus_target->setProperty("px_control", d.id);
      focus_target->installEventFilter(watcher);
    }
    win.controls.push_back(std::move(c));
  }
  group_radio_buttons(win);
  tie_labels(win);
}

namespace {

void add_items(QtToolkit& tk, QtWindow& win, QMenu& menu, std::span<const MenuItemDef> items) {
  for (const MenuItemDef& item : items) {
    if (item.kind == MenuItemKind::kSeparator) {
      menu.addSeparator();
    } else if (item.kind == MenuItemKind::kSubmenu) {
      add_items(tk, win, *menu.addMenu(to_qt(item.label)), item.submenu);
    } else {
      QAction* action = menu.addAction(to_qt(item.label));
      action->setObjectName(QString("menu_%1").arg(item.id));
      if (!item.accelerator.empty()) {
        action->setShortcut(QKeySequence(to_qt(item.accelerator), QKeySequence::PortableText));
        action->setShortcutContext(Qt::ApplicationShortcut);
      }
      action->setEnabled(!(item.style & kDisabled));
      QObject::connect(action, &QAction::triggered, win.frame,
                       [&tk, w = win.id, id = item.id] { tk.deliver(w, command_event(id)); });
      win.actions[item.id] = action;
    }
  }
}

}  // namespace

void build_menu_bar(QtToolkit& tk, QtWindow& win, QMainWindow& frame, const MenuBarDef& bar) {
  for (const MenuDef& menu : bar.menus) {
    add_items(tk, win, *frame.menuBar()->addMenu(to_qt(menu.label)), menu.items);
  }
}

}  // namespace px::tk
