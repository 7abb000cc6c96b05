#include "common/response_file.h"

#include <unistd.h>

#include <cstdio>
#include <memory>

#include "common/file_util.h"
#include "common/job_file.h"
#include "common/run_command.h"
#include "common/text.h"

namespace px {

namespace {

constexpr const char* kReadBackName = "plexar.rsp";
constexpr size_t kMessageSize = 512;  // 511 characters

struct ResponseState {
  std::string file;
  ResponseFormat format = ResponseFormat::kField;
};

ResponseState& response_state() {
  static ResponseState s;
  return s;
}

std::string field_text(int status, std::string_view message,
                       const std::vector<NameValue>& extras) {
  std::string text = "^field status\n" + std::to_string(status) + "\n^field message\n";
  text += message;
  text += '\n';
  for (const NameValue& extra : extras) {
    text += "^field " + extra.first + "\n" + extra.second + "\n";
  }
  return text;
}

void read_field_response(const std::string& path, Response& response) {
  JobFile job(path);
  Field field;
  while (job.next_field(field) == 0 && !field.name.empty()) {
    if (iequals(field.name, "status")) {
      response.status = parse_int(field.value);
    } else if (iequals(field.name, "message")) {
      response.message = cut_to_buffer(field.value, kMessageSize);
    } else if (response.extras.size() < kMaxResponseExtras) {
      response.extras.emplace_back(field.name, field.value);
    }
  }
}

// Basic format: an integer, then one line of message. As a "%d\n" scan
// would, white space after the number (blank lines too) is skipped; when no
// number is there the exit status is kept.
void read_basic_response(std::string_view text, Response& response) {
  size_t i = 0;
  while (i < text.size() && is_space(text[i])) ++i;
  size_t number = i;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  size_t digits = i;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
  if (i > digits) {
    response.status = parse_int(text.substr(number, i - number));
    while (i < text.size() && is_space(text[i])) ++i;
  } else {
    i = number;
  }
  std::string_view message = text.substr(i);
  size_t line_feed = message.find('\n');
  message = message.substr(0, line_feed == std::string_view::npos ? message.size() : line_feed);
  message = message.substr(0, kMessageSize - 1);
  if (!message.empty() && message.back() == '\r') message.remove_suffix(1);
  response.message = std::string(message);
}

}  // namespace

void set_response_file(std::string_view name) {
  response_state().file = std::string(name);
  if (!name.empty()) std::remove(response_state().file.c_str());
}

const std::string& response_file() { return response_state().file; }
void set_response_format(ResponseFormat format) { response_state().format = format; }
ResponseFormat response_format() { return response_state().format; }

ResponseFormat parse_response_format(std::string_view text) {
  return iequals(text, "basic") ? ResponseFormat::kBasic : ResponseFormat::kField;
}

void write_response(int status, std::string_view message, const std::vector<NameValue>& extras) {
  ResponseState& s = response_state();
  if (s.file.empty()) return;
  std::string text = s.format == ResponseFormat::kBasic
                         ? std::to_string(status) + "\n" + std::string(message)
                         : field_text(status, message, extras);
  write_output_file(s.file, text, false);
  s.file.clear();
}

Response run_and_read_response(std::string_view command_line) {
  Response response;
  response.status = run_and_wait(command_line);
  read_response(kReadBackName, response);
  std::remove(kReadBackName);
  return response;
}

void read_response(const std::string& path, Response& response) {
  std::optional<std::string> text = read_file(path);
  if (!text) return;
  if (!text->empty() && (*text)[0] == '^') {
    read_field_response(path, response);
  } else {
    read_basic_response(*text, response);
  }
}

}  // namespace px
