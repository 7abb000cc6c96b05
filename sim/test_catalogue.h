// Tests of the simulator read its texts from the shipped message catalogue.
#pragma once

#include "common/ini_profile.h"

namespace px::sim {

// Makes the console's INI file of the source tree the default INI file, once.
inline void use_test_catalogue() {
  static const bool done = (ini::set_file(PX_CATALOGUE), true);
  (void)done;
}

}  // namespace px::sim
