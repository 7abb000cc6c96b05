#include "common/common_init.h"

#include <cstdio>
#include <algorithm>
#include <new>
#include <optional>

#include "common/command_line.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "common/response_file.h"
#include "common/text.h"

namespace px {

namespace {

constexpr size_t kServerNameSize = 64;  // 63 characters
constexpr size_t kInitSettingSize = 256;
constexpr int kBuildMessageLevel = 1;

struct InitState {
  std::optional<std::string> server_name;  // from -asn
  int integer_option = 0;
  bool read_only = false;  // -aro
  bool build_logged = false;
};

InitState& init_state() {
  static InitState s;
  return s;
}

// The value of the last argument starting with option (any case), if any.
std::optional<std::string> last_option(const std::vector<std::string>& args,
                                       std::string_view option) {
  std::optional<std::string> value;
  for (size_t i = 1; i < args.size(); ++i) {
    if (istarts_with(args[i], option)) value = args[i].substr(option.size());
  }
  return value;
}

std::string plexar_setting(std::string_view key, std::string_view fallback = "") {
  return ini::get_string("Plexar", key, fallback, kInitSettingSize);
}

void report(int code) {
  messages::message_text(code);  // sets the level the failure is logged at
  messages::emit(code, init_error_text(code));
}

void log_build_once() {
  std::string value = plexar_setting("LogBuild", "no");
  if (value.empty() || iequals(value, "no") || init_state().build_logged) return;
  init_state().build_logged = true;
  messages::log_line(kBuildMessageLevel, "Executable Built " __DATE__ " " __TIME__);
}

void apply_options(const std::vector<std::string>& args) {
  InitState& s = init_state();
  messages::set_program_name(args.empty() ? std::string() : file_part(args[0]));
  if (auto name = last_option(args, "-asn")) s.server_name = cut_to_buffer(*name, kServerNameSize);
  if (auto ini_file = last_option(args, "-aii")) ini::set_file(*ini_file);
  messages::init(messages::program_name());

  std::string log = plexar_setting("LogFile");
  if (!log.empty()) messages::set_log_file(log);
  if (auto log_option = last_option(args, "-all")) messages::set_log_file(*log_option);
  std::string stamp = plexar_setting("MsgDateStampFormat");
  if (!stamp.empty()) messages::set_date_format(stamp);
  std::string trace = plexar_setting("TraceFile");
  if (!trace.empty()) messages::set_trace_file(trace);

  set_response_file(plexar_setting("RspFile", "plexar.rsp"));
  set_response_format(parse_response_format(plexar_setting("RspFileFormat", "field")));
  if (auto format = last_option(args, "-arf")) set_response_format(parse_response_format(*format));
  if (auto file = last_option(args, "-arx")) set_response_file(*file);
  if (auto number = last_option(args, "-adt")) s.integer_option = parse_int(*number);
  s.read_only = last_option(args, "-aro").has_value();
  log_build_once();
}

// The rebuilt, expanded and split command line, or the failure's code.
int rebuild_arguments(const std::vector<std::string>& args, std::vector<std::string>& out) {
  try {
    std::string line = rebuild_command_line(args);
    int result = expand_indirect_files(line);
    if (result != 0) return result;
    out = split_arguments(line);
    if (!args.empty() && out.empty()) out.push_back(args[0]);
    return 0;
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }
}

}  // namespace

int common_init(std::vector<std::string>& args) { return common_init(args, args.size()); }

int common_init(std::vector<std::string>& args, size_t verbatim_from) {
  verbatim_from = std::min(verbatim_from, args.size());
  std::vector<std::string> head(args.begin(), args.begin() + static_cast<long>(verbatim_from));
  std::vector<std::string> expanded;
  if (head.size() < 2 && verbatim_from < args.size()) {
    expanded = std::move(head);  // the program's name alone: nothing to expand
  } else if (int result = rebuild_arguments(head, expanded); result != 0) {
    report(result);
    return result;
  }
  expanded.insert(expanded.end(), args.begin() + static_cast<long>(verbatim_from), args.end());
  args = std::move(expanded);
  apply_options(args);
  return 0;
}

std::string init_error_text(int code) {
  std::string text = ini::get_string("Messages", "Msg" + std::to_string(code), "", 256);
  if (!text.empty()) return text;
  if (code == kOutOfMemory) return "Out of memory";
  if (code == kIndirectFileFailed) return "Unable to expand indirect file on command line";
  return "Unknown error";
}

void report_out_of_memory() noexcept {
  try {
    std::string text = init_error_text(kOutOfMemory);
    std::fprintf(stderr, "[%d]%s\n", kOutOfMemory, text.c_str());
    messages::message_text(kOutOfMemory);
    messages::emit(kOutOfMemory, text);
  } catch (...) {
    // Not even the message could be made: the fixed text is all that is left.
    std::fputs("[-603]Out of memory\n", stderr);
  }
}

std::string server_name() {
  const InitState& s = init_state();
  if (s.server_name) return *s.server_name;
  return ini::get_string("PxServer", "ServerName", "PXSRVR", kServerNameSize);
}

int integer_option() { return init_state().integer_option; }

bool read_only_option() { return init_state().read_only; }

bool is_common_option(std::string_view arg) {
  for (std::string_view option : {"-asn", "-aii", "-all", "-arf", "-arx", "-adt", "-aro"}) {
    if (istarts_with(arg, option)) return true;
  }
  return false;
}

}  // namespace px
