// pxctl config show PROCESS [FORM]
// pxctl config set PROCESS [FORM] KEY=VALUE ... [--dry-run] [--force]
//
// Opens the form of a configuration dialog on the instance's files, exactly
// as the Configure dialog reaches it: PROCESS is a key of section Processes
// of the instance's configuration file, FORM one of its sub-dialogs; a
// process edited by its own EditCfgRtn command has no form (1617). show
// prints each shown field as KEY, TAB, text. set types each VALUE into its
// field (the typing rules apply; choices take their words), then presses
// OK (a value the typing rules cut or changed is reported, 1606 or 1613): a
// refused OK shows its message and writes nothing; a file changed
// since the form read it is left alone unless --force; --dry-run prints
// each key OK would change as KEY, TAB, old value ("(none)" when absent),
// TAB, new value (a password as asterisks), and writes nothing. The write
// is the operator action "config set PROCESS [FORM]": refused in read-only
// mode (1700), recorded in the audit log; a failed write shows the
// rewrite's message, then 902, and leaves the file as it was.
#include <cstdio>
#include <optional>

#include "cli/cli.h"
#include "cli/control_session.h"
#include "common/text.h"
#include "config/forms/form.h"
#include "config/forms/form_messages.h"
#include "config/forms/process_list.h"
#include "config/operator_action.h"
#include "config/settings.h"
#include "control/node.h"

