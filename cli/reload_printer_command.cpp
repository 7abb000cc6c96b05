// pxctl reload-printer (--all-printers | --printer NAME ...)
//                      (--all-forms | --form FILE):
// Printer Reload with the choice given here instead of the dialog's.
#include "cli/control_session.h"
#include "control/control_commands.h"

namespace px::cli {

namespace {

const char* const kSynopsis =
    "pxctl [--instance NAME] reload-printer (--all-printers | --printer NAME ...) "
    "(--all-forms | --form FILE)";

struct Request {
  bool all_printers = false;
  std::vector<std::string> printers;
  bool all_forms = false;
  bool form_given = false;
  std::string form;
};

// Reads the words; false on a usage error.
bool parse(const std::vector<std::string>& words, Request& request) {
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    bool has_value = i + 1 < words.size();
    if (word == "--all-printers") {
      request.all_printers = true;
    } else if (word == "--all-forms") {
      request.all_forms = true;
    } else if (word == "--printer" && has_value) {
      request.printers.push_back(words[++i]);
    } else if (word == "--form" && has_value && !request.form_given) {
      request.form = words[++i];
      request.form_given = true;
    } else {
      return false;
    }
  }
  bool printers_ok = request.all_printers != !request.printers.empty();
  bool forms_ok = request.all_forms != request.form_given;
  return printers_ok && forms_ok;
}

}  // namespace

int run_reload_printer(const Invocation& call) {
  Request request;
  if (!parse(call.words, request)) return usage_error("reload-printer", kSynopsis);
  ControlSession session(call, "reload-printer");
  if (!session.ready()) return kExitFailed;
  session.hand_over();
  session.console().set_printer_request(request.all_printers, request.printers, request.all_forms,
                                   request.form);
  return exit_status(printer_reload(session.context()));
}

}  // namespace px::cli
