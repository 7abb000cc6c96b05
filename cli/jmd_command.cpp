// pxctl jmd check|save|list: loads a JMD file into the console's tables, as
// the console opens one, and reports, rewrites or lists it.
#include <cstdio>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "config/operator_action.h"
#include "jmd/jmd.h"
#include "jmd/jmd_writer.h"

namespace px::cli {

namespace {

// The JMD could not be written to @P1.
constexpr int kMsgJmdWriteFailed = 910;

const char* const kSynopsis =
    "pxctl jmd check FILE | save IN OUT | list FILE jobs|printers|tasks|memory";

// Messages go to stderr as the console would show them; trace texts only to
// the log.
class StderrReporter : public jmd::Reporter {
 public:
  void message(int n, const std::vector<std::string>& args) override { report(n, args); }
  void trace(std::string_view text) override { log_.trace(text); }

 private:
  jmd::LogReporter log_;
};

int slot_named(const std::string& word) {
  if (word == "jobs") return jmd::kJobTable;
  if (word == "printers") return jmd::kPrinterTable;
  if (word == "tasks") return jmd::kTaskTable;
  if (word == "memory") return jmd::kMemoryTable;
  return -1;
}

int jmd_check(const std::vector<std::string>& w) {
  if (w.size() != 2) return usage_error("jmd check", kSynopsis);
  StderrReporter reporter;
  std::unique_ptr<jmd::Jmd> jmd = jmd::load_jmd(w[1], reporter);
  if (!jmd) return kExitFailed;
  std::printf("jobs %ld printers %ld tasks %ld memory %ld\n", jmd->row_count(jmd::kJobTable),
              jmd->row_count(jmd::kPrinterTable), jmd->row_count(jmd::kTaskTable),
              jmd->row_count(jmd::kMemoryTable));
  return jmd::close_jmd(std::move(jmd)) ? kExitOk : kExitFailed;
}

int jmd_save(const std::vector<std::string>& w) {
  if (w.size() != 3) return usage_error("jmd save", kSynopsis);
  ConsoleOperator op;
  OperatorAction gate(op, "jmd save " + w[2], "");
  if (!gate.permitted()) return kExitFailed;
  StderrReporter reporter;
  std::unique_ptr<jmd::Jmd> jmd = jmd::load_jmd(w[1], reporter);
  if (!jmd) return kExitFailed;
  bool saved = jmd::save_jmd(*jmd, w[2]);
  bool closed = jmd::close_jmd(std::move(jmd));
  if (!saved) gate.op().show(kMsgJmdWriteFailed, {w[2]});
  if (saved && closed) gate.finish(ActionResult::kDone);
  return saved && closed ? kExitOk : kExitFailed;
}

int jmd_list(const std::vector<std::string>& w) {
  int slot = w.size() == 3 ? slot_named(w[2]) : -1;
  if (slot < 0) return usage_error("jmd list", kSynopsis);
  StderrReporter reporter;
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
  return usage_error("jmd", kSynopsis);
}

}  // namespace px::cli
