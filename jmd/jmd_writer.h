// Writing the JMD text file (format in jmd/jmd_schema.h): record lines,
// title lines, and the whole file from an open JMD.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/file_replace.h"
#include "jmd/jmd.h"
#include "jmd/jmd_schema.h"

namespace px::jmd {

// Appends a record's fields after Deleted, each behind one blank: "*" for an
// empty string or a NUL character, a string with a blank or a double quote
// quoted with its quotes doubled, integers in decimal.
void append_fields(std::string& out, const TableSchema& schema, std::span<const char> record);

// The line key, the fields and a newline.
std::string record_line(const TableSchema& schema, std::span<const char> record);

// The title lines of a table: values of keys "<line key>1", "<line key>2", ...
// of section Titles of the default INI file, up to the first empty one.
std::vector<std::string> title_lines(const TableSchema& schema);

// Writes the whole file at path: header, then per table its title lines and
// its records in sort-column order. The file is replaced crash-safely
// (common/file_replace.h, with options such as the backup to keep): on any
// failure it is left as it was and the result names the failed step; a query
// that cannot be started or a record that cannot be fetched fails the write
// with EIO. path may be the file the JMD was loaded from.
FileResult save_jmd(Jmd& jmd, const std::string& path, FileSystem& files = system_file_system(),
                    const ReplaceOptions& options = {});

}  // namespace px::jmd
