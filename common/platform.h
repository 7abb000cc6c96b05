// Which branch of platform-dependent behaviour the runtime takes.
#pragma once

namespace px {

// True on the default ("NT family") branch. The classic branch is taken when
// the environment variable PLEXAR_PLATFORM is "classic".
bool is_nt_family();

}  // namespace px
