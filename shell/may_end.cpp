#include "shell/may_end.h"

#include "config/jmd_service.h"
#include "jmd/editors/jmd_windows.h"
#include "shell/shell_messages.h"

namespace px::shell {

namespace {

enum SaveAnswer : size_t { kSave = 0, kDiscard = 1, kCancel = 2 };

}  // namespace

bool may_program_end(Console& console) {
  JmdService& service = jmd_service();
  if (service.modified()) {
    size_t answer = console.op().ask(msg::kSaveJmdQuestion, {},
                                     {msg::kButtonSave, msg::kButtonDiscard, msg::kButtonCancel});
    if (answer == kCancel) return false;
    if (answer == kSave && !service.save(console.op())) return false;
  }
  service.close();
  editors::jmd_windows().close_all();
  return true;
}

void save_database(Console& console) { jmd_service().save(console.op()); }

}  // namespace px::shell
