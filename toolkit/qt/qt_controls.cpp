// The Qt back end's controls. Every change the program makes runs with the
// widget's signals blocked, so that only the operator's acts notify; lists
// keep their selection and a combo box keeps its text when rows are added
// or removed, as in the headless back end.
#include <QAbstractButton>
#include <QButtonGroup>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextBlock>

#include <algorithm>
#include <cmath>

#include "toolkit/qt/qt_toolkit.h"

namespace px::tk {

namespace {

QLineEdit* line_edit(QWidget* w) {
  if (auto* edit = qobject_cast<QLineEdit*>(w)) return edit;
  if (auto* combo = qobject_cast<QComboBox*>(w)) return combo->lineEdit();
  return nullptr;
}

// Runs change on a combo box and puts back the text of its field.
template <typename Change>
void keeping_combo(QComboBox* combo, Change change) {
  QString text = combo->currentText();
  change();
  if (combo->isEditable()) combo->setEditText(text);
}

}  // namespace

QtControl* QtToolkit::control(WindowId w, int id) {
  QtWindow* win = find(w);
  if (!win) return nullptr;
  QtControl* c = win->control(id);
  if (!c) qWarning("window %d has no control %d", win->def->id, id);
  return c;
}

QWidget* QtToolkit::control_widget(WindowId w, int id) {
  QtWindow* win = find(w);
  QtControl* c = win ? win->control(id) : nullptr;
  return c ? c->widget : nullptr;
}

bool QtToolkit::has_control(WindowId w, int id) {
  QtWindow* win = find(w);
  return win && win->control(id);
}

ControlKind QtToolkit::control_kind(WindowId w, int id) {
  QtControl* c = control(w, id);
  return c ? c->kind : ControlKind::kStatic;
}

std::string QtToolkit::text(WindowId w, int id) {
  QtControl* c = control(w, id);
  if (!c) return {};
  QWidget* widget = c->widget;
  if (auto* label = qobject_cast<QLabel*>(widget)) return from_qt(label->text());
  if (auto* button = qobject_cast<QAbstractButton*>(widget)) return from_qt(button->text());
  if (auto* group = qobject_cast<QGroupBox*>(widget)) return from_qt(group->title());
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) return from_qt(edit->text());
  if (auto* combo = qobject_cast<QComboBox*>(widget)) {
    if (combo->isEditable()) return from_qt(combo->currentText());
    return combo->currentIndex() >= 0 ? from_qt(combo->itemText(combo->currentIndex())) : std::string();
  }
  if (auto* list = qobject_cast<QListWidget*>(widget)) {
    std::vector<int> rows = list_selection(w, id);
    return rows.empty() ? std::string() : from_qt(list->item(rows.front())->text());
  }
  if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) {
    flush_text(*c);
    return from_qt(text->toPlainText());
  }
  return {};
}

void QtToolkit::set_text(WindowId w, int id, std::string_view value) {
  QtControl* c = control(w, id);
  if (!c) return;
  QSignalBlocker quiet(c->widget);
  QString text = to_qt(value);
  QWidget* widget = c->widget;
  if (auto* label = qobject_cast<QLabel*>(widget)) {
    label->setText(text);
  } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
    button->setText(text);
  } else if (auto* group = qobject_cast<QGroupBox*>(widget)) {
    group->setTitle(text);
  } else if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    edit->setText(text);
  } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
    if (combo->isEditable()) {
      combo->setEditText(text.left(combo->lineEdit()->maxLength()));
    } else if (int row = combo->findText(text, Qt::MatchExactly); row >= 0) {
      combo->setCurrentIndex(row);
    }
  } else if (c->kind == ControlKind::kTextEdit) {
    text_clear(w, id);
    for (const QString& line : text.split('\n')) text_add(w, id, from_qt(line));
  }
}

