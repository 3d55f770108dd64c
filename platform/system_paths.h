// Where the system keeps its programs, and new temporary files.
#pragma once

#include <string>

namespace zt::platform {

// The system directory, without a trailing delimiter: Windows' System32
// folder; "/usr/bin" on POSIX.
std::string GetSysDirectory();

// The user's home directory: USERPROFILE on Windows; on POSIX HOME, else the
// account's home from the password database. Empty when neither is known.
std::string GetHomeDirectory();

// Creates a new, empty file with a unique name in the temporary directory
// (TMPDIR on POSIX, else /tmp) and returns its full name; Extension ("xcp"
// or ".xcp") ends the name. Empty, with the last error set, on failure.
// The caller removes the file with DeleteTemporaryFile; should the program
// have to end at once before that, AbandonPendingFiles (stop.h) does.
std::string GetTemporaryFileName(const std::string& Extension);
void DeleteTemporaryFile(const std::string& Name);

}  // namespace zt::platform
