// pxctl instances: one line per installed instance, in install-file order:
// its name, a TAB, its window title, a TAB and its configuration file. With
// a subcommand it changes the list (instances_change_command.cpp).
#include <cstdio>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "common/ini_profile.h"
#include "config/instances.h"
#include "config/message_numbers.h"

namespace px::cli {

int run_instances(const Invocation& call) {
  if (!call.words.empty()) return run_instances_change(call);
  InstanceEnumerator instances;
  if (!instances.begin()) {
    ConsoleOperator op;
    op.show(msg::kNoInstance, {display_path(ini::default_file())});
    return kExitFailed;
  }
  for (Instance entry; instances.next(entry);) {
    std::printf("%s\t%s\t%s\n", entry.name.c_str(), entry.window_title.c_str(),
                entry.config_file.c_str());
  }
  instances.end();
  return kExitOk;
}

}  // namespace px::cli
