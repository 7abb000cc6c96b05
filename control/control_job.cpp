#include "control/control_job.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "common/file_replace.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "config/message_numbers.h"
#include "config/settings.h"
#include "common/unique_fd.h"

namespace px {

namespace {

constexpr size_t kTemplateKeysSize = 10240;
constexpr size_t kTemplateLineSize = 512;

// The scratch copy of a job. Consoles sharing a current directory take turns
// on it through its lock; the name is removed when the object goes.
class ScratchFile {
 public:
  ScratchFile(std::string path, FileSystem& files) : path_(std::move(path)), files_(files) {
    bool created = false;
    locked_ = files_.lock(path_, true, fd_, created) == 0;
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  ~ScratchFile() {
    if (locked_) files_.remove(path_);
  }

  bool write(std::string_view text) {
    return locked_ && ::ftruncate(fd_.get(), 0) == 0 && files_.write(fd_.get(), text) == 0;
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
  FileSystem& files_;
  UniqueFd fd_;  // held open, and locked, until the job is published
  bool locked_ = false;
};

enum class Publish { kDone, kExists, kFailed };

// Creates target, which must not exist yet, with text: written whole beside
// it first and then given the target's name, so the server never sees the
// job half-written and an existing file of that name is never touched.
Publish publish(std::string_view text, const std::string& target, FileSystem& files) {
  ReplaceOptions options;
  options.keep_existing = true;
  FileResult result = replace_file(target, text, files, options);
  if (result) return Publish::kDone;
  return result.failed == FileStep::kRename && result.error == EEXIST ? Publish::kExists
                                                                      : Publish::kFailed;
}

std::string stamp(const char* format, const std::tm& moment) {
  char text[32];
  size_t n = std::strftime(text, sizeof text, format, &moment);
  return std::string(text, n);
}

}  // namespace

const char* command_text(ControlCommand command) {
  switch (command) {
    case ControlCommand::kPrinterReload:
      return "Printer Reload";
    case ControlCommand::kJobTableReload:
      return "Job Table Reload";
    case ControlCommand::kShutDown:
      return "Shut Down Server";
    case ControlCommand::kPause:
      return "Pause Server";
    case ControlCommand::kResume:
      return "Resume Server";
  }
  return "";
}

std::optional<std::vector<std::string>> read_template(const std::string& config_file) {
  std::string file = config_file;
  KeyList keys;
  if (!file.empty()) keys = ini::get_key_list(kTemplateSection, kTemplateKeysSize, file);
  if (keys.used < 2) {
    file.clear();  // the console's own INI file
    keys = ini::get_key_list(kTemplateSection, kTemplateKeysSize);
    if (keys.used < 2) return std::nullopt;
  }
  std::vector<std::string> values;
  for (const std::string& key : keys.keys) {
    values.push_back(ini::get_string(kTemplateSection, key, " ", kTemplateLineSize, file));
  }
  return values;
}

std::string control_job_text(const std::vector<std::string>& template_values,
                             ControlCommand command, const PrinterReloadChoice& choice,
                             const std::tm& moment) {
  const bool printer_reload = command == ControlCommand::kPrinterReload;
  std::string text;
  for (const std::string& value : template_values) {
    if (value == "!CommandString") {
      text += command_text(command) + std::string("\n");
    } else if (value == "!LogicalPrinter") {
      if (!printer_reload) continue;
      if (!choice.printers.empty() && choice.printers.back() == "*") {
        text += "*\n";
      } else {
        for (const std::string& printer : choice.printers) text += printer + "\n";
      }
    } else if (value == "!MDFFileName") {
      if (printer_reload) text += choice.form + "\n";
    } else if (value == "!SystemDate") {
      text += stamp("%y%m%d", moment) + "\n";
    } else if (value == "!SystemTime") {
      text += stamp("%H:%M:%S", moment) + "\n";
    } else if (value == "!RequestorID") {
      text += "PXCNTRL\n";
    } else {
      text += value + "\n";
    }
  }
  return text;
}

std::optional<std::string> control_directory(const std::string& config_file, Operator& op) {
  std::string control = path_setting("Paths", "ControlPath", config_file);
  if (!control.empty() && is_directory(control)) return add_separator(control);
  std::string data = path_setting("Paths", "DataPath", config_file);
  if (data.empty()) {
    op.show(msg::kSettingMissing, {"Paths", display_path(config_file), "DataPath"});
    return std::nullopt;
  }
  if (!is_directory(data)) {
    op.show(msg::kDataPathNotDirectory, {"Paths", display_path(config_file)});
    return std::nullopt;
  }
  return add_separator(data);
}

std::string control_file_name(int n) {
  std::string number = std::to_string(n);
  if (number.size() < 2) number.insert(0, 2 - number.size(), '0');
  return "pxctrl" + number + ".msg";
}

std::optional<int> first_free_control_file(const std::string& directory, int first) {
  for (int n = first; n < kControlFileCount; ++n) {
    if (!file_readable(directory + control_file_name(n))) return n;
  }
  return std::nullopt;
}

bool write_control_job(std::string_view text, const std::string& directory, ControlCommand command,
                       int* number, const std::string& scratch_directory, Operator& op,
                       FileSystem& files) {
  const bool shutdown = command == ControlCommand::kShutDown;
  ScratchFile scratch(join_path(shutdown ? "stopserv.$$$" : "pxcntrl.$$$", scratch_directory),
                      files);
  if (!scratch.write(text)) {
    op.show(msg::kScratchNotCreated, {display_path(scratch.path())});
    return false;
  }
  if (shutdown) {
    std::string target = directory + kShutdownFileName;
    Publish result = publish(text, target, files);
    if (result == Publish::kExists) op.show(msg::kShutdownPending);
    if (result == Publish::kFailed) op.show(msg::kTargetNotCreated, {display_path(target)});
    return result == Publish::kDone;
  }
  for (int n = *number;;) {
    std::string target = directory + control_file_name(n);
    Publish result = publish(text, target, files);
    if (result == Publish::kDone) {
      *number = n;
      return true;
    }
    if (result == Publish::kFailed) {
      op.show(msg::kTargetNotCreated, {display_path(target)});
      return false;
    }
    std::optional<int> next = first_free_control_file(directory, n + 1);
    if (!next) {
      op.show(msg::kNoFreeControlName);
      return false;
    }
    n = *next;
  }
}

}  // namespace px
