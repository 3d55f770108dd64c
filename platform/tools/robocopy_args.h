// The built-in robocopy's argument list, read into settings: the switches
// Microsoft documents for robocopy, less those that need Windows security
// or services (refused), and job files (/JOB:) read into more arguments.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/win_types.h"

namespace zt::platform {

struct TRobocopySettings {
  std::string Source, Dest;
  std::vector<std::string> Files;  // name patterns; empty = "*.*"
  std::vector<std::string> ExcludeFiles, ExcludeDirs;  // /XF, /XD: names, wildcards or paths
  // Tree
  bool SubDirs = false, EmptySubDirs = false, Purge = false, MoveFiles = false, MoveDirs = false;
  int Levels = 0;  // /LEV:n, 0 = no limit; the root is level 1
  bool CreateOnly = false, NoCopy = false, TimeFix = false;
  std::string CopyFlags = "DAT", DirCopyFlags = "DA";
  DWORD AddAttributes = 0, RemoveAttributes = 0;
  // Selection
  DWORD IncludeAttributes = 0, ExcludeAttributes = 0;
  bool ResetArchive = false, IncludeSame = false, IncludeTweaked = false;
  bool ExcludeChanged = false, ExcludeNewer = false, ExcludeOlder = false, ExcludeExtra = false,
       ExcludeLonely = false, ExcludeDirLinks = false, ExcludeFileLinks = false, FatTimes = false, Dst = false;
  std::int64_t MaxSize = -1, MinSize = -1;
  // Age limits as instants: files written before OldestWrite or after
  // NewestWrite are not selected (access dates: see docs/decisions.md).
  std::optional<TFileTime> OldestWrite, NewestWrite, OldestAccess, NewestAccess;
  // Retries and threads
  int Retries = 1000000, Wait = 30, Threads = 1;
  // Log
  bool ListOnly = false, ReportExtra = false, Verbose = false, TimeStamps = false, FullPaths = false,
       NoSizes = false, NoClasses = false, NoFileList = false, NoDirList = false, Tee = false,
       NoJobHeader = false, NoJobSummary = false, NoProgress = false;
  std::string LogFile;
  bool AppendLog = false, UnicodeLog = false;
  std::vector<std::string> Switches;  // as given, for the header's "Options" line
};

// Reads Args (the command line after the program name). The first two
// arguments that are not switches are the source and destination, the
// others name patterns; an argument is a switch when it starts with "/" and
// names one ("/MIR", "/LEV:2"), so a path such as "/home/x" stays a path.
// After /XF, /XD and /IF every argument is a name until the next switch.
// /JOB: reads the job file's arguments in first. Returns false with Error
// set to the line to report (exit 16).
bool ParseRobocopyArgs(const std::vector<std::string>& Args, TRobocopySettings& S, std::string& Error);

// A job file's text as arguments: "::" starts a comment to the end of the
// line; /SD: and /DD: take the rest of their line; after /IF, /XF and /XD a
// line that starts with no switch is one name; otherwise blanks separate
// arguments and double quotes group them.
std::vector<std::string> ReadRobocopyJobText(const std::string& Text);

}  // namespace zt::platform