bool QtToolkit::enabled(WindowId w, int id) {
  QtControl* c = control(w, id);
  return c && c->widget->isEnabled();
}
void QtToolkit::set_enabled(WindowId w, int id, bool on) {
  if (QtControl* c = control(w, id)) c->widget->setEnabled(on);
}
std::string QtToolkit::tip(WindowId w, int id) {
  QtControl* c = control(w, id);
  return c ? from_qt(c->widget->toolTip()) : std::string();
}
void QtToolkit::set_tip(WindowId w, int id, std::string_view text) {
  if (QtControl* c = control(w, id)) c->widget->setToolTip(to_qt(text));
}
bool QtToolkit::visible(WindowId w, int id) {
  QtControl* c = control(w, id);
  return c && !c->widget->isHidden();
}
void QtToolkit::set_visible(WindowId w, int id, bool on) {
  if (QtControl* c = control(w, id)) c->widget->setVisible(on);
}
void QtToolkit::focus(WindowId w, int id) {
  if (QtControl* c = control(w, id); c && takes_focus(c->kind)) c->widget->setFocus(Qt::OtherFocusReason);
}
void QtToolkit::set_font(WindowId w, int id, const Font& font) {
  if (QtControl* c = control(w, id)) c->widget->setFont(make_qfont(font));
}
Rect QtToolkit::control_rect(WindowId w, int id) {
  QtControl* c = control(w, id);
  if (!c) return {};
  QRect r = c->widget->geometry();
  return {r.x(), r.y(), r.width(), r.height()};
}
void QtToolkit::set_control_rect(WindowId w, int id, const Rect& rect) {
  if (QtControl* c = control(w, id)) c->widget->setGeometry(rect.x, rect.y, rect.width, rect.height);
}

// ---- edits, check boxes, radio buttons

void QtToolkit::set_limit(WindowId w, int id, int characters) {
  QtControl* c = control(w, id);
  if (!c) return;
  if (c->kind == ControlKind::kTextEdit) {
    c->paragraph_limit = std::max(0, characters);
  } else if (QLineEdit* edit = line_edit(c->widget)) {
    QSignalBlocker quiet(edit);
    edit->setMaxLength(characters > 0 ? characters : 32767);
  }
}
int QtToolkit::limit(WindowId w, int id) {
  QtControl* c = control(w, id);
  if (!c) return 0;
  if (c->kind == ControlKind::kTextEdit) return c->paragraph_limit;
  QLineEdit* edit = line_edit(c->widget);
  return edit && edit->maxLength() != 32767 ? edit->maxLength() : 0;
}
TextRange QtToolkit::selection(WindowId w, int id) {
  QtControl* c = control(w, id);
  QLineEdit* edit = c ? line_edit(c->widget) : nullptr;
  if (!edit) return {};
  if (!edit->hasSelectedText()) return {edit->cursorPosition(), edit->cursorPosition()};
  return {edit->selectionStart(), edit->selectionEnd()};
}
void QtToolkit::set_selection(WindowId w, int id, int start, int end) {
  QtControl* c = control(w, id);
  QLineEdit* edit = c ? line_edit(c->widget) : nullptr;
  if (!edit) return;
  QSignalBlocker quiet(edit);
  int size = static_cast<int>(edit->text().size());
  start = std::clamp(start, 0, size);
  end = std::clamp(end, 0, size);
  if (start == end) {
    edit->setCursorPosition(start);
  } else {
    edit->setSelection(std::min(start, end), std::abs(end - start));
  }
}
bool QtToolkit::checked(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* button = c ? qobject_cast<QAbstractButton*>(c->widget) : nullptr;
  return button && button->isChecked();
}
void QtToolkit::set_checked(WindowId w, int id, bool on) {
  QtControl* c = control(w, id);
  auto* button = c ? qobject_cast<QAbstractButton*>(c->widget) : nullptr;
  if (!button || !button->isCheckable()) return;
  QSignalBlocker quiet(button);
  QButtonGroup* group = button->group();
  if (group && !on) group->setExclusive(false);  // an exclusive group cannot uncheck
  button->setChecked(on);
  if (group) group->setExclusive(true);
}

// ---- lists and combo boxes

bool QtToolkit::list_add(WindowId w, int id, std::string_view row, int position) {
  QtControl* c = control(w, id);
  if (!c) return false;
  QSignalBlocker quiet(c->widget);
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) {
    if (position < 0 || position > list->count()) position = list->count();
    list->insertItem(position, to_qt(row));
    return true;
  }
  if (auto* combo = qobject_cast<QComboBox*>(c->widget)) {
    if (position < 0 || position > combo->count()) position = combo->count();
    int current = combo->currentIndex();
    keeping_combo(combo, [&] {
      combo->insertItem(position, to_qt(row));
      combo->setCurrentIndex(current < 0 ? -1 : (current >= position ? current + 1 : current));
    });
    return true;
  }
  return false;
}

bool QtToolkit::list_set_row(WindowId w, int id, int index, std::string_view row) {
  QtControl* c = control(w, id);
  if (!c || index < 0 || index >= list_count(w, id)) return false;
  QSignalBlocker quiet(c->widget);
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) list->item(index)->setText(to_qt(row));
  if (auto* combo = qobject_cast<QComboBox*>(c->widget)) {
    keeping_combo(combo, [&] { combo->setItemText(index, to_qt(row)); });
  }
  return true;
}

