// "XCopy" through zt: the switches its properties give, the copy the
// built-in xcopy makes of them (there is no xcopy on this platform), and the
// exclusion list's temporary file, which is gone after every run.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

TEST(XCopyEndToEnd, PropertiesBecomeSwitchesInAFixedOrder) {
  const struct {
    std::string Properties, Switches;  // Switches: after "src 'out dir' /Y /I"
  } Cases[] = {
      // clang-format off
      {"XCopyMode: mdRecursive, CopyEmptyDirectories: true", " /S /E"},
      {"XCopyMode: mdNormal, CopyEmptyDirectories: true", ""},
      {"XCopyMode: mdTest, CopyEmptyDirectories: true", " /L"},
      {"XCopyMode: mdDirStructure, CopyEmptyDirectories: true, XCopyLogMode: logQuiet", " /Q /T /E"},
      {"XCopyLogMode: logVerbose", " /F"},
      {"OnlyArchiveFiles: true", " /A"},
      {"OnlyArchiveFiles: true, TurnOffArchiveBit: true", " /M"},
      {"TurnOffArchiveBit: true", ""},
      {"CopyOwnershipAndACL: true, CopyEncryptedIfNotSupportedInDest: true, CopyFileAuditSettings: true, "
       "CopyUsingShortNames: true, CopyFilesChnagedAfter: true, ChangedAfterDate: 2024-03-05T10:15:00, "
       "CopyNewerFiles: true, IgnoreErrors: true, Verify: true, CopyNetworkedFiles: true, "
       "OnlyFilesThatAlreadyExist: true, CopyAttributes: true, OverwriteReadOnly: true, CopyHiddenAndSys: true",
       " /H /R /K /U /Z /V /C /D /D:3-5-2024 /N /X /G /O"},
      // clang-format on
  };
  std::string Yaml = "actions:\n";
  for (const auto& C : Cases)
    Yaml +=
        "  - {action: XCopy, Source: src, Destination: out dir, ignoreFailure: true, " + C.Properties + "}\n";
  TempDir D;
  MakeTree(D.Path(), {"src/"});
  ZtResult R = RunZt(D.Path(), Yaml);
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    const Lines M = Messages(R, std::to_string(I + 1));
    ASSERT_FALSE(M.empty());
    EXPECT_EQ(M[0], "Calling xcopy using command line: src 'out dir' /Y /I" + Cases[I].Switches)
        << Cases[I].Properties;
  }
}

TEST(XCopyEndToEnd, TheExclusionListFileIsGoneAfterTheRunAndAnExitCodeFails) {
  TempDir D, Tmp;
  MakeTree(D.Path(), {"src/a.obj=a", "src/b.log=b", "ro/a.obj=ro [ro]"});
  setenv("TMPDIR", Tmp.Path().c_str(), 1);
  ZtResult R = RunZt(D.Path(), R"(variables:
  EXT: .log
actions:
  - {action: XCopy, Source: src, Destination: out, ExcludeFiles: ["*.obj", "", "%EXT%"],
     ignoreFailure: true}
  - {action: XCopy, Source: src, Destination: out, ExcludeFiles: ["", ""], ignoreFailure: true}
  - {action: XCopy, Source: src, Destination: ro, ignoreFailure: true}
  - {action: XCopy, Source: src, Destination: out, ExcludeFiles: [".tmp", "%NOPE%"]}
)");
  unsetenv("TMPDIR");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  const Lines First = Messages(R, "1");
  ASSERT_EQ(First.size(), 4u);
  EXPECT_EQ(First[0],
            "Warning: Excluded file list contains wildcard characters. XCopy exclude list does not "
            "support wildcards, substring matching only.");
  const std::string Head = "Calling xcopy using command line: src out /Y /I /EXCLUDE:" + Tmp.Path() + "/zt-";
  EXPECT_EQ(First[1].substr(0, Head.size()), Head);
  EXPECT_EQ(First[1].substr(First[1].size() - 4), ".xcp");
  EXPECT_EQ(First[2], "src/a.obj");  // the list's lines are substrings: "*.obj" matches nothing, ".log" b.log
  EXPECT_EQ(First[3], "1 File(s) copied");
  EXPECT_EQ(Messages(R, "2"), (Lines{"Calling xcopy using command line: src out /Y /I", "src/a.obj",
                                     "src/b.log", "2 File(s) copied"}));
  // An exit code other than 0 fails the action.
  EXPECT_EQ(Messages(R, "3"),
            (Lines{"Calling xcopy using command line: src ro /Y /I", "src/a.obj", "Access is denied",
                   "0 File(s) copied", "The program ended with exit code 5"}));
  EXPECT_EQ(ActionResult(R, "3"), "ignored");
  EXPECT_EQ(Tree(D / "ro"), Lines{"a.obj=ro [ro]"});
  EXPECT_EQ(Messages(R, "4"), (Lines{"Cannot expand Excluded file 1: variable \"NOPE\" is not defined"}));
  EXPECT_TRUE(fs::is_empty(Tmp.Path()));
}

