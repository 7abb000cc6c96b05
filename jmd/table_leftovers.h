// Table files that a killed process left in the temporary directory.
//
// An open table's record file and index files have no name (the engine makes
// them unnamed), so a killed process normally leaves nothing. Where the file
// system cannot make unnamed files, the engine creates the file under its
// table name ("PXX1A2B.tmp", index files "PXX1A2B.i03") and unlinks it at
// once; a process killed between those two steps leaves that file behind,
// empty or nearly so, and no process holds it open.
#pragma once

#include <string>

namespace px::jmd {

// Removes the files of directory named like tables ("PXX", hex digits, then
// ".tmp" or ".i" and two digits) that are regular files of this user, were
// last changed more than a few seconds ago (so a file between its creation
// and its unlinking is left alone) and that no process reachable through
// /proc holds open: their owner has ended. Returns how many were removed;
// failures are ignored.
int remove_orphaned_table_files(const std::string& directory);

}  // namespace px::jmd
