#include "shell/gui_operator.h"

#include "common/expand.h"
#include "common/messages.h"
#include "shell/printer_reload_dialog.h"

namespace px::shell {

namespace {

// Looks up, expands and logs message n with args; its text.
std::string expanded(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  return messages::show(n);
}

}  // namespace

void GuiOperator::show(int n, const std::vector<std::string>& args) {
  std::string text = expanded(n, args);
  if (messages::current_level() >= kErrorLevel) {
    tk_.post_error(text);
  } else {
    tk_.post_note(text);
  }
}

size_t GuiOperator::ask(int n, const std::vector<std::string>& args,
                        const std::vector<int>& buttons) {
  std::string text = expanded(n, args);
  if (buttons.size() < 2) {
    tk_.post_note(text);
    return 0;
  }
  std::string first = messages::message_label(buttons[0]);
  std::string second = messages::message_label(buttons[1]);
  std::string third = buttons.size() > 2 ? messages::message_label(buttons[2]) : std::string();
  tk::Answer answer = tk_.post_ask(text, first, second, third);
  size_t index = static_cast<size_t>(answer) - 1;
  return index < buttons.size() ? index : buttons.size() - 1;
}

PrinterReloadChoice GuiOperator::choose_printer_reload(std::string_view instance_title,
                                                       const std::vector<std::string>& printers) {
  return run_printer_reload_dialog(tk_, *this, instance_title, printers);
}

}  // namespace px::shell