namespace px::cli {

namespace {

const char* const kSynopsis =
    "pxctl config show PROCESS [FORM] | "
    "config set PROCESS [FORM] KEY=VALUE ... [--dry-run] [--force]";

struct Request {
  std::string action;
  std::string process;
  std::string form_name;
  std::vector<std::pair<std::string, std::string>> assignments;
  bool dry_run = false;
  bool force = false;
};

bool parse(const std::vector<std::string>& words, Request& request) {
  if (words.size() < 2) return false;
  request.action = words[0];
  request.process = words[1];
  if (request.action != "show" && request.action != "set") return false;
  for (std::size_t i = 2; i < words.size(); ++i) {
    const std::string& word = words[i];
    std::size_t equals = word.find('=');
    if (request.action == "set" && word == "--dry-run") {
      request.dry_run = true;
    } else if (request.action == "set" && word == "--force") {
      request.force = true;
    } else if (request.action == "set" && equals != std::string::npos && equals > 0) {
      request.assignments.emplace_back(word.substr(0, equals), word.substr(equals + 1));
    } else if (i == 2 && equals == std::string::npos && word.rfind("--", 0) != 0) {
      request.form_name = word;
    } else {
      return false;
    }
  }
  return request.action == "set" || request.assignments.empty();
}

// The editor of the request's process, following the Configure dialog: the
// configuration file must open, the instance must be local, the process
// must be offered, and it must open a built-in form (a process edited by
// its own EditCfgRtn command has none); nothing after a message was shown.
std::optional<forms::ProcessEditor> locate(const Request& request, ControlSession& session) {
  const std::string& config = session.instance().config_file;
  bool other_node = (location(session.instance().name) & kLocationOtherNode) != 0;
  forms::ProcessListing listing = forms::list_processes(config, other_node, session.op());
  if (!listing.opened || listing.closes) return std::nullopt;
  if (other_node) {
    session.op().show(forms::kMsgOtherNode, {session.instance().name});
    return std::nullopt;
  }
  std::optional<std::string> key = forms::find_process_key(listing, request.process);
  if (!key) {
    session.op().show(forms::kMsgProcessNotListed, {request.process, display_path(config)});
    return std::nullopt;
  }
  std::optional<forms::ProcessEditor> editor = forms::process_editor(config, *key, session.op());
  if (editor && editor->kind == forms::EditorKind::kCommand) {
    session.op().show(forms::kMsgOwnEditor, {*key, editor->command});
    return std::nullopt;
  }
  return editor;
}

// Types or chooses value in the field called key; false for a key the form
// does not have (or leaves out for this file) or a word a choice does not take.
bool assign(forms::Form& form, const std::string& key, const std::string& value) {
  int i = form.index_of(key);
  std::string word = value;
  // The E-mail Agent's unit is its Seconds radio pair.
  if (i < 0 && iequals(key, "Unit") && form.index_of("Seconds") >= 0) {
    i = form.index_of("Seconds");
    if (iequals(value, "seconds")) word = "Yes";
    else if (iequals(value, "minutes")) word = "No";
    else return false;
  }
  if (i < 0 || !form.in_use(static_cast<std::size_t>(i))) return false;
  std::size_t field = static_cast<std::size_t>(i);
  if (forms::is_choice(form.field(field).kind)) return form.choose(field, word);
  forms::EditResult typed = form.enter(field, word);
  if (typed.cut_to_limit) {
    report(forms::kMsgValueCut,
           {form.field(field).key, std::to_string(form.field(field).limit)});
  } else if (form.field(field).kind != forms::FieldKind::kPassword && typed.text != word) {
    report(forms::kMsgValueChanged, {form.field(field).key, word, typed.text});
  }
  return true;
}

int show(const forms::Form& form) {
  for (const auto& [key, text] : form.lines()) std::printf("%s\t%s\n", key.c_str(), text.c_str());
  return kExitOk;
}

int set(forms::Form& form, const Request& request, ControlSession& session) {
  for (const auto& [key, value] : request.assignments) {
    if (!assign(form, key, value)) {
      session.hand_over();  // a usage error is no action
      return usage_error("config set " + key, kSynopsis);
    }
  }
  if (request.dry_run) {
    if (std::optional<forms::Refusal> refusal = form.check()) {
      report(refusal->message, refusal->args);
      return kExitFailed;
    }
    for (const forms::Change& change : form.changes()) {
      std::printf("%s\t%s\t%s\n", change.key.c_str(), change.old_value.value_or("(none)").c_str(),
                  change.new_value.c_str());
    }
    return kExitOk;
  }
  session.hand_over();  // the form's own action takes over
  OperatorAction action(session.console(), form.action(), session.instance().name);
  if (!action.permitted()) return kExitFailed;
  if (std::optional<forms::Refusal> refusal = form.check()) {
    action.op().show(refusal->message, refusal->args);
    return kExitFailed;
  }
  if (form.changed_on_disk() && !request.force) {
    action.op().show(forms::kMsgChangedOnDisk, {form.file()});
    return kExitFailed;
  }
  if (FileResult written = form.save(); !written) {
    FileMessage why = failure_message(written, form.file());
    action.op().show(why.number, why.args);
    action.op().show(forms::kMsgNotSaved, {form.file()});
    return kExitFailed;
  }
  action.finish(ActionResult::kDone);
  return kExitOk;
}

}  // namespace

int run_config(const Invocation& call) {
  Request request;
  if (!parse(call.words, request)) return usage_error("config", kSynopsis);
  // A set that writes is an action from the start: refused at once in
  // read-only mode, and recorded when the process cannot be configured.
  std::string action;
  if (request.action == "set" && !request.dry_run) {
    action = "config set " + request.process;
    if (!request.form_name.empty()) action += " " + request.form_name;
  }
  ControlSession session(call, action);
  if (!session.ready()) return kExitFailed;
  std::optional<forms::ProcessEditor> editor = locate(request, session);
  if (!editor) return kExitFailed;
  const forms::FormDef* def = forms::find_form(editor->key, request.form_name);
  if (def == nullptr) {
    session.hand_over();  // a usage error is no action
    return usage_error("config " + request.process + " " + request.form_name, kSynopsis);
  }
  forms::Form form(*def, editor->ini_file);
  form.load();
  return request.action == "show" ? show(form) : set(form, request, session);
}

}  // namespace px::cli
