#include "config/jmd_printers.h"

#include <span>

#include "jmd/jmd_schema.h"

namespace px {

std::optional<std::vector<std::string>> jmd_printer_names(JmdService& service, Operator& op) {
  bool was_open = service.is_open();
  jmd::Jmd* database = service.open(op);
  if (database == nullptr) return std::nullopt;
  const jmd::TableSchema& schema = jmd::table_schema(jmd::kPrinterTable);
  const jmd::FieldDef* name = jmd::find_field(schema, "PrinterName");
  std::vector<std::string> names;
  bool listed = name != nullptr &&
                jmd::for_each_sorted(*database, jmd::kPrinterTable, [&](std::span<const char> row) {
                  names.emplace_back(jmd::string_field(row, *name));
                  return true;
                });
  if (!was_open) service.close();
  if (!listed) return std::nullopt;
  return names;
}

}  // namespace px