// The built-in xcopy through `zt xcopy`: what each switch selects and
// writes, the lines it prints and its exit codes, including the refusals
// (missing source, cyclic copy, unknown switch) that change nothing.
TEST(XCopyTool, SwitchesSelectWriteAndReportAsXCopyDoes) {
  const struct {
    Lines Args, Before;  // Before: files made after src/, so newer than its files
    std::string Output;
    int ExitCode;
    Lines Out;  // Tree() of out/ afterwards
  } Cases[] = {
      // clang-format off
      {{"src", "out", "/I"}, {}, "src/a.txt\nsrc/b.log\n2 File(s) copied\n", 0, {"a.txt=a [0x20]", "b.log=bb [0x20]"}},
      {{"src", "out", "/E", "/Y"}, {}, "src/a.txt\nsrc/b.log\nsrc/sub/c.txt\nsrc/sub/deep/d.txt\n4 File(s) copied\n", 0,
       {"a.txt=a [0x20]", "b.log=bb [0x20]", "empty/", "sub/c.txt=c [0x20]", "sub/deep/d.txt=d [0x20]"}},
      {{"src", "out", "/S", "/H", "/Q", "/EXCLUDE:excl.lst"}, {"excl.lst=\\SUB\\\r\n.LOG\r\n"}, "2 File(s) copied\n", 0,
       {".hidden=h [0x20]", "a.txt=a [0x20]"}},
      {{"src/*.txt", "out", "/F", "/L"}, {}, "src/a.txt -> out/a.txt\n1 File(s)\n", 0, {}},
      {{"src", "out", "/T", "/E"}, {}, "0 File(s) copied\n", 0, {"empty/", "sub/deep/"}},
      {{"src", "out", "/D"}, {"out/a.txt=newer"}, "src/b.log\n1 File(s) copied\n", 0,
       {"a.txt=newer", "b.log=bb [0x20]"}},
      {{"src", "out", "/U"}, {"out/a.txt=newer"}, "src/a.txt\n1 File(s) copied\n", 0, {"a.txt=a [0x20]"}},
      {{"src", "out"}, {"out/a.txt=kept [ro]"}, "src/a.txt\nAccess is denied\n0 File(s) copied\n", 5,
       {"a.txt=kept [ro]"}},
      {{"src", "out", "/C"}, {"out/a.txt=kept [ro]"}, "src/a.txt\nAccess is denied\nsrc/b.log\n1 File(s) copied\n", 0,
       {"a.txt=kept [ro]", "b.log=bb [0x20]"}},
      {{"src", "out", "/R"}, {"out/a.txt=kept [ro]"}, "src/a.txt\nsrc/b.log\n2 File(s) copied\n", 0,
       {"a.txt=a [0x20]", "b.log=bb [0x20]"}},
      // Copies lose read-only unless kept.
      {{"src", "out", "/Q"}, {"src/ro.txt=ro [ro]"}, "3 File(s) copied\n", 0,
       {"a.txt=a [0x20]", "b.log=bb [0x20]", "ro.txt=ro [0x20]"}},
      {{"src", "out", "/Q", "/K"}, {"src/ro.txt=ro [ro]"}, "3 File(s) copied\n", 0,
       {"a.txt=a [0x20]", "b.log=bb [0x20]", "ro.txt=ro [ro] [0x20]"}},
      {{"src/*.zz", "out"}, {}, "File not found - *.zz\n0 File(s) copied\n", 1, {}},
      {{"nope", "out"}, {}, "File not found - nope\n0 File(s) copied\n", 4, {}},
      {{"src", "src/sub/out", "/S"}, {}, "Cannot perform a cyclic copy\n0 File(s) copied\n", 4, {}},
      {{"src", "out", "/P"}, {}, "Invalid switch - /P\n", 4, {}},
      // "@/" stands for the folder's absolute path: a '/'-word is a path until two are given.
      {{"@/src", "@/out", "/Q"}, {}, "2 File(s) copied\n", 0, {"a.txt=a [0x20]", "b.log=bb [0x20]"}},
      {{"src", "out", "/Q", "/home"}, {}, "Invalid switch - /home\n", 4, {}},
      // clang-format on
  };
  for (const auto& C : Cases) {
    SCOPED_TRACE(::testing::PrintToString(C.Args));
    TempDir D;
    MakeTree(D.Path(), {"src/a.txt=a", "src/b.log=bb", "src/.hidden=h", "src/sub/c.txt=c",
                        "src/sub/deep/d.txt=d", "src/empty/"});
    for (const auto& E : fs::recursive_directory_iterator(D / "src"))
      fs::last_write_time(E.path(), fs::file_time_type::clock::now() - std::chrono::seconds(1000));
    MakeTree(D.Path(), C.Before);
    Lines Args = C.Args;
    for (std::string& A : Args)
      if (A.starts_with("@/")) A = D.Path() + A.substr(1);
    Args.insert(Args.begin(), "xcopy");
    const ZtResult R = RunZtArgs(D.Path(), Args);
    EXPECT_EQ(R.ExitCode, C.ExitCode);
    EXPECT_EQ(R.Stdout, C.Output);
    EXPECT_EQ(Tree(D / "out"), C.Out);
    EXPECT_FALSE(fs::exists(D / "src/sub/out"));
  }
}

}  // namespace
}  // namespace zt::testing
