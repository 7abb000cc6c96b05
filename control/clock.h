// The clock that control jobs are stamped with, behind a small interface so
// that tests can fix the moment.
#pragma once

#include <ctime>

namespace px {

class Clock {
 public:
  virtual ~Clock() = default;
  // The local date and time now.
  virtual std::tm now() = 0;
};

// The system's local time.
class SystemClock : public Clock {
 public:
  std::tm now() override;
};

// Always the same moment.
class FixedClock : public Clock {
 public:
  explicit FixedClock(const std::tm& moment) : moment_(moment) {}
  std::tm now() override { return moment_; }
  void set(const std::tm& moment) { moment_ = moment; }

 private:
  std::tm moment_;
};

}  // namespace px
