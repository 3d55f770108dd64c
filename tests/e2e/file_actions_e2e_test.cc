// Create Directory, Check if File Exists, Set File Attributes and Touch
// File(s) through zt: the lines a user reads, the result, the variables and
// every file afterwards, one row per rule.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(FileActionsE2E, CreateDirectoryRules) {
  const std::string Create = "action: Create Directory, FileOrDirectory: ";
  // clang-format off
  ExpectCases({
      {Create + "'  %OUT%  '", {}, {"Created directory : out"}, "success", {"out/"}},
      {Create + "here", {"here/keep.txt"}, {"Created directory : here"}, "success", {"here/keep.txt"}},
      {Create + "a/b/c", {}, {"Unable to Create directory : a/b/c"}, "failure", {}},
      {Create + "a/b/c, Force: true", {}, {"Created directory : a/b/c"}, "success", {"a/b/c/"}},
      {Create + "taken, Force: true", {"taken=data"}, {"Unable to Create directory : taken"}, "failure",
       {"taken=data"}},
      {Create + "' '", {}, {}, "success", {}},
      {Create + "'%MISSING%/x'", {}, {"Unable to Create directory : ", "Variable \"MISSING\" is not defined"},
       "failure", {}},
  }, {"--var", "OUT=out"});
  // clang-format on
}

TEST(FileActionsE2E, CheckIfFileExistsRules) {
  const std::string Check = "action: Check if File Exists, Variable: Found, ";
  const Lines Here = {"a.txt", "b.txt", "folder/", ".hidden"};
  const std::string Yes = "Found a match for the File Spec", No = "No match found for File Spec";
  const std::string True = R"({"Found": true})", False = R"({"Found": false})";
  // clang-format off
  ExpectCases({
      {Check + "FileOrDirectory: a.txt", Here, {Yes}, "success", Here, True},
      {Check + "FileOrDirectory: folder", Here, {Yes}, "success", Here, True},
      {Check + "FileOrDirectory: .hid*", Here, {Yes}, "success", Here, True},
      {Check + "FileOrDirectory: nothing.txt", Here, {No}, "failure", Here, False},
      // A trailing delimiter, either one, asks for a directory.
      {Check + "FileOrDirectory: folder/", Here, {"Found a match for the directory"}, "success", Here, True},
      {Check + "FileOrDirectory: 'fol*\\'", Here, {"Found a match for the directory"}, "success", Here, True},
      {Check + "FileOrDirectory: a.txt/", Here, {"No match found for the directory"}, "failure", Here, False},
      // The mode decides the result; the variable always has the answer.
      {Check + "FileOrDirectory: a.txt, ExistsMode: feFailIfExists", Here, {Yes}, "failure", Here, True},
      {Check + "FileOrDirectory: gone, ExistsMode: feFailIfExists", {}, {No}, "success", {}, False},
      {Check + "FileOrDirectory: a.txt, FailIfExists: true", Here, {Yes}, "failure", Here, True},
      {Check + "FileOrDirectory: gone, ExistsMode: feIgnore", {}, {No}, "success", {}, False},
      {"action: Check if File Exists, FileOrDirectory: a.txt", Here, {Yes}, "success", Here, "{}"},
      {Check + "FileOrDirectory: '%UNDEFINED%/a.txt', ExistsMode: feFailIfExists", {},
       {"Cannot expand FileMask: variable \"UNDEFINED\" is not defined", "Could not expand file mask"}, "success", {},
       False},
      {Check + "UseFileSpec: false, ExistsMode: feFailIfExists", {}, {}, "success", {}, False},
  });
  // clang-format on
}

