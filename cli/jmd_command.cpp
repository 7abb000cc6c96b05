// pxctl jmd: loads a JMD file into the console's tables, as the console opens
// one, and reports, rewrites or lists it, or edits it with the rules of the
// console's JMD editors (the editing commands live in cli/jmd_*_commands.cpp
// and cli/jmd_show_command.cpp).
#include <cstdio>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "cli/jmd_edit_support.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/references.h"
#include "config/operator_action.h"
#include "jmd/jmd.h"
#include "jmd/jmd_writer.h"

namespace px::cli {

namespace {

// The JMD could not be written to @P1.
constexpr int kMsgJmdWriteFailed = 910;

const char* const kSynopsis = kJmdSynopsis;

int slot_named(const std::string& word) {
  if (word == "jobs") return jmd::kJobTable;
  if (word == "printers") return jmd::kPrinterTable;
  if (word == "tasks") return jmd::kTaskTable;
  if (word == "memory") return jmd::kMemoryTable;
  return -1;
}

// Also warns (1507, 1508) of steps naming a printer or task that is not
// there; the exit status stays that of the load.
int jmd_check(const std::vector<std::string>& w) {
  if (w.size() != 2) return usage_error("jmd check", kSynopsis);
  ConsoleOperator op;
  editors::JmdFile file(w[1], op);
  if (!file.load()) return kExitFailed;
  jmd::Jmd& jmd = *file.editor().service().jmd();
  std::printf("jobs %ld printers %ld tasks %ld memory %ld\n", jmd.row_count(jmd::kJobTable),
              jmd.row_count(jmd::kPrinterTable), jmd.row_count(jmd::kTaskTable),
              jmd.row_count(jmd::kMemoryTable));
  std::fflush(stdout);
  for (const editors::MissingReference& missing : editors::missing_references(file.editor())) {
    op.show(missing.printer ? editors::msg::kMissingPrinter : editors::msg::kMissingTask,
            {missing.job, std::to_string(missing.step), missing.name});
  }
  return kExitOk;
}

int jmd_save(const std::vector<std::string>& w) {
  if (w.size() != 3) return usage_error("jmd save", kSynopsis);
  ConsoleOperator op;
  OperatorAction gate(op, "jmd save " + w[2], "");
  if (!gate.permitted()) return kExitFailed;
  // The load's messages go through the action, so a failed load is
  // recorded with its message.
  editors::OperatorReporter reporter(gate.op());
  std::unique_ptr<jmd::Jmd> jmd = jmd::load_jmd(w[1], reporter);
  if (!jmd) return kExitFailed;
  // OUT is replaced crash-safely, so it may be IN itself: IN is whole in
  // the tables before anything is written.
  FileResult saved = jmd::save_jmd(*jmd, w[2]);
  bool closed = jmd::close_jmd(std::move(jmd));
  if (!saved) {
    FileMessage why = failure_message(saved, w[2]);
    gate.op().show(why.number, why.args);
    gate.op().show(kMsgJmdWriteFailed, {w[2]});
  }
  if (saved && closed) gate.finish(ActionResult::kDone);
  return saved && closed ? kExitOk : kExitFailed;
}

int jmd_list(const std::vector<std::string>& w) {
  int slot = w.size() == 3 ? slot_named(w[2]) : -1;
  if (slot < 0) return usage_error("jmd list", kSynopsis);
  ConsoleOperator op;
  editors::OperatorReporter reporter(op);
  std::unique_ptr<jmd::Jmd> jmd = jmd::load_jmd(w[1], reporter);
  if (!jmd) return kExitFailed;
  const jmd::TableSchema& schema = jmd::table_schema(slot);
  std::string line;
  bool listed = jmd::for_each_sorted(*jmd, slot, [&](std::span<const char> record) {
    line.clear();
    jmd::append_fields(line, schema, record);
    line += '\n';
    // The fields without the blank that would follow the line key.
    return std::fwrite(line.data() + 1, 1, line.size() - 1, stdout) == line.size() - 1;
  });
  bool closed = jmd::close_jmd(std::move(jmd));
  return listed && closed ? kExitOk : kExitFailed;
}

}  // namespace

int run_jmd(const Invocation& call) {
  const std::vector<std::string>& w = call.words;
  std::string action = w.empty() ? "" : w[0];
  if (action == "check") return jmd_check(w);
  if (action == "save") return jmd_save(w);
  if (action == "list") return jmd_list(w);
  if (action == "show") return jmd_show(w);
  if (action == "add") return jmd_add(w);
  if (action == "edit") return jmd_edit(w);
  if (action == "delete") return jmd_delete(w);
  if (action == "new-job") return jmd_new_job(w);
  if (action == "copy-job") return jmd_copy_job(w);
  if (action == "add-step") return jmd_add_step(w);
  if (action == "edit-step") return jmd_edit_step(w);
  if (action == "delete-step") return jmd_delete_step(w);
  if (action == "move-step") return jmd_move_step(w);
  return usage_error("jmd", kSynopsis);
}

}  // namespace px::cli
