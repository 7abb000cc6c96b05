// Feeds arbitrary bytes to the monitoring views' readers as a log: the
// index (built whole, and grown in two parts), pages read through it, the
// whole log wrapped, and the status line. Checks the index against a plain
// count of the same bytes, so a wrong checkpoint or count aborts.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "fuzz/fuzz_file.h"
#include "views/log_index.h"
#include "views/log_text.h"
#include "views/status_queue.h"

namespace {

const px::fuzz::ScratchFile& scratch() {
  static const px::fuzz::ScratchFile file("input.log");
  return file;
}

void check(bool condition) {
  if (!condition) std::abort();
}

// Lines and the offset of every hundredth line, counted plainly.
void check_index(const px::views::LogIndex& index, std::string_view text) {
  int64_t lines = 0;
  size_t start = 0;
  std::vector<uint64_t> starts;
  while (start < text.size()) {
    if (lines % px::views::kCheckpointLines == 0) starts.push_back(start);
    size_t end = text.find('\n', start);
    ++lines;
    start = end == std::string_view::npos ? text.size() : end + 1;
  }
  check(index.line_count() == lines);
  auto checkpoints = index.checkpoints();
  check(std::vector<uint64_t>(checkpoints.begin(), checkpoints.end()) == starts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string& path = scratch().write(data, size / 2);
  px::views::LogIndex index(path);
  check(index.build());
  std::ofstream(path, std::ios::app | std::ios::binary).write(text.data() + size / 2,
                                                                 static_cast<std::streamsize>(size - size / 2));
  index.update();
  check_index(index, text);

  int64_t middle = index.line_count() / 2;
  auto page = index.read_lines(middle, px::views::kPageLines);
  check(page.has_value());
  check(static_cast<int64_t>(page->size()) ==
        std::min<int64_t>(px::views::kPageLines, index.line_count() - middle));
  auto rows = px::views::whole_log(path, {static_cast<int>(size % 90), static_cast<int>(size % 20)});
  check(rows.has_value());
  (void)px::views::status_line(path);
  return 0;
}