TEST(FileActionsE2E, SetFileAttributesRules) {
  const std::string Set = "action: Set File Attributes, ";
  // clang-format off
  ExpectCases({
      {Set + "FileSpec: '*.txt', ReadOnly: asSet, LogAllFiles: true", {"a.txt", "c.log"},
       {"File spec : *.txt", "Processed File : a.txt"}, "success", {"a.txt [ro]", "c.log"}},
      {Set + "FileSpec: f, ReadOnly: asClear, Hidden: asClear, Archive: asSet, SystemFile: asSet", {"f [ro] [0x2]"},
       {"File spec : f"}, "success", {"f [0x24]"}},
      {Set + "FileSpec: f, Archive: asSet", {"f [0x4]"}, {"File spec : f"}, "success", {"f [0x24]"}},
      {Set + "FileSpec: '*.txt', ReadOnly: asSet", {".dot.txt", "sys.txt [0x4]"}, {"File spec : *.txt"}, "success",
       {".dot.txt [ro]", "sys.txt [ro] [0x4]"}},
      {Set + "FileSpec: '  \"%D%/grüße *.txt\"  ', ReadOnly: asSet, LogAllFiles: true", {"dir/grüße an alle.txt"},
       {"File spec : dir/grüße *.txt", "Processed File : dir/grüße an alle.txt"}, "success",
       {"dir/grüße an alle.txt [ro]"}},
      // Recursion skips hidden directories.
      {Set + "FileSpec: '*.txt', ReadOnly: asSet, Recurse: true", {"top.txt", "sub/deeper/low.txt", ".git/skip.txt"},
       {"File spec : *.txt"}, "success", {"top.txt [ro]", "sub/deeper/low.txt [ro]", ".git/skip.txt"}},
      {Set + "FileSpec: '*.none', ReadOnly: asSet", {}, {"File spec : *.none", "No files were found matching the file spec."},
       "success", {}},
      {Set + "FileSpec: folder, ReadOnly: asSet, FailIfFileNotFound: true", {"folder/"},
       {"File spec : folder", "No files were found matching the file spec."}, "failure", {"folder/"}},
      {Set + "FileSpec: a.txt", {"a.txt"}, {"No attributes were specified to change."}, "failure", {"a.txt"}},
      {Set + "FileSpec: '\"\"', Hidden: asSet", {}, {"No file spec was specified."}, "failure", {}},
      {Set + "FileSpec: '%NOPE%/*.txt', Hidden: asSet", {}, {"Variable \"NOPE\" is not defined"}, "failure", {}},
  },
              {"--var", "D=dir"});
  // clang-format on
}

// Sets Path's modification time to the local time Stamp ("YYYY-MM-DD HH:MM:SS").
void SetStamp(const std::string& Path, const std::string& Stamp) {
  std::tm T = {};
  strptime(Stamp.c_str(), "%Y-%m-%d %H:%M:%S", &T);
  T.tm_isdst = -1;
  const timespec Times[2] = {{0, UTIME_OMIT}, {std::mktime(&T), 0}};
  utimensat(AT_FDCWD, Path.c_str(), Times, 0);
}

std::string Stamp(const std::string& Path) {
  struct stat St;
  if (stat(Path.c_str(), &St) != 0) return "missing";
  char Buf[32];
  std::strftime(Buf, sizeof Buf, "%Y-%m-%d %H:%M:%S", std::localtime(&St.st_mtime));
  return Buf;
}

