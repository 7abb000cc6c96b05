#include "shell/printer_reload_dialog.h"

#include "control/printer_reload.h"
#include "shell/shell_messages.h"
#include "shell/title.h"
#include "toolkit/dialog_base.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

namespace {

struct ReloadDialog : tk::DialogBase {
  ReloadDialog(Operator& op, std::string_view title, const std::vector<std::string>& printers)
      : op(op), title(title), printers(printers) {}

  Operator& op;
  std::string_view title;
  const std::vector<std::string>& printers;
  PrinterReloadChoice choice{};

  void create(tk::Window dialog) override {
    set_child_title(dialog, title);
    tk::Control list = dialog.control(tk::kReloadPrinterList);
    list.suspend();
    for (const std::string& printer : printers) list.add(printer);
    list.resume();
    if (list.count() > 0) list.select(0);
    list.focus();
  }

  // OK: the choice, or message 256 for a form that cannot be named.
  void accept(tk::Window dialog) {
    bool all_printers = dialog.control(tk::kReloadAllPrinters).checked();
    bool all_forms = dialog.control(tk::kReloadAllForms).checked();
    tk::Control form_field = dialog.control(tk::kReloadPrinterForm);
    std::string form = form_field.text();
    if (form.size() > kFormNameLength) form.resize(kFormNameLength);
    if (!all_forms) {
      if (int problem = form_problem(form)) {
        op.show(problem);
        form_field.focus();
        return;
      }
    }
    std::vector<std::string> selected;
    tk::Control list = dialog.control(tk::kReloadPrinterList);
    for (int row : list.selected_rows()) selected.push_back(list.row(row));
    choice = make_printer_reload_choice(all_printers, selected, all_forms, form);
    dialog.destroy();
  }

  // OK chooses; each "all" check box disables what it stands for.
  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.notice != tk::Notice::kClicked) return;
    if (e.control == tk::kOk) {
      accept(dialog);
    } else if (e.control == tk::kReloadAllPrinters) {
      dialog.control(tk::kReloadPrinterList)
          .set_enabled(!dialog.control(tk::kReloadAllPrinters).checked());
    } else if (e.control == tk::kReloadAllForms) {
      dialog.control(tk::kReloadPrinterForm)
          .set_enabled(!dialog.control(tk::kReloadAllForms).checked());
    }
  }
};

}  // namespace

PrinterReloadChoice run_printer_reload_dialog(tk::Toolkit& toolkit, Operator& op,
                                              std::string_view instance_title,
                                              const std::vector<std::string>& printers) {
  ReloadDialog state(op, instance_title, printers);
  if (!state.run_modal(toolkit, tk::kReloadPrinterDialog)) {
    op.show(msg::kDialogNotCreated);
    return {};
  }
  return state.choice;
}

}  // namespace px::shell
