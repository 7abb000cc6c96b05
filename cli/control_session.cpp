#include "cli/control_session.h"

#include "config/instances.h"
#include "config/settings.h"
#include "jmd/jmd.h"

namespace px::cli {

ControlSession::ControlSession(const Invocation& call) {
  if (!call.instance.empty()) {
    ready_ = select_instance(call.instance, op_);
    return;
  }
  ready_ = select_default_instance(op_) > 0 && current_instance().config_file.size() >= 2;
}

const Instance& ControlSession::instance() const { return current_instance(); }

ControlContext ControlSession::context() {
  return ControlContext{current_instance(), op_, clock_, runner_, &jmd_printer_names, {}, {}};
}

int exit_status(Outcome outcome) { return outcome == Outcome::kDone ? kExitOk : kExitFailed; }

std::optional<std::vector<std::string>> jmd_printer_names() {
  std::string path = path_setting("Options", "JMDFileName", current_instance().config_file);
  if (path.empty()) return std::nullopt;
  jmd::LogReporter reporter;
  std::unique_ptr<jmd::Jmd> database = jmd::load_jmd(path, reporter);
  if (!database) return std::nullopt;
  const jmd::TableSchema& schema = jmd::table_schema(jmd::kPrinterTable);
  const jmd::FieldDef* name = jmd::find_field(schema, "PrinterName");
  std::vector<std::string> names;
  bool listed = name != nullptr &&
                jmd::for_each_sorted(*database, jmd::kPrinterTable, [&](std::span<const char> row) {
                  names.emplace_back(jmd::string_field(row, *name));
                  return true;
                });
  jmd::close_jmd(std::move(database));
  if (!listed) return std::nullopt;
  return names;
}

int run_plain_control(const Invocation& call, const char* synopsis,
                      Outcome (*run)(const ControlContext&)) {
  if (!call.words.empty()) return usage_error(call.command, synopsis);
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  return exit_status(run(session.context()));
}

}  // namespace px::cli
