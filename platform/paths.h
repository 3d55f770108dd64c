// Delphi's path helpers over the platform's delimiter ('/' on POSIX, '\' on
// Windows). Pure string functions: they never touch the file system.
#pragma once

#include <string>

namespace zt::platform {

// A function, not a global: zt and the package each carry a copy of the
// layer, and one exported global defined in both is an ODR violation.
char PathDelim();

// True for the platform's delimiter; on Windows also '/'. On POSIX a '\'
// written by the package where it composes a path is converted by
// NormalizeDelimiters, never treated as a delimiter here.
bool IsPathDelimiter(char C);

std::string ExtractFilePath(const std::string& FileName);   // up to and including the last delimiter
std::string ExtractFileDir(const std::string& FileName);    // same, without the trailing delimiter
std::string ExtractFileName(const std::string& FileName);   // after the last delimiter
std::string ExtractFileExt(const std::string& FileName);    // from the last '.' of the name part, with the dot
std::string ChangeFileExt(const std::string& FileName, const std::string& Extension);
std::string IncludeTrailingPathDelimiter(const std::string& S);
std::string ExcludeTrailingPathDelimiter(const std::string& S);

// The package composes paths with "\" (its Windows spelling). On POSIX this
// turns every '\' into '/'; on Windows it returns S unchanged.
std::string NormalizeDelimiters(const std::string& S);

}  // namespace zt::platform
