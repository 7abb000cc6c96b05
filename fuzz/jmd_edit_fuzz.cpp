// Feeds arbitrary bytes to the JMD editors' rules: the first byte picks a
// row dialog and its mode, the rest is typed into its fields (one line per
// field, each key a change), then OK validates and stores. A second part is
// taken as a raw record and formatted as every list kind's line. Typed
// fields never pass their longest length, a stored row is found, a save and
// a fresh load give back every row the editor held, undo takes the row back,
// and every line has its exact width.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "config/recording_operator.h"
#include "fuzz/fuzz_file.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/table_rows.h"
#include "jmd/jmd_schema.h"
#include "jmd/jmd_writer.h"

namespace {

using px::editors::FormMode;
using px::editors::ListKind;

// The editor's operator; what it was shown is forgotten after every input.
px::RecordingOperator& op() {
  static px::RecordingOperator recorder;
  return recorder;
}

// The directory of the JMD edited and of its saved copies.
const px::fuzz::ScratchFile& scratch() {
  static px::fuzz::ScratchFile file("jobs.jmd");
  return file;
}

px::editors::JmdFile& jmd() {
  static std::unique_ptr<px::editors::JmdFile> file = [] {
    std::string_view text =
        "# Plexar Job Management Database (JMD) file\n"
        "!f INVOICE LASER1 inv.mdf * 1 T PXMERGE N N C *\n"
        "!p LASER1 HP4 LPT1 * 50 *\n"
        "!x PXMERGE WClass pxmerge.exe * *\n"
        "!m HP4 4096 *\n";
    scratch().write(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    auto loaded = std::make_unique<px::editors::JmdFile>(scratch().path(), op());
    if (!loaded->load()) std::abort();
    return loaded;
  }();
  return *file;
}

// What the rules stored must survive the file: saved, then loaded afresh, the
// JMD holds the same rows as the editor. The copy is written beside the JMD
// by the writer the console saves with; saving the JMD itself would leave
// nothing to undo.
void check_saved_rows() {
  px::editors::JmdEditor& editor = jmd().editor();
  px::jmd::Jmd* database = editor.service().jmd();
  if (database == nullptr) std::abort();
  const std::string copy = scratch().directory() + "/saved.jmd";
  if (!px::jmd::save_jmd(*database, copy)) std::abort();
  px::editors::JmdFile again(copy, op());
  if (!again.load() || px::editors::table_rows(again.editor()) != px::editors::table_rows(editor)) {
    std::abort();
  }
}

// Line widths of the kinds; a memory line is wider when its amount has more
// than nine characters.
constexpr size_t kLineWidth[] = {51, 50, 49, 50, 40};
constexpr size_t kWidestAmount = 11;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  px::editors::JmdEditor& editor = jmd().editor();
  ListKind kind = static_cast<ListKind>(1 + data[0] % 4);
  FormMode mode = data[0] & 0x10 ? FormMode::kNew : FormMode::kEdit;
  std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
  size_t split = rest.find('\0');
  std::string_view typed = rest.substr(0, split);
  std::string_view raw = split == std::string_view::npos ? std::string_view() : rest.substr(split + 1);

  px::editors::RowForm form = mode == FormMode::kNew ? editor.new_form(kind, "FUZZ")
                                                     : px::editors::RowForm(kind, mode);
  size_t field = 0;
  for (size_t start = 0; start <= typed.size() && field < form.rules().size(); ++field) {
    size_t end = typed.find('\n', start);
    if (end == std::string_view::npos) end = typed.size();
    const px::editors::FieldRule& rule = form.rules()[field];
    form.type(rule.control, typed.substr(start, end - start));
    if (form.text(rule.control).size() > rule.longest) std::abort();
    start = end + 1;
  }
  // A row stored is taken back by undo, so every input meets the same JMD
  // (and the heap does not grow from input to input).
  if (mode == FormMode::kNew && kind == ListKind::kSteps) {
    // The step's job is the one typed into its first field.
    px::editors::OkResult stored = editor.ok_step(form, 0, editor.job_steps("FUZZ"), std::nullopt);
    if (stored.accepted()) {
      check_saved_rows();
      size_t steps = editor.job_steps(stored.key).size();
      if (steps == 0 || !editor.undo()) std::abort();
      if (editor.job_steps(stored.key).size() != steps - 1) std::abort();
    }
  } else if (mode == FormMode::kNew) {
    // Managed-memory rows have no key to find them by.
    bool keyed = kind != ListKind::kMemory;
    px::editors::OkResult stored = editor.ok(form);
    if (stored.accepted()) {
      check_saved_rows();
      if ((keyed && editor.find_row(kind, stored.key) == 0) || !editor.undo()) std::abort();
      if (keyed && editor.find_row(kind, stored.key) != 0) std::abort();
    }
  }
  for (int k = 0; k < px::editors::kListKindCount; ++k) {
    ListKind list = static_cast<ListKind>(k);
    std::vector<char> record(px::jmd::table_schema(px::editors::table_slot(list)).record_size, 0);
    std::copy_n(raw.begin(), std::min(raw.size(), record.size()), record.begin());
    size_t width = px::editors::format_line(list, record).size();
    size_t widest = kLineWidth[k] + (list == ListKind::kMemory ? kWidestAmount - 9 : 0);
    if (width < kLineWidth[k] || width > widest) std::abort();
  }
  op().clear();
  return 0;
}
