// A configuration dialog on the toolkit, bound to its form: the dialog
// only shows the form's fields and hands every act of the operator to the
// form (typing, clicks, the spin bar, OK), so the window and `pxctl config`
// behave alike.
//
// Shared by every configuration dialog: create sets the title ("%s" filled
// with the instance's name) and fills the controls; typing in an edit runs
// the form's typing rules (a beep when a rule cut or refused something);
// check boxes, radio pairs and the drop-down list choose; the spin bar
// steps the scan time; OK checks the form (a refusal beeps, shows its
// message and focuses the field), asks Reload / Overwrite / Cancel when the
// file changed on disk since it was read, saves as the operator action
// "config set PROCESS [FORM]" (config/operator_action.h) and closes; a save
// that failed shows why (the rewrite's message, then 902) and leaves the
// dialog open with what the operator typed. Cancel and the close box close
// without saving. In read-only mode the dialog opens to show the settings
// but its OK is disabled with the reason as its tooltip. "Changes..." shows the keys OK would
// change with their old and new values (1612), or that it would change
// nothing (1611). When a typing rule beeps, the status line says why (the
// limit 1614, digits only 1615, the scan time's range 1616); the next
// change that passes clears it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "config/dialogs/config_context.h"
#include "config/forms/form.h"
#include "config/operator.h"
#include "toolkit/dialog_base.h"
#include "toolkit/toolkit.h"

namespace px::dialogs {

// The controls of a dialog that the form's fields do not name.
struct FormControls {
  int ok = 1;
  int changes = 0;                // "Changes...": lists what OK would write
  int status = 0;                 // the status line for notes on typing rules
  int spin = 0;                   // the scan time's spin bar
  int minutes = 0;                // the unit's radio pair
  int seconds = 0;
  std::vector<std::vector<int>> shown_with;  // {field control, controls hidden with it...}
  std::vector<int> location_rows;  // the drop-down's entries, as message numbers
};

// Handles an event the binding does not know (sub-dialog and browse
// buttons); returns true when it took it.
using ExtraHandler = std::function<bool(const tk::Event&, forms::Form&)>;

// The binding: run it with run_modal(), or call handle() from the dialog's
// event handler. The extra handler sees every event first (but creation,
// which it sees after the form's fields are filled).
class FormDialog : public tk::DialogBase {
 public:
  FormDialog(forms::Form& form, Operator& op, std::string instance_name, FormControls controls,
             ExtraHandler extra = {}, FileSystem* files = nullptr);

  void handle(const tk::Event& e) override;
  // Puts every field of the form into the dialog's controls.
  void fill(tk::Window dialog);
  bool saved() const { return saved_; }

 private:
  void create(tk::Window dialog) override;
  void control(tk::Window dialog, const tk::Event& e) override;
  void changed(tk::Window dialog, int control);
  void clicked(tk::Window dialog, int control);
  void scrolled(tk::Window dialog, const tk::Event& e);
  void ok(tk::Window dialog);
  void show_changes();
  void note(tk::Window dialog, const forms::FieldDef& field, const forms::EditResult& result);
  int field_of(int control) const { return form_.index_of_control(control); }

  forms::Form& form_;
  Operator& op_;
  std::string instance_name_;
  FormControls controls_;
  ExtraHandler extra_;
  FileSystem* files_;
  bool saved_ = false;
};

// Runs the dialog of form modally; false when it could not be created (the
// caller tells the operator: 101, 207 or "Can't open dialog").
bool run_form_dialog(const ConfigContext& context, forms::Form& form,
                     const FormControls& controls, ExtraHandler extra = {});

// Runs a sub-dialog that may save into the form's file: when the file was
// as the form read it, the sub-dialog's own save is not taken for another
// writer's change. Returns what run returned.
bool run_sub_dialog(forms::Form& parent, const std::function<bool()>& run);

// After the program put a text into a field's control (a browse): the form
// takes it under the field's typing rules.
void take_field_text(tk::Window dialog, forms::Form& form, int control);

// In read-only mode: disables the OK button (or any control that changes
// something) with the reason as its tooltip. Nothing otherwise.
void disable_when_read_only(tk::Control control);

// A dialog that could not be created.
inline constexpr int kMsgDialogNotCreated = 101;

}  // namespace px::dialogs
