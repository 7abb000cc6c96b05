// Feeds arbitrary bytes to the JMD reader as a JMD file: lines, tokens and
// records, with a store that refuses a repeated key the way the unique
// indexes do. Each stored record is written back as a line, which must be one
// line with no NUL.
#include <cstddef>
#include <cstdint>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <string_view>

#include "jmd/jmd_reader.h"
#include "jmd/jmd_writer.h"

namespace {

class QuietReporter : public px::jmd::Reporter {
 public:
  void message(int, const std::vector<std::string>&) override {}
  void trace(std::string_view) override {}
};

// Every string field ends within its width and the written line is whole.
bool check_record(int slot, std::span<const char> record) {
  const px::jmd::TableSchema& schema = px::jmd::table_schema(slot);
  if (record.size() != schema.record_size) return false;
  for (const px::jmd::FieldDef& field : schema.fields) {
    if (field.type == px::jmd::kTypeText &&
        std::memchr(record.data() + field.position, '\0', field.width) == nullptr) {
      return false;
    }
  }
  std::string line = px::jmd::record_line(schema, record);
  return line.find('\n') == line.size() - 1 && line.find('\0') == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  px::jmd::LineSource lines(text);
  QuietReporter reporter;
  std::set<std::string> keys;
  px::jmd::read_jmd(lines, "fuzz.jmd", reporter, [&](int slot, std::span<const char> record) {
    if (!check_record(slot, record)) std::abort();
    const px::jmd::TableSchema& schema = px::jmd::table_schema(slot);
    if (schema.unique_column.empty()) return true;
    std::string key(px::jmd::string_field(record, schema.fields[1]));
    for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return keys.insert(std::to_string(slot) + key).second;
  });
  return 0;
}
