// What the configuration dialogs share while one runs: the toolkit, the
// operator that shows messages, the name of the instance being edited (for
// the titles), where the directory browser gets the drives from, and how an
// EditCfgRtn command is run and waited for, and the file steps saves take.
// Tests pass their own drives, command runner and file steps.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_system.h"
#include "common/run_command.h"
#include "config/forms/directory_browser.h"
#include "config/operator.h"
#include "toolkit/toolkit.h"

namespace px::dialogs {

struct ConfigContext {
  tk::Toolkit& toolkit;
  Operator& op;
  std::string instance_name;
  std::function<std::vector<forms::Drive>()> drives = forms::system_drives;
  std::function<int(std::string_view)> run_and_wait = [](std::string_view command) {
    return px::run_and_wait(command);
  };
  // The file steps of every save; the real file system when null.
  FileSystem* files = nullptr;
};

}  // namespace px::dialogs
