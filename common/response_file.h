// Response files: the final status a program leaves for whoever started it.
//
// Field format (the default) is a job file:
//   ^field status\n<status>\n^field message\n<message>\n
//   then "^field <name>\n<value>\n" for each extra pair.
// Basic format is "<status>\n<message>", with no final line feed.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace px {

enum class ResponseFormat { kField, kBasic };

// The most extra name/value pairs read back from a response.
inline constexpr size_t kMaxResponseExtras = 16;

// Names the response file; any existing file of that name is deleted at once
// so that a stale response cannot be mistaken for a new one.
void set_response_file(std::string_view name);
const std::string& response_file();
void set_response_format(ResponseFormat format);
ResponseFormat response_format();
// "basic" in any case selects the basic format, anything else the field one.
ResponseFormat parse_response_format(std::string_view text);

using NameValue = std::pair<std::string, std::string>;

// Writes the response file, if one is named, and forgets the name. A file
// that cannot be created is skipped.
void write_response(int status, std::string_view message,
                    const std::vector<NameValue>& extras = {});

struct Response {
  int status = -1;
  std::string message;
  std::vector<NameValue> extras;
};

// Runs command_line, waits for it, and reads back "plexar.rsp" from the
// current directory (deleting it): the status starts as the exit status.
Response run_and_read_response(std::string_view command_line);

// Reads the response file at path into response: a file that begins with "^"
// in the field format, any other in the basic one. The status stays as it
// was when the file names none; nothing changes when it cannot be read.
void read_response(const std::string& path, Response& response);

}  // namespace px
