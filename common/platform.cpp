#include "common/platform.h"

#include <cstdlib>
#include <cstring>

namespace px {

bool is_nt_family() {
  const char* value = std::getenv("PLEXAR_PLATFORM");
  return value == nullptr || std::strcmp(value, "classic") != 0;
}

}  // namespace px
