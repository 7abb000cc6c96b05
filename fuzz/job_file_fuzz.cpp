// Feeds arbitrary bytes to the job-file reader as a job file: names, a field
// lookup, full item iteration and XML detection.
#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "common/job_file.h"
#include "fuzz/fuzz_file.h"

namespace {

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, Closer>;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // Includes of devices and FIFOs ("^file /dev/zero") are refused by the
  // reader like any file it cannot open; /proc and /sys files are read.
  static const px::fuzz::ScratchFile input("input.job");
  const std::string& input_path = input.write(data, size);

  px::JobFile job("unused-default.job");
  job.open(input_path);
  job.job_name();
  job.form_name();
  job.field_value("status");

  // Iteration and lookup read the same lines: the first field iterated is
  // the one a lookup of its name finds, unless the lookup met a missing
  // include (which iteration skips).
  px::Field item;
  std::optional<px::Field> first;
  for (;;) {
    int rc = job.next_item(item);
    if (rc == px::kJobFileMissing || item.name.empty()) break;
    if (!first && rc == 0) first = item;
  }
  // A /proc or /sys file may read differently each time, so the two reads
  // are compared only when nothing of the kind can be included.
  std::string_view text(reinterpret_cast<const char*>(data), size);
  bool volatile_include =
      text.find("/proc") != std::string_view::npos || text.find("/sys") != std::string_view::npos;
  if (first && !volatile_include) {
    std::optional<std::string> value = job.field_value(first->name);
    if (job.last_error() == 0 && value != first->value) abort();
  }

  FilePtr file(std::fopen(input_path.c_str(), "rb"));
  if (file) px::is_xml(file.get());
  return 0;
}
