// Create Directory, Touch File(s), Set File Attributes and Check if File
// Exists through zt: the log a user reads, the files afterwards, the
// variables and the exit code.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

void WriteFile(const std::string& Path) { std::ofstream(Path) << "x"; }

// Local modification time as "YYYY-MM-DD HH:MM:SS".
std::string LocalStamp(const std::string& Path) {
  struct stat St;
  if (stat(Path.c_str(), &St) != 0) return "missing";
  char Buf[32];
  std::strftime(Buf, sizeof Buf, "%Y-%m-%d %H:%M:%S", std::localtime(&St.st_mtime));
  return Buf;
}

bool Writable(const std::string& Path) {
  return (fs::status(Path).permissions() & fs::perms::owner_write) != fs::perms::none;
}

TEST(FileActionsE2E, PreparesAFolderStampsAndProtectsItsFiles) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(
name: Stage
variables:
  OUT: out/bin
actions:
  - action: Create Directory
    FileOrDirectory: "%OUT%"
    Force: true
  - action: Check if File Exists
    FileOrDirectory: "%OUT%/"
    Variable: HaveOut
  - action: Touch File(s)
    FileSpec: "%OUT%/*.dll"
    DateTime: 2022-02-03T04:05:07
  - action: Set File Attributes
    FileSpec: "%OUT%/*.dll"
    ReadOnly: asSet
    LogAllFiles: true
)");
  // The folder did not exist before the run; the project created no files in it.
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_TRUE(fs::is_directory(D / "out/bin"));
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Created directory : out/bin"}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"Found a match for the directory"}));
  EXPECT_EQ(StatusDetails(R, "3"), (Lines{"Processed : 0 File(s)"}));
  EXPECT_EQ(Messages(R, "4"), (Lines{"File spec : out/bin/*.dll", "No files were found matching the file spec."}));
  EXPECT_EQ(ActionResult(R, "4"), "success");
  EXPECT_EQ(R.Events[R.Events.size() - 2]["values"]["HaveOut"], true);
}

TEST(FileActionsE2E, TouchesAndSetsAttributesOnExistingFiles) {
  TempDir D;
  fs::create_directories(D / "bin/sub");
  WriteFile(D / "bin/app.dll");
  WriteFile(D / "bin/sub/lib.dll");
  ZtResult R = RunZt(D.Path(), R"(
actions:
  - action: Touch File(s)
    FileSpec: bin/*.dll
    Recurse: true
    DateTime: 2022-02-03T04:05:07
  - action: Set File Attributes
    FileSpec: bin/*.dll
    Recurse: true
    ReadOnly: asSet
    LogAllFiles: true
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Processed : 2 File(s)"}));
  EXPECT_EQ(LocalStamp(D / "bin/app.dll"), "2022-02-03 04:05:06");
  EXPECT_EQ(LocalStamp(D / "bin/sub/lib.dll"), "2022-02-03 04:05:06");
  EXPECT_EQ(StatusDetails(R, "2"),
            (Lines{"Processed File : bin/app.dll", "Processed File : bin/sub/lib.dll"}));
  EXPECT_FALSE(Writable(D / "bin/app.dll"));
  EXPECT_FALSE(Writable(D / "bin/sub/lib.dll"));
}

TEST(FileActionsE2E, TouchWithADateAFileDateCannotHoldFailsAndChangesNothing) {
  TempDir D;
  WriteFile(D / "a.txt");
  const std::string Before = LocalStamp(D / "a.txt");
  for (const char* Date : {"1975-06-01T12:00:00", "2110-01-01T00:00:00"}) {
    ZtResult R = RunZt(D.Path(), std::string("actions:\n  - action: Touch File(s)\n    FileSpec: ./a.txt\n"
                                             "    DateTime: ") +
                                     Date + "\n");
    EXPECT_EQ(R.ExitCode, 1) << Date;
    EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Error touching File : ./a.txt", "Processed : 0 File(s)"}))
        << Date;
    EXPECT_EQ(LocalStamp(D / "a.txt"), Before) << Date;
  }
}

TEST(FileActionsE2E, LegacyFailIfExistsFailsTheBuildWhenTheFileIsThere) {
  TempDir D;
  WriteFile(D / "build.lock");
  ZtResult R = RunZt(D.Path(), R"(
actions:
  - action: TFileExistsAction
    FileOrDirectory: build.lock
    FailIfExists: true
    Variable: Locked
  - action: Create Directory
    FileOrDirectory: never
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Found a match for the File Spec"}));
  EXPECT_EQ(ActionResult(R, "1"), "failure");
  EXPECT_EQ(ActionResult(R, "2"), "");
  EXPECT_FALSE(fs::exists(D / "never"));
  EXPECT_EQ(R.Events[R.Events.size() - 2]["values"]["Locked"], true);
}

TEST(FileActionsE2E, CreateDirectoryWithoutForceFailsOnAMissingParent) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), "actions:\n  - action: Create Directory\n    FileOrDirectory: a/b\n");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Unable to Create directory : a/b"}));
  EXPECT_FALSE(fs::exists(D / "a"));
}

TEST(FileActionsE2E, DateTimeAsStringInTheProjectSetsTheStamp) {
  TempDir D;
  WriteFile(D / "f.txt");
  ZtResult R = RunZt(D.Path(), R"(
actions:
  - action: Touch File(s)
    FileSpec: f.txt
    DateTimeAsString: 12/24/2023 18:30:00
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(LocalStamp(D / "f.txt"), "2023-12-24 18:30:00");
}

TEST(FileActionsE2E, UnreadableDateTimeTextIsALoadError) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(
actions:
  - action: Touch File(s)
    FileSpec: f.txt
    DateTimeAsString: tomorrow
)");
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_NE(R.Stderr.find("'tomorrow' is not a valid date and time"), std::string::npos) << R.Stderr;
}

}  // namespace
}  // namespace zt::testing
