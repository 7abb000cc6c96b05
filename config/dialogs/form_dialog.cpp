#include "config/dialogs/form_dialog.h"

#include "common/expand.h"
#include "common/messages.h"
#include "common/text.h"
#include "config/forms/form_messages.h"
#include "config/operator_action.h"

namespace px::dialogs {

using forms::FieldKind;

FormDialog::FormDialog(forms::Form& form, Operator& op, std::string instance_name,
                       FormControls controls, ExtraHandler extra, FileSystem* files)
    : form_(form), op_(op), instance_name_(std::move(instance_name)),
      controls_(std::move(controls)), extra_(std::move(extra)), files_(files) {}

void FormDialog::handle(const tk::Event& e) {
  if (extra_ && e.type != tk::EventType::kCreate && extra_(e, form_)) return;
  tk::DialogBase::handle(e);
  if (extra_ && e.type == tk::EventType::kCreate) extra_(e, form_);
}

void FormDialog::control(tk::Window dialog, const tk::Event& e) {
  if (e.notice == tk::Notice::kChanged) {
    changed(dialog, e.control);
  } else if (e.notice == tk::Notice::kScrolled && e.control == controls_.spin) {
    scrolled(dialog, e);
  } else if (e.notice == tk::Notice::kClicked || e.notice == tk::Notice::kSelectionChanged) {
    clicked(dialog, e.control);
  }
}

void FormDialog::create(tk::Window dialog) {
  dialog.set_title(fill_percent_s(dialog.title(), instance_name_));
  if (!controls_.location_rows.empty()) {
    int location = form_.index_of("CurrencyLocation");
    tk::Control list = dialog.control(form_.field(static_cast<std::size_t>(location)).control);
    for (int n : controls_.location_rows) list.add(messages::message_label(n));
  }
  fill(dialog);
  disable_when_read_only(dialog.control(controls_.ok));
}

void FormDialog::fill(tk::Window dialog) {
  for (std::size_t i = 0; i < form_.size(); ++i) {
    const forms::FieldDef& f = form_.field(i);
    const std::string& text = form_.text(i);
    tk::Control control = dialog.control(f.control);
    switch (f.kind) {
      case FieldKind::kCheck:
        control.set_checked(text == "Yes");
        break;
      case FieldKind::kRadioYes:
        dialog.control(controls_.seconds).set_checked(text == "Yes");
        dialog.control(controls_.minutes).set_checked(text != "Yes");
        break;
      case FieldKind::kUnit:
        dialog.control(controls_.seconds).set_checked(text == "seconds");
        dialog.control(controls_.minutes).set_checked(text != "seconds");
        break;
      case FieldKind::kLocation:
        control.select(text == "Right" ? 1 : 0);
        break;
      case FieldKind::kScanTime:
        control.set_text(text);
        dialog.control(controls_.spin).set_range(forms::kScanTimeMinimum, forms::kScanTimeMaximum);
        dialog.control(controls_.spin).set_position(parse_int(text));
        break;
      default:
        control.set_text(text);
        break;
    }
    bool shown = !form_.hidden(i);
    for (const std::vector<int>& group : controls_.shown_with) {
      if (group.front() != f.control) continue;
      for (int id : group) dialog.control(id).set_visible(shown);
    }
    if (!shown) control.set_visible(false);
  }
}

void FormDialog::changed(tk::Window dialog, int control_id) {
  int i = field_of(control_id);
  if (i < 0) return;
  tk::Control control = dialog.control(control_id);
  std::string text = control.text();
  forms::EditResult result =
      form_.edit(static_cast<std::size_t>(i), text, control.selection().end);
  if (result.text != text) {
    control.set_text(result.text);
    control.set_caret(result.caret);
  }
  if (form_.field(static_cast<std::size_t>(i)).kind == FieldKind::kScanTime) {
    dialog.control(controls_.spin).set_position(parse_int(result.text));
  }
  if (result.beep) dialog.toolkit().beep();
  note(dialog, form_.field(static_cast<std::size_t>(i)), result);
}

void FormDialog::note(tk::Window dialog, const forms::FieldDef& field,
                      const forms::EditResult& result) {
  if (controls_.status == 0) return;
  std::string text;
  if (result.cut_to_limit && field.kind != FieldKind::kScanTime) {
    set_message_arguments({std::to_string(field.limit)});
    text = expand(messages::message_label(forms::kNoteLimit));
  } else if (result.beep && field.kind == FieldKind::kScanTime) {
    text = messages::message_label(forms::kNoteScanTime);
  } else if (result.beep && (field.kind == FieldKind::kDigits || field.kind == FieldKind::kInteger)) {
    text = messages::message_label(forms::kNoteDigits);
  }
  dialog.control(controls_.status).set_text(text);
}

void FormDialog::clicked(tk::Window dialog, int control_id) {
  if (control_id == controls_.ok) {
    ok(dialog);
    return;
  }
  if (control_id == controls_.changes && controls_.changes != 0) {
    show_changes();
    return;
  }
  if (control_id == controls_.minutes || control_id == controls_.seconds) {
    bool seconds = control_id == controls_.seconds;
    int unit = form_.index_of("Unit");
    if (unit >= 0) form_.choose(static_cast<std::size_t>(unit), seconds ? "seconds" : "minutes");
    int yes = form_.index_of("Seconds");
    if (yes >= 0) form_.choose(static_cast<std::size_t>(yes), seconds ? "Yes" : "No");
    return;
  }
  int i = field_of(control_id);
  if (i < 0) return;
  tk::Control control = dialog.control(control_id);
  switch (form_.field(static_cast<std::size_t>(i)).kind) {
    case FieldKind::kCheck:
      form_.choose(static_cast<std::size_t>(i), control.checked() ? "Yes" : "No");
      break;
    case FieldKind::kLocation:
      form_.choose(static_cast<std::size_t>(i), control.selected() == 1 ? "Right" : "Left");
      break;
    default:
      break;
  }
}

void FormDialog::scrolled(tk::Window dialog, const tk::Event& e) {
  int delta = e.scroll == tk::ScrollAction::kLineUp     ? 1
              : e.scroll == tk::ScrollAction::kLineDown ? -1
                                                        : 0;
  if (delta == 0) return;
  for (std::size_t i = 0; i < form_.size(); ++i) {
    if (form_.field(i).kind != FieldKind::kScanTime) continue;
    bool clamped = form_.step(i, delta);
    forms::EditResult result{form_.text(i), 0, clamped, false};
    note(dialog, form_.field(i), result);
    tk::Control field = dialog.control(form_.field(i).control);
    field.set_text(form_.text(i));
    field.set_caret(static_cast<int>(form_.text(i).size()));
    dialog.control(controls_.spin).set_position(parse_int(form_.text(i)));
    if (clamped) dialog.toolkit().beep();
  }
}

void FormDialog::show_changes() {
  std::vector<std::string> lines = form_.change_lines();
  if (lines.empty()) {
    op_.show(forms::kMsgNoChanges);
    return;
  }
  std::string listing;
  for (const std::string& line : lines) listing += "\n" + line;
  op_.show(forms::kMsgChangesList, {listing});
}

void FormDialog::ok(tk::Window dialog) {
  if (std::optional<forms::Refusal> refusal = form_.check()) {
    dialog.toolkit().beep();
    op_.show(refusal->message, refusal->args);
    dialog.control(form_.field(static_cast<std::size_t>(refusal->field)).control).focus();
    return;
  }
  if (form_.changed_on_disk()) {
    std::size_t answer = op_.ask(forms::kMsgChangedAsk, {form_.file()},
                                 {forms::kMsgReloadButton, forms::kMsgOverwriteButton,
                                  forms::kMsgCancelButton});
    if (answer == 0) {
      form_.load();
      fill(dialog);
      return;
    }
    if (answer != 1) return;
  }
  OperatorAction action(op_, form_.action(), instance_name_);
  if (!action.permitted()) return;
  if (FileResult written = form_.save(files_); !written) {
    FileMessage why = failure_message(written, form_.file());
    action.op().show(why.number, why.args);
    action.op().show(forms::kMsgNotSaved, {form_.file()});
    return;  // open still, with what the operator typed
  }
  action.finish(ActionResult::kDone);
  saved_ = true;
  dialog.destroy();
}

void disable_when_read_only(tk::Control control) {
  if (!read_only_mode()) return;
  control.set_enabled(false);
  control.set_tip(read_only_reason());
}

bool run_form_dialog(const ConfigContext& context, forms::Form& form,
                     const FormControls& controls, ExtraHandler extra) {
  FormDialog binding(form, context.op, context.instance_name, controls, std::move(extra),
                     context.files);
  return binding.run_modal(context.toolkit, form.def().dialog);
}

bool run_sub_dialog(forms::Form& parent, const std::function<bool()>& run) {
  bool current = !parent.changed_on_disk();
  bool opened = run();
  if (current) parent.take_disk_state();
  return opened;
}

void take_field_text(tk::Window dialog, forms::Form& form, int control_id) {
  int i = form.index_of_control(control_id);
  if (i < 0) return;
  tk::Control control = dialog.control(control_id);
  std::string text = control.text();
  forms::EditResult result =
      form.edit(static_cast<std::size_t>(i), text, static_cast<int>(text.size()));
  if (result.text != text) control.set_text(result.text);
  if (result.beep) dialog.toolkit().beep();
}

}  // namespace px::dialogs