bool QtToolkit::list_remove(WindowId w, int id, int index) {
  QtControl* c = control(w, id);
  if (!c || index < 0 || index >= list_count(w, id)) return false;
  QSignalBlocker quiet(c->widget);
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) delete list->takeItem(index);
  if (auto* combo = qobject_cast<QComboBox*>(c->widget)) {
    int current = combo->currentIndex();
    keeping_combo(combo, [&] {
      combo->removeItem(index);
      combo->setCurrentIndex(current == index ? -1 : (current > index ? current - 1 : current));
    });
  }
  return true;
}

void QtToolkit::list_clear(WindowId w, int id) {
  QtControl* c = control(w, id);
  if (!c) return;
  QSignalBlocker quiet(c->widget);
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) list->clear();
  if (auto* combo = qobject_cast<QComboBox*>(c->widget)) keeping_combo(combo, [&] { combo->clear(); });
}

int QtToolkit::list_count(WindowId w, int id) {
  QtControl* c = control(w, id);
  if (!c) return 0;
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) return list->count();
  if (auto* combo = qobject_cast<QComboBox*>(c->widget)) return combo->count();
  if (c->kind == ControlKind::kTextEdit) return text_count(w, id);
  return 0;
}

std::string QtToolkit::list_row(WindowId w, int id, int index) {
  QtControl* c = control(w, id);
  if (!c || index < 0 || index >= list_count(w, id)) return {};
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) return from_qt(list->item(index)->text());
  if (auto* combo = qobject_cast<QComboBox*>(c->widget)) return from_qt(combo->itemText(index));
  return {};
}

void QtToolkit::list_select(WindowId w, int id, int index, bool on) {
  QtControl* c = control(w, id);
  if (!c || index < 0 || index >= list_count(w, id)) return;
  QSignalBlocker quiet(c->widget);
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) {
    if (on && list->selectionMode() != QAbstractItemView::MultiSelection) list->clearSelection();
    list->item(index)->setSelected(on);
    if (on) list->setCurrentRow(index, QItemSelectionModel::NoUpdate);
  } else if (auto* combo = qobject_cast<QComboBox*>(c->widget)) {
    if (on) {
      combo->setCurrentIndex(index);
    } else if (combo->currentIndex() == index) {
      keeping_combo(combo, [&] { combo->setCurrentIndex(-1); });
    }
  }
}

void QtToolkit::list_select_all(WindowId w, int id, bool on) {
  QtControl* c = control(w, id);
  if (!c) return;
  QSignalBlocker quiet(c->widget);
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) {
    if (!on) list->clearSelection();
    else if (list->selectionMode() == QAbstractItemView::MultiSelection) list->selectAll();
  } else if (auto* combo = qobject_cast<QComboBox*>(c->widget); combo && !on) {
    keeping_combo(combo, [&] { combo->setCurrentIndex(-1); });
  }
}

std::vector<int> QtToolkit::list_selection(WindowId w, int id) {
  std::vector<int> rows;
  QtControl* c = control(w, id);
  if (!c) return rows;
  if (auto* list = qobject_cast<QListWidget*>(c->widget)) {
    for (int i = 0; i < list->count(); ++i) {
      if (list->item(i)->isSelected()) rows.push_back(i);
    }
  } else if (auto* combo = qobject_cast<QComboBox*>(c->widget); combo && combo->currentIndex() >= 0) {
    rows.push_back(combo->currentIndex());
  }
  return rows;
}

// A list scrolls by whole rows (make_list), so its scroll bar's value is the
// first row in view once the rows changed just now are laid out.
int QtToolkit::list_top(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* list = c ? qobject_cast<QListWidget*>(c->widget) : nullptr;
  if (!list) return 0;
  list->doItemsLayout();
  return list->verticalScrollBar()->value();
}

void QtToolkit::list_set_top(WindowId w, int id, int index) {
  QtControl* c = control(w, id);
  auto* list = c ? qobject_cast<QListWidget*>(c->widget) : nullptr;
  if (!list) return;
  list->doItemsLayout();
  list->verticalScrollBar()->setValue(index);
}

void QtToolkit::suspend_redraw(WindowId w, int id, bool suspended) {
  QtControl* c = control(w, id);
  if (!c || c->suspended == suspended) return;
  c->suspended = suspended;
  if (!suspended) flush_text(*c);
  c->widget->setUpdatesEnabled(!suspended);
}

// ---- scroll bars

