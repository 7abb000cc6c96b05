#include "control/clock.h"

namespace px {

std::tm SystemClock::now() {
  std::time_t seconds = std::time(nullptr);
  std::tm local{};
  localtime_r(&seconds, &local);
  return local;
}

}  // namespace px