TEST(FileActionsE2E, TouchRules) {
  const std::string Old = "2010-01-02 08:10:20", New = "2021-06-15 13:45:30";  // a file date has 2 s steps
  const std::string Touch = "action: Touch File(s), ", When = "DateTime: 2021-06-15T13:45:31, ";
  // clang-format off
  const struct {
    std::string Settings;
    Lines Files;  // all stamped Old before the run
    Lines Log;
    std::string Result;
    Lines Stamps;  // "file=stamp" afterwards
  } Cases[] = {
      {"FileSpec: '*.txt'", {"a.txt", "c.log"}, {"Processed : 1 File(s)"}, "success", {"a.txt=" + New, "c.log=" + Old}},
      {"FileSpec: f, TouchTime: false", {"f"}, {"Processed : 1 File(s)"}, "success", {"f=2021-06-15 08:10:20"}},
      {"FileSpec: f, TouchDate: false", {"f"}, {"Processed : 1 File(s)"}, "success", {"f=2010-01-02 13:45:30"}},
      // Read-only files only with TouchReadOnly, which keeps their bits;
      // hidden and system files never.
      {"FileSpec: ro", {"ro [ro]"}, {"Processed : 0 File(s)"}, "success", {"ro=" + Old}},
      {"FileSpec: ro, TouchReadOnly: true", {"ro [ro] [0x20]"}, {"Processed : 1 File(s)"}, "success", {"ro=" + New}},
      {"FileSpec: '*.txt'", {".dot.txt", "sys.txt [0x4]"}, {"Processed : 0 File(s)"}, "success",
       {".dot.txt=" + Old, "sys.txt=" + Old}},
      {"FileSpec: '*.txt', Recurse: true", {"top.txt", "sub/deeper/low.txt", "sub/other.bin"},
       {"Processed : 2 File(s)"}, "success", {"sub/deeper/low.txt=" + New, "sub/other.bin=" + Old}},
      {"FileSpec: ' %D%/año*.txt '", {"d/año nuevo.txt"}, {"Processed : 1 File(s)"}, "success",
       {"d/año nuevo.txt=" + New}},
      {"FileSpec: folder", {"folder/"}, {"Processed : 0 File(s)"}, "success", {}},
      {"FileSpec: '  '", {}, {"File Spec is blank!"}, "failure", {}},
      {"FileSpec: f, TouchDate: false, TouchTime: false", {"f"},
       {" Touch Date and TouchTime are not set, nothing to do"}, "failure", {"f=" + Old}},
      // Dates a file date cannot hold fail and change nothing.
      {"FileSpec: f, DateTime: 1975-06-01T12:00:00", {"f"}, {"Error touching File : f", "Processed : 0 File(s)"},
       "failure", {"f=" + Old}},
      {"FileSpec: f, DateTime: 2110-01-01T00:00:00", {"f"}, {"Error touching File : f", "Processed : 0 File(s)"},
       "failure", {"f=" + Old}},
      {"FileSpec: f, DateTimeAsString: 12/24/2023 18:30:00", {"f"}, {"Processed : 1 File(s)"}, "success",
       {"f=2023-12-24 18:30:00"}},
      {"FileSpec: f, DateTimeAsString: ' 3/5/2024 17:08 '", {"f"}, {"Processed : 1 File(s)"}, "success",
       {"f=2024-03-05 17:08:00"}},
      {"FileSpec: f, DateTimeAsString: 02/29/2024", {"f"}, {"Processed : 1 File(s)"}, "success",
       {"f=2024-02-29 00:00:00"}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Settings);
    TempDir D;
    MakeTree(D.Path(), C.Files);
    for (const std::string& F : C.Files)
      if (!F.ends_with("/")) SetStamp(D / F.substr(0, F.find(" [")), Old);
    const bool OwnDate = C.Settings.find("DateTime") != std::string::npos;
    const ZtResult R = RunZt(D.Path(), "actions:\n  - {" + Touch + (OwnDate ? "" : When) + C.Settings + "}\n",
                             {"--var", "D=d"});
    EXPECT_EQ(Said(R, "1"), C.Log) << R.Stderr;
    EXPECT_EQ(ActionResult(R, "1"), C.Result);
    for (const std::string& S : C.Stamps)
      EXPECT_EQ(S.substr(0, S.find('=') + 1) + Stamp(D / S.substr(0, S.find('='))), S);
  }
}

TEST(FileActionsE2E, TouchDateTextsAreReadInOneFormatAndShownInIt) {
  TempDir D;
  for (const char* Bad :
       {"yesterday", "13/01/2024", "02/30/2023", "1/1/24", "01/01/2024 25:00", "01/01/2024x"}) {
    ZtResult R = RunZt(
        D.Path(),
        "actions:\n  - {action: Touch File(s), FileSpec: f, DateTimeAsString: '" + std::string(Bad) + "'}\n",
        {}, "validate");
    EXPECT_EQ(R.ExitCode, 2) << Bad;
    EXPECT_NE(R.Stderr.find("'" + std::string(Bad) + "' is not a valid date and time"), std::string::npos)
        << R.Stderr;
  }
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Touch File(s), FileSpec: none, DateTime: 2024-03-05T07:08:09, UseNow: true,
     scripts: {BeforeAction: 'Log(Action.DateTimeAsString)', AfterAction: 'Log(Action.DateTime)'}}
  - {action: Touch File(s), FileSpec: none, DateTime: 2024-12-31T00:00:00,
     scripts: {BeforeAction: 'Log(Action.DateTimeAsString)'}}
)");
  const Lines First = Messages(R, "1");
  ASSERT_EQ(First.size(), 2u) << R.Stderr;
  EXPECT_EQ(First[0], "03/05/2024 07:08:09");
  EXPECT_NE(First[1].substr(0, 4), "2024");  // UseNow took the clock instead
  EXPECT_EQ(Messages(R, "2"), Lines{"12/31/2024"});
}