void QtToolkit::set_scroll_range(WindowId w, int id, int minimum, int maximum) {
  QtControl* c = control(w, id);
  if (auto* bar = c ? qobject_cast<QScrollBar*>(c->widget) : nullptr) {
    QSignalBlocker quiet(bar);
    bar->setRange(minimum, std::max(minimum, maximum));
  }
}
ScrollRange QtToolkit::scroll_range(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* bar = c ? qobject_cast<QScrollBar*>(c->widget) : nullptr;
  return bar ? ScrollRange{bar->minimum(), bar->maximum()} : ScrollRange{};
}
void QtToolkit::set_scroll_position(WindowId w, int id, int position) {
  QtControl* c = control(w, id);
  if (auto* bar = c ? qobject_cast<QScrollBar*>(c->widget) : nullptr) {
    QSignalBlocker quiet(bar);
    bar->setValue(position);
  }
}
int QtToolkit::scroll_position(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* bar = c ? qobject_cast<QScrollBar*>(c->widget) : nullptr;
  return bar ? bar->value() : 0;
}
void QtToolkit::set_scroll_page(WindowId w, int id, int page) {
  QtControl* c = control(w, id);
  if (auto* bar = c ? qobject_cast<QScrollBar*>(c->widget) : nullptr) bar->setPageStep(std::max(1, page));
}
int QtToolkit::scroll_page(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* bar = c ? qobject_cast<QScrollBar*>(c->widget) : nullptr;
  return bar ? bar->pageStep() : 0;
}

// ---- text edits

void QtToolkit::flush_text(QtControl& c) {
  auto* text = qobject_cast<QPlainTextEdit*>(c.widget);
  if (!text || c.pending.isEmpty()) return;
  // All paragraphs pending means the edit is empty: set rather than append,
  // so that no empty first paragraph is left in front.
  bool fresh = c.paragraphs == static_cast<int>(c.pending.size());
  QString joined = c.pending.join('\n');
  c.pending.clear();
  if (fresh) {
    text->setPlainText(joined);
  } else {
    text->appendPlainText(joined);
  }
}

void QtToolkit::text_clear(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* text = c ? qobject_cast<QPlainTextEdit*>(c->widget) : nullptr;
  if (!text) return;
  c->pending.clear();
  c->paragraphs = 0;
  text->clear();
}

bool QtToolkit::text_add(WindowId w, int id, std::string_view paragraph) {
  QtControl* c = control(w, id);
  auto* text = c ? qobject_cast<QPlainTextEdit*>(c->widget) : nullptr;
  if (!text || (c->paragraph_limit > 0 && c->paragraphs >= c->paragraph_limit)) return false;
  ++c->paragraphs;
  c->pending.append(to_qt(paragraph));
  if (!c->suspended) flush_text(*c);
  return true;
}

int QtToolkit::text_count(WindowId w, int id) {
  QtControl* c = control(w, id);
  return c && c->kind == ControlKind::kTextEdit ? c->paragraphs : 0;
}

std::string QtToolkit::text_paragraph(WindowId w, int id, int index) {
  QtControl* c = control(w, id);
  auto* text = c ? qobject_cast<QPlainTextEdit*>(c->widget) : nullptr;
  if (!text || index < 0 || index >= c->paragraphs) return {};
  flush_text(*c);
  return from_qt(text->document()->findBlockByNumber(index).text());
}

void QtToolkit::text_show(WindowId w, int id, int index) {
  QtControl* c = control(w, id);
  auto* text = c ? qobject_cast<QPlainTextEdit*>(c->widget) : nullptr;
  if (!text || index < 0 || index >= c->paragraphs) return;
  flush_text(*c);
  QTextCursor cursor(text->document()->findBlockByNumber(index));
  text->setTextCursor(cursor);
  text->ensureCursorVisible();
}

TextOrigin QtToolkit::text_origin(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* text = c ? qobject_cast<QPlainTextEdit*>(c->widget) : nullptr;
  if (!text) return {};
  flush_text(*c);
  int column_width = std::max(1, text->fontMetrics().averageCharWidth());
  return {text->verticalScrollBar()->value(), text->horizontalScrollBar()->value() / column_width};
}

void QtToolkit::text_set_origin(WindowId w, int id, TextOrigin origin) {
  QtControl* c = control(w, id);
  auto* text = c ? qobject_cast<QPlainTextEdit*>(c->widget) : nullptr;
  if (!text) return;
  flush_text(*c);
  int column_width = std::max(1, text->fontMetrics().averageCharWidth());
  text->verticalScrollBar()->setValue(origin.line);
  text->horizontalScrollBar()->setValue(origin.column * column_width);
}

int QtToolkit::text_visible_lines(WindowId w, int id) {
  QtControl* c = control(w, id);
  auto* text = c ? qobject_cast<QPlainTextEdit*>(c->widget) : nullptr;
  if (!text) return 0;
  return std::max(1, text->viewport()->height() / std::max(1, text->fontMetrics().lineSpacing()));
}

}  // namespace px::tk
