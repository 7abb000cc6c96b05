// pxctl ini get|keys|set|delete|map: reads and writes INI files through the
// runtime's own engine.
#include <cstdio>
#include <optional>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "config/operator_action.h"

namespace px::cli {

namespace {

constexpr size_t kValueSize = 1024;

const char* const kSynopsis =
    "pxctl ini get FILE SECTION KEY [DEFAULT] | keys FILE SECTION | "
    "set FILE SECTION KEY VALUE | delete FILE SECTION [KEY] | map QUALIFIER PATH";

int ini_get(const std::vector<std::string>& w) {
  if (w.size() != 4 && w.size() != 5) return usage_error("ini get", kSynopsis);
  std::string fallback = w.size() == 5 ? w[4] : "";
  std::printf("%s\n", ini::get_string(w[2], w[3], fallback, kValueSize, w[1]).c_str());
  return kExitOk;
}

int ini_keys(const std::vector<std::string>& w) {
  if (w.size() != 3) return usage_error("ini keys", kSynopsis);
  for (const std::string& key : ini::get_key_array(w[2], w[1])) std::printf("%s\n", key.c_str());
  return kExitOk;
}

// The message that refuses a change the file could not give back unchanged;
// 0 when it can be written.
int refusal(const IniChange& change) {
  switch (unwritable_part(change, Delimiters{})) {
    case Unwritable::kSection: return kMsgIniBadSection;
    case Unwritable::kKey: return kMsgIniBadKey;
    case Unwritable::kValue: return kMsgIniBadValue;
    case Unwritable::kNone: break;
  }
  return 0;
}

// Sets or deletes as the operator action "ini set|delete FILE SECTION [KEY]"
// (w without the value, which may be a password): refused in read-only
// mode, recorded in the audit log. A change the file could not give back
// unchanged is refused before the file is touched.
int ini_write(const std::vector<std::string>& w, std::optional<std::string_view> key,
              std::optional<std::string_view> value) {
  const std::string& file = w[1];
  std::string action = "ini " + w[0] + " " + file + " " + w[2];
  if (key) action += " " + std::string(*key);
  ConsoleOperator op;
  OperatorAction gate(op, action, "");
  if (!gate.permitted()) return kExitFailed;
  IniChange change{w[2], key, value};
  if (int refused = refusal(change)) {
    std::string_view part = refused == kMsgIniBadSection ? change.section
                            : refused == kMsgIniBadKey   ? *change.key
                                                         : *change.value;
    gate.op().show(refused, {file, std::string(part)});
    return kExitFailed;
  }
  FileResult result = ini::write_string(w[2], key, value, file);
  if (!result) {
    FileMessage why = failure_message(result, file);
    gate.op().show(why.number, why.args);
    gate.op().show(kMsgIniWriteFailed, {file});
    return kExitFailed;
  }
  gate.finish(ActionResult::kDone);
  return kExitOk;
}

int ini_set(const std::vector<std::string>& w) {
  if (w.size() != 5) return usage_error("ini set", kSynopsis);
  return ini_write(w, w[3], w[4]);
}

int ini_delete(const std::vector<std::string>& w) {
  if (w.size() != 3 && w.size() != 4) return usage_error("ini delete", kSynopsis);
  std::optional<std::string_view> key;
  if (w.size() == 4) key = w[3];
  return ini_write(w, key, std::nullopt);
}

// Without an install file the map is empty and the path comes back as it is.
int ini_map(const std::vector<std::string>& w) {
  if (w.size() != 3) return usage_error("ini map", kSynopsis);
  load_directory_map(w[1]);
  std::printf("%s\n", map_directory(w[2]).c_str());
  return kExitOk;
}

}  // namespace

int run_ini(const Invocation& call) {
  const std::vector<std::string>& w = call.words;
  std::string action = w.empty() ? "" : w[0];
  if (action == "get") return ini_get(w);
  if (action == "keys") return ini_keys(w);
  if (action == "set") return ini_set(w);
  if (action == "delete") return ini_delete(w);
  if (action == "map") return ini_map(w);
  return usage_error("ini", kSynopsis);
}

}  // namespace px::cli
