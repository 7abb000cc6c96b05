// pxctl instances add NAME TITLE CONFIG
// pxctl instances edit NAME [--title TEXT] [--config FILE]
// pxctl instances default NAME
// pxctl instances remove NAME
//
// Changes the instance list as the "Nexa Control Configuration" dialog
// does (its record dialog's fields are cut to 74, 256 and 256 characters;
// Make Default moves the instance to the top; remove is its Delete button)
// and applies it as the dialog's OK: section Configuration of the install
// file is rewritten in list order and each instance's WindowTitle is
// written into its configuration file. Each is the operator action
// "instances add|edit|default|remove NAME": refused in read-only mode
// (1700) and recorded in the audit log. A file that could not be written
// is reported with the rewrite's message, then 902.
#include <optional>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "common/ini_profile.h"
#include "config/forms/form_messages.h"
#include "config/forms/instance_list.h"
#include "config/operator.h"
#include "config/operator_action.h"

namespace px::cli {

namespace {

const char* const kSynopsis =
    "pxctl instances [add NAME TITLE CONFIG | edit NAME [--title TEXT] [--config FILE] | "
    "default NAME | remove NAME]";

// The text as the record dialog's field takes it.
std::string typed(const forms::FieldDef& field, const std::string& text) {
  forms::EditResult result = forms::apply_typing_rules(field, text, 0, nullptr);
  if (result.cut_to_limit) report(forms::kMsgValueCut, {field.key, std::to_string(field.limit)});
  return result.text;
}

// The row of name; reports it missing when there is none.
int row_of(const forms::InstanceList& list, const std::string& name, Operator& op) {
  int row = list.find(name);
  if (row < 0) op.show(forms::kMsgNoSuchInstance, {name, display_path(list.install_file())});
  return row;
}

// Applies the list unless the install file changed since it was read or
// a value would not read back as written (then no file is touched).
int apply(forms::InstanceList& list, OperatorAction& action) {
  if (std::optional<std::string> key = list.unsavable_value()) {
    action.op().show(forms::kValueNotSavable, {*key});
    return kExitFailed;
  }
  if (list.changed_on_disk()) {
    action.op().show(forms::kMsgChangedOnDisk, {list.install_file()});
    return kExitFailed;
  }
  if (forms::InstanceList::Applied applied = list.apply(); !applied) {
    FileMessage why = failure_message(applied.result, applied.file);
    action.op().show(why.number, why.args);
    action.op().show(forms::kMsgNotSaved, {applied.file});
    return kExitFailed;
  }
  action.finish(ActionResult::kDone);
  return kExitOk;
}

int add(forms::InstanceList& list, const std::vector<std::string>& w,
        OperatorAction& action) {
  if (w.size() != 4) return usage_error("instances add", kSynopsis);
  std::string name = typed(forms::kRecordName, w[1]);
  if (!forms::InstanceList::usable_name(name)) {
    action.op().show(forms::kMsgUnusableInstanceName, {name});
    return kExitFailed;
  }
  if (list.find(name) >= 0) {
    action.op().show(forms::kMsgInstanceExists, {name});
    return kExitFailed;
  }
  list.add({name, typed(forms::kRecordTitle, w[2]), typed(forms::kRecordConfig, w[3])});
  return apply(list, action);
}

// The options of instances edit, as given: nullopt when the words are not
// --title TEXT and --config FILE pairs.
struct EditOptions {
  std::optional<std::string> title;
  std::optional<std::string> config;
};
std::optional<EditOptions> edit_options(const std::vector<std::string>& w) {
  EditOptions options;
  for (std::size_t i = 2; i + 1 < w.size(); i += 2) {
    if (w[i] == "--title") {
      options.title = w[i + 1];
    } else if (w[i] == "--config") {
      options.config = w[i + 1];
    } else {
      return std::nullopt;
    }
  }
  return options;
}

int edit(forms::InstanceList& list, const std::vector<std::string>& w,
         OperatorAction& action) {
  std::optional<EditOptions> options = edit_options(w);
  if (!options) return usage_error("instances edit", kSynopsis);
  int row = row_of(list, w[1], action.op());
  if (row < 0) return kExitFailed;
  Instance changed = list.rows()[static_cast<std::size_t>(row)];
  if (options->title) changed.window_title = typed(forms::kRecordTitle, *options->title);
  if (options->config) changed.config_file = typed(forms::kRecordConfig, *options->config);
  list.replace(static_cast<std::size_t>(row), changed);
  return apply(list, action);
}

int make_default(forms::InstanceList& list, const std::vector<std::string>& w,
                 OperatorAction& action) {
  if (w.size() != 2) return usage_error("instances default", kSynopsis);
  int row = row_of(list, w[1], action.op());
  if (row < 0) return kExitFailed;
  list.make_default(static_cast<std::size_t>(row));
  return apply(list, action);
}

int remove(forms::InstanceList& list, const std::vector<std::string>& w,
           OperatorAction& action) {
  if (w.size() != 2) return usage_error("instances remove", kSynopsis);
  int row = row_of(list, w[1], action.op());
  if (row < 0) return kExitFailed;
  list.remove(static_cast<std::size_t>(row));
  return apply(list, action);
}

}  // namespace

int run_instances_change(const Invocation& call) {
  const std::vector<std::string>& w = call.words;
  const std::string& action = w[0];
  bool shaped = (action == "add" && w.size() == 4) ||
                ((action == "default" || action == "remove") && w.size() == 2) ||
                (action == "edit" && w.size() >= 2 && w.size() % 2 == 0 && edit_options(w));
  // A usage error is no action: it is found before the action starts.
  if (!shaped) return usage_error("instances " + action, kSynopsis);
  ConsoleOperator op;
  OperatorAction gate(op, "instances " + action + " " + w[1], "");
  if (!gate.permitted()) return kExitFailed;
  forms::InstanceList list;
  list.load();
  if (list.install_file().empty()) {
    gate.op().show(forms::kMsgNoInstallFile, {display_path(ini::default_file())});
    return kExitFailed;
  }
  if (action == "add") return add(list, w, gate);
  if (action == "edit") return edit(list, w, gate);
  if (action == "default") return make_default(list, w, gate);
  return remove(list, w, gate);
}

}  // namespace px::cli
