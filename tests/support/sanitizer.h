// Whether this build runs under AddressSanitizer (-DPX_SANITIZE=ON): its
// programs are several times slower, so tests that repeat a program run
// many times for a statistic run fewer there.
#pragma once

namespace px {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kUnderAddressSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kUnderAddressSanitizer = true;
#else
inline constexpr bool kUnderAddressSanitizer = false;
#endif
#else
inline constexpr bool kUnderAddressSanitizer = false;
#endif

// The number of runs of a repeated test: all of them normally, a quarter
// under the sanitizer (the sanitizer build checks memory, not statistics).
constexpr int repeated_runs(int runs) { return kUnderAddressSanitizer ? runs / 4 : runs; }

}  // namespace px
