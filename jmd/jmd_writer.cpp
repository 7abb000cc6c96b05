#include "jmd/jmd_writer.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <memory>

#include "common/ini_profile.h"
#include "common/text.h"

namespace px::jmd {

namespace {

constexpr size_t kTitleSize = 256;

bool needs_quotes(std::string_view value) {
  for (char c : value) {
    if (c == ' ' || c == '"') return true;
  }
  return false;
}

void append_string(std::string& out, std::string_view value) {
  if (value.empty()) {
    out += kEmptyMark;
  } else if (value.find_first_not_of('"') == std::string_view::npos) {
    // Quotes alone: the reader takes two quotes in a row for one quote
    // wherever they stand, so inside quotes the opening and closing quotes
    // would pair with the doubled ones and read back as one quote more.
    // Doubled without quotes round them, they read back as they were.
    out.append(2 * value.size(), '"');
  } else if (!needs_quotes(value)) {
    out += value;
  } else {
    out += '"';
    size_t start = 0;
    for (size_t quote = value.find('"'); quote != std::string_view::npos;
         quote = value.find('"', quote + 1)) {
      out += value.substr(start, quote + 1 - start);
      out += '"';
      start = quote + 1;
    }
    out += value.substr(start);
    out += '"';
  }
}

// A character the reader would take for a separator or a quote is written
// so that the reader's quote rules give it back: white space inside quotes,
// a quote doubled (as a string of quotes). A line break ends the line
// whatever the quotes; no edit stores one.
void append_character(std::string& out, char c) {
  if (c == '\0') {
    out += kEmptyMark;
  } else if (c != '"' && !is_space(c)) {
    out += c;
  } else {
    out += c == '"' ? std::string(2, '"') : std::string{'"', c, '"'};
  }
}

void append_integer(std::string& out, int32_t value) {
  char digits[16];
  auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  out.append(digits, end);
}

}  // namespace

void append_fields(std::string& out, const TableSchema& schema, std::span<const char> record) {
  for (size_t i = 1; i < schema.fields.size(); ++i) {
    const FieldDef& field = schema.fields[i];
    out += ' ';
    switch (field.type) {
      case kTypeCharacter:
        append_character(out, char_field(record, field));
        break;
      case kTypeInteger:
      case kTypeLong:
        append_integer(out, int_field(record, field));
        break;
      default:
        append_string(out, string_field(record, field));
        break;
    }
  }
}

std::string record_line(const TableSchema& schema, std::span<const char> record) {
  std::string line(schema.line_key);
  append_fields(line, schema, record);
  line += '\n';
  return line;
}

std::vector<std::string> title_lines(const TableSchema& schema) {
  std::vector<std::string> lines;
  for (int i = 1;; ++i) {
    std::string key = std::string(schema.line_key) + std::to_string(i);
    std::string value = ini::get_string("Titles", key, "", kTitleSize);
    if (value.empty()) break;
    lines.push_back(std::move(value));
  }
  return lines;
}

FileResult save_jmd(Jmd& jmd, const std::string& path, FileSystem& files,
                    const ReplaceOptions& options) {
  FileReplacement file(path, files, options);
  bool written = file.append(std::string(kHeader) + "\n");
  std::string line;
  for (int slot = 0; slot < kTableCount && written; ++slot) {
    const TableSchema& schema = table_schema(slot);
    for (const std::string& title : title_lines(schema)) {
      written = written && file.append(title + "\n");
    }
    written = written && for_each_sorted(jmd, slot, [&](std::span<const char> record) {
                line.assign(schema.line_key);
                append_fields(line, schema, record);
                line += '\n';
                return file.append(line);
              });
  }
  if (!written && file.result()) return {FileStep::kWrite, EIO};  // the tables failed
  return file.commit();
}

}  // namespace px::jmd
