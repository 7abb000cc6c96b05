#include "jmd/editors/table_rows.h"

#include <algorithm>
#include <span>

#include "jmd/jmd.h"
#include "jmd/jmd_schema.h"

namespace px::editors {

std::vector<std::vector<TextRow>> table_rows(JmdEditor& editor) {
  std::vector<std::vector<TextRow>> tables;
  jmd::Jmd* database = editor.service().open(editor.op());
  if (database == nullptr) return tables;
  for (int slot = 0; slot < jmd::kTableCount; ++slot) {
    const jmd::TableSchema& schema = jmd::table_schema(slot);
    std::vector<TextRow>& rows = tables.emplace_back();
    jmd::for_each_sorted(*database, slot, [&](std::span<const char> record) {
      TextRow& fields = rows.emplace_back();
      for (size_t i = 1; i < schema.fields.size(); ++i) {
        std::string text = jmd::field_text(record, schema.fields[i]);
        fields.push_back(text.empty() ? std::string(jmd::kEmptyMark) : text);
      }
      return true;
    });
    std::sort(rows.begin(), rows.end());
  }
  return tables;
}

}  // namespace px::editors
