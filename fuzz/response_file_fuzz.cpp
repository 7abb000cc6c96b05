// Feeds arbitrary bytes to the response-file reader as the file a started
// program left, then writes a response made from the same bytes in both
// formats and reads it back. Checks that a message read never passes 511
// characters, that at most 16 extra pairs are kept, that a basic-format
// message is one line, and that a written status and one-line message read
// back as written.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "common/response_file.h"
#include "fuzz/fuzz_file.h"

namespace {

// A one-line message the response formats can carry as it is: printable,
// no "^" to start a job-file command, no blanks at either end.
std::string plain_message(std::string_view data) {
  std::string text;
  for (char c : data) {
    if (c >= 33 && c < 127 && c != '^') text += c;
    if (c == ' ' && !text.empty()) text += c;
  }
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text.substr(0, 511);
}

void check_round_trip(const std::string& path, px::ResponseFormat format, int status,
                      const std::string& message) {
  px::set_response_file(path);
  px::set_response_format(format);
  px::write_response(status, message);
  px::Response read;
  px::read_response(path, read);
  if (read.status != status || read.message != message) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static const px::fuzz::ScratchFile scratch("plexar.rsp");
  std::string_view data(reinterpret_cast<const char*>(bytes), size);

  px::Response response;
  response.status = 12345;
  px::read_response(scratch.write(bytes, size), response);
  if (response.message.size() > 511 || response.extras.size() > px::kMaxResponseExtras) {
    std::abort();
  }
  bool basic = data.empty() || data[0] != '^';
  if (basic && response.message.find('\n') != std::string::npos) std::abort();
  if (data.empty() && (response.status != 12345 || !response.message.empty())) std::abort();

  int status = 0;
  std::memcpy(&status, bytes, size < sizeof status ? size : sizeof status);
  std::string message = plain_message(data);
  check_round_trip(scratch.path(), px::ResponseFormat::kBasic, status, message);
  check_round_trip(scratch.path(), px::ResponseFormat::kField, status, message);
  return 0;
}
