// "XCopy" through zt: the switches its properties give, the copy the
// built-in xcopy makes of them (there is no xcopy on this platform), and the
// exclusion list's temporary file, which is gone after every run.
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

struct SwitchCase {
  std::string Properties;  // YAML lines, each ending in "\n"
  std::string Switches;    // after "src 'out dir' /Y /I"
};

TEST(XCopyEndToEnd, PropertiesBecomeSwitchesInAFixedOrder) {
  const std::vector<SwitchCase> Cases = {
      {"", ""},
      {"XCopyMode: mdRecursive\n    CopyEmptyDirectories: true\n", " /S /E"},
      {"XCopyMode: mdNormal\n    CopyEmptyDirectories: true\n", ""},
      {"XCopyMode: mdTest\n    CopyEmptyDirectories: true\n", " /L"},
      {"XCopyMode: mdDirStructure\n    CopyEmptyDirectories: true\n    XCopyLogMode: logQuiet\n", " /Q /T /E"},
      {"XCopyLogMode: logVerbose\n", " /F"},
      {"OnlyArchiveFiles: true\n", " /A"},
      {"OnlyArchiveFiles: true\n    TurnOffArchiveBit: true\n", " /M"},
      {"TurnOffArchiveBit: true\n", ""},
      {"CopyOwnershipAndACL: true\n    CopyEncryptedIfNotSupportedInDest: true\n    CopyFileAuditSettings: true\n"
       "    CopyUsingShortNames: true\n    CopyFilesChnagedAfter: true\n    ChangedAfterDate: 2024-03-05T10:15:00\n"
       "    CopyNewerFiles: true\n    IgnoreErrors: true\n    Verify: true\n    CopyNetworkedFiles: true\n"
       "    OnlyFilesThatAlreadyExist: true\n    CopyAttributes: true\n    OverwriteReadOnly: true\n"
       "    CopyHiddenAndSys: true\n",
       " /H /R /K /U /Z /V /C /D /D:3-5-2024 /N /X /G /O"},
  };
  std::string Yaml = "actions:\n";
  for (const auto& C : Cases) {
    Yaml += "  - action: XCopy\n    Source: src\n    Destination: out dir\n    ignoreFailure: true\n";
    if (!C.Properties.empty()) Yaml += "    " + C.Properties;
  }
  TempDir D;
  std::filesystem::create_directory(D / "src");
  ZtResult R = RunZt(D.Path(), Yaml);
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  for (std::size_t I = 0; I < Cases.size(); ++I) {
    const std::string Id = std::to_string(I + 1);
    const Lines M = Messages(R, Id);
    ASSERT_FALSE(M.empty());
    EXPECT_EQ(M[0], "Calling xcopy using command line: src 'out dir' /Y /I" + Cases[I].Switches)
        << Cases[I].Properties;
  }
}

TEST(XCopyEndToEnd, TheExclusionListFileIsGoneAfterTheRun) {
  TempDir D, Tmp;
  std::filesystem::create_directory(D / "src");
  std::ofstream(D / "src/a.obj") << "a";
  std::ofstream(D / "src/b.log") << "b";
  setenv("TMPDIR", Tmp.Path().c_str(), 1);
  ZtResult R = RunZt(D.Path(), R"(variables:
  EXT: .log
actions:
  - {action: XCopy, Source: src, Destination: out, ExcludeFiles: ["*.obj", "", "%EXT%"],
     ignoreFailure: true}
  - {action: XCopy, Source: src, Destination: out, ExcludeFiles: ["", ""], ignoreFailure: true}
  - {action: XCopy, Source: src, Destination: out, ExcludeFiles: [".tmp", "%NOPE%"]}
)");
  unsetenv("TMPDIR");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  const Lines First = Messages(R, "1");
  ASSERT_EQ(First.size(), 4u);
  EXPECT_EQ(First[0], "Warning: Excluded file list contains wildcard characters. XCopy exclude list does not "
                      "support wildcards, substring matching only.");
  const std::string Head = "Calling xcopy using command line: src out /Y /I /EXCLUDE:" + Tmp.Path() + "/zt-";
  EXPECT_EQ(First[1].substr(0, Head.size()), Head);
  EXPECT_EQ(First[1].substr(First[1].size() - 4), ".xcp");
  EXPECT_EQ(First[2], "src/a.obj");  // the list's lines are substrings: "*.obj" matches nothing, ".log" b.log
  EXPECT_EQ(First[3], "1 File(s) copied");
  EXPECT_EQ(Messages(R, "2"), (Lines{"Calling xcopy using command line: src out /Y /I", "src/a.obj", "src/b.log",
                                     "2 File(s) copied"}));
  EXPECT_EQ(Messages(R, "3"), (Lines{"Cannot expand Excluded file 1: variable \"NOPE\" is not defined"}));
  EXPECT_TRUE(std::filesystem::is_empty(Tmp.Path()));
}

TEST(XCopyEndToEnd, TheBuiltInXCopyCopiesWhatThePropertiesSay) {
  TempDir D;
  for (const char* F : {"src/a.txt", "src/sub/c.txt", "src/sub/deep/d.txt", "ro/a.txt"}) {
    std::filesystem::create_directories(std::filesystem::path(D / F).parent_path());
    std::ofstream(D / F) << F;
  }
  chmod((D / "ro/a.txt").c_str(), 0444);
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: XCopy, Source: src, Destination: tree, XCopyMode: mdRecursive, XCopyLogMode: logVerbose,
     ExcludeFiles: ["\\deep\\"]}
  - {action: XCopy, Source: src, Destination: ro, ignoreFailure: true}
  - {action: XCopy, Source: src, Destination: ro, OverwriteReadOnly: true, XCopyLogMode: logQuiet}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  const Lines First = Messages(R, "1");
  ASSERT_EQ(First.size(), 4u);
  EXPECT_EQ(Lines(First.begin() + 1, First.end()),
            (Lines{"src/a.txt -> tree/a.txt", "src/sub/c.txt -> tree/sub/c.txt", "2 File(s) copied"}));
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_FALSE(std::filesystem::exists(D / "tree/sub/deep"));
  EXPECT_EQ(Messages(R, "2"), (Lines{"Calling xcopy using command line: src ro /Y /I", "src/a.txt",
                                     "Access is denied", "0 File(s) copied", "The program ended with exit code 5"}));
  EXPECT_EQ(ActionResult(R, "2"), "ignored");
  EXPECT_EQ(Messages(R, "3"), (Lines{"Calling xcopy using command line: src ro /Y /I /Q /R", "1 File(s) copied"}));
  std::ifstream In(D / "ro/a.txt");
  std::string Text((std::istreambuf_iterator<char>(In)), std::istreambuf_iterator<char>());
  EXPECT_EQ(Text, "src/a.txt");
}

TEST(XCopyEndToEnd, ValidateReportsSourceAndDestinationTogether) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), "actions:\n  - action: XCopy\n", {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stdout,
            "1 XCopy: Source: A source must be specified\n"
            "1 XCopy: Destination: A destination must be specified\n");
}

}  // namespace
}  // namespace zt::testing
