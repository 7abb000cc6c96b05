// The small JMD the JMD editors' tests and the pxctl jmd editing tests
// start from.
#pragma once

namespace px {

inline constexpr const char* kJmdHeader = "# Plexar Job Management Database (JMD) file\n";

// Two jobs (INVOICE with two steps, CHEQUE with one), two printers, one
// task and one managed-memory row.
inline constexpr const char* kSmallJmd =
    "# Plexar Job Management Database (JMD) file\n"
    "!f CHEQUE LASER2 /forms/chq.mdf * 2 T PXMERGE N N C *\n"
    "!f INVOICE LASER1 inv.mdf * 1 T PXMERGE N N C \"first step\"\n"
    "!f INVOICE LASER2 inv2.mdf * 1 T PXMERGE N N C *\n"
    "!p LASER1 HP4 LPT1 * 50 *\n"
    "!p LASER2 * LPT2 * 50 *\n"
    "!x PXMERGE WClass pxmerge.exe * *\n"
    "!m HP4 4096 \"four k\"\n";

}  // namespace px
