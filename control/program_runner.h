// Starting other programs, behind a small interface so that tests can see
// what would be started without starting anything.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px {

class ProgramRunner {
 public:
  virtual ~ProgramRunner() = default;
  // Starts command_line without waiting; true when it was started.
  virtual bool launch(std::string_view command_line) = 0;
};

// Starts programs through the runtime (no shell; the first word is searched
// on PATH).
class SystemProgramRunner : public ProgramRunner {
 public:
  bool launch(std::string_view command_line) override;
};

// Records each command line with the current directory it would start in,
// and answers with a set result.
class RecordingProgramRunner : public ProgramRunner {
 public:
  struct Launch {
    std::string command_line;
    std::string directory;
  };
  bool launch(std::string_view command_line) override;
  void set_result(bool started) { result_ = started; }
  const std::vector<Launch>& launches() const { return launches_; }

 private:
  bool result_ = true;
  std::vector<Launch> launches_;
};

}  // namespace px