// Every file action's settings checks, and what `describe` shows of each.
TEST(FileActionsE2E, ValidateAndDescribeNameWhatIsMissing) {
  TempDir D;
  const std::string Project = R"(actions:
  - action: Copy File(s)
  - {action: Move File(s), FileSpec: a.txt}
  - {action: Delete File(s), title: Clean output}
  - action: Delete Directory
  - {action: Move Directory, FileOrDirectory: "%OUT%"}
  - {action: Rename File or Directory, NewName: b}
  - action: Create Directory
  - action: Check if File Exists
  - {action: Check if File Exists, UseFileSpec: false}
  - {action: Check if File Exists, UseFileSpec: false, FileSet: Sources}
  - action: Set File Attributes
  - action: Touch File(s)
  - action: Concatenate Files
  - action: Get File Size
  - {action: File Compare, FileName: a}
  - action: FileSet Copy/Move
  - {action: Robocopy, Threads: 200}
  - action: Run Robocopy Job
  - action: XCopy
  - action: Calculate File CRC32
  - action: Calculate File MD5
  - action: Extract Version Info
)";
  ZtResult R = RunZt(D.Path(), Project, {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(
      R.Stdout,
      "1 Copy File(s): File Spec: The file spec has not been set\n"
      "1 Copy File(s): Target: The target file/directory has not been set\n"
      "2 Move File(s): Target: The target file/directory has not been set\n"
      "3 Clean output: File Spec: The file spec has not been set\n"
      "4 Delete Directory: Directory: The directory to delete has not been set\n"
      "5 Move Directory: Destination: The destination has not been set\n"
      "6 Rename File or Directory: File or Directory: The file or directory to rename has not been set\n"
      "7 Create Directory: Directory: The directory to create has not been set\n"
      "8 Check if File Exists: File Spec: A File Spec must be provided\n"
      "9 Check if File Exists: File Set: A File Set must be provided\n"
      "11 Set File Attributes: File Spec: The file spec has not been set\n"
      "12 Touch File(s): File Spec: File spec has not been set\n"
      "13 Concatenate Files: Source Files: No source files have been set\n"
      "13 Concatenate Files: Target File: The target file has not been set\n"
      "14 Get File Size: File Name: Filename has not been set\n"
      "15 File Compare: Compare to File: The file to compare to has not been set\n"
      "16 FileSet Copy/Move: File Set: A File Set must be provided\n"
      "16 FileSet Copy/Move: Destination Directory: The target directory has not been set\n"
      "17 Robocopy: Source Directory: A source must be specified\n"
      "17 Robocopy: Destination Directory: A destination must be specified\n"
      "17 Robocopy: Threads: Threads must be between 0 and 128\n"
      "18 Run Robocopy Job: Job File: A job file must be specified\n"
      "19 XCopy: Source: A source must be specified\n"
      "19 XCopy: Destination: A destination must be specified\n"
      "20 Calculate File CRC32: File Name: Filename has not been set\n"
      "21 Calculate File MD5: File Name: Filename has not been set\n"
      "22 Extract Version Info: File Name: Filename has not been set\n"
      "22 Extract Version Info: Version Variable: No variable has been set\n");
  R = RunZt(D.Path(), "", {}, "describe");
  EXPECT_EQ(R.Stdout,
            "Copy File(s) [  ]\nMove File(s) [ a.txt ]\nClean output [  ]\nDelete Directory [  ]\n"
            "Move Directory [ %OUT% ->  ]\nRename [  -> b ]\nCreate Directory [  ]\nCheck if [  ] Exists\n"
            "Check if Files in [  ] Exist\nCheck if Files in [ Sources ] Exist\nSet File Attributes [  ]\n"
            "Touch File(s) [  ]\nConcatenate Files [  ]\nGet File Size [  ]\nFile Compare [ a =  ]\n"
            "FileSet Copy/Move [  ->  ]\nRobocopy [  ->  ]\nRun Robocopy Job [  ]\nXCopy [  ->  ]\n"
            "Calculate File CRC32\nCalculate File MD5\nExtract Version Info [  ]\n");
}

}  // namespace
}  // namespace zt::testing
