// "Calculate File MD5" run against an in-memory host.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "support/ActionTesting.h"
#include "PlainChecksums.h"
#include "checksums/Ztfilemd5action.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"

namespace zt::package {
namespace {

using Lines = std::vector<std::string>;
using testing::PlainMD5Hex;

const std::string EmptyDigest = "D41D8CD98F00B204E9800998ECF8427E";

class MD5ActionTest : public ::testing::Test {
 protected:
  MD5ActionTest() { Action.SetHost(&Host); }
  std::string Write(const std::string& Name, const std::string& Contents) {
    const std::string Path = Dir / Name;
    testing::WriteFile(Path, Contents);
    return Path;
  }
  testing::TempDir Dir;
  testing::FakeHost Host;
  TZTFileMD5Action Action;
};

TEST_F(MD5ActionTest, LogsTheDigestAndStoresItInTheVariable) {
  Host.Variables["DIR"] = Dir.Path();
  Write("abc.txt", "abc");
  Action.SetFileName("%DIR%/abc.txt");
  Action.SetZTVariable("Digest");
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages, Lines{"MD5 for abc.txt is 900150983CD24FB0D6963F7D28E17F72"});
  EXPECT_EQ(Host.Variables["Digest"], frame::TZTVariant("900150983CD24FB0D6963F7D28E17F72"));
}

TEST_F(MD5ActionTest, EmptyFileGivesTheDigestOfTheEmptyMessage) {
  Action.SetFileName(Write("empty", ""));
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages, Lines{"MD5 for empty is " + EmptyDigest});
}

TEST_F(MD5ActionTest, MissingFileAndFailedExpansionFail) {
  Action.SetFileName(Dir / "missing.txt");
  Action.SetZTVariable("Digest");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages, Lines{"ERROR - File missing: " + (Dir / "missing.txt")});
  Host.Messages.clear();
  Action.SetFileName("%NOPE%");
  EXPECT_FALSE(Action.Execute());
  EXPECT_TRUE(Host.Messages.empty());
  EXPECT_EQ(Host.HostLines, Lines{"FileName: Variable \"NOPE\" is not defined"});
  EXPECT_TRUE(Host.Variables.count("Digest") == 0);
}

TEST_F(MD5ActionTest, SecondFileIsComparedIgnoringCase) {
  Action.SetFileName(Write("a.txt", "same"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Write("b.txt", "same"));
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"MD5 for a.txt is " + PlainMD5Hex("same"), "MD5 matches file: b.txt"}));
}

TEST_F(MD5ActionTest, DifferentSecondFileFails) {
  Action.SetFileName(Write("a.txt", "one"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Write("b.txt", "two"));
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages,
            (Lines{"MD5 for a.txt is " + PlainMD5Hex("one"), "MD5 don't match", "File 2 MD5: " + PlainMD5Hex("two")}));
}

TEST_F(MD5ActionTest, MissingSecondFileFails) {
  Action.SetFileName(Write("a.txt", "one"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Dir / "b.txt");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages.back(), "ERROR - File missing: " + (Dir / "b.txt"));
}

TEST_F(MD5ActionTest, ExpectedValueMatchesInAnyLetterCase) {
  Action.SetFileName(Write("abc.txt", "abc"));
  Action.SetFailIfDiffToMD5(true);
  for (const std::string Expected : {"900150983CD24FB0D6963F7D28E17F72", "900150983cd24fb0d6963f7d28e17f72"}) {
    Host.Messages.clear();
    Action.SetCompareToMD5(Expected);
    EXPECT_TRUE(Action.Execute()) << Expected;
    EXPECT_EQ(Host.Messages.back(), "MD5 matches.");
  }
}

TEST_F(MD5ActionTest, DifferentExpectedValueFails) {
  Action.SetFileName(Write("abc.txt", "abc"));
  Action.SetFailIfDiffToMD5(true);
  Action.SetCompareToMD5(EmptyDigest);
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"MD5 for abc.txt is 900150983CD24FB0D6963F7D28E17F72", "MD5 don't match",
                                  "Compare to MD5: " + EmptyDigest}));
}

TEST_F(MD5ActionTest, FileComparisonRunsBeforeValueComparison) {
  Action.SetFileName(Write("a.txt", "x"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Write("b.txt", "x"));
  Action.SetFailIfDiffToMD5(true);
  Action.SetCompareToMD5(PlainMD5Hex("x"));
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages,
            (Lines{"MD5 for a.txt is " + PlainMD5Hex("x"), "MD5 matches file: b.txt", "MD5 matches."}));
}

// A child process keeps the file open for writing until released.
class WriterProcess {
 public:
  explicit WriterProcess(const std::string& Path) {
    if (pipe(Ready_) != 0 || pipe(Release_) != 0) return;
    Pid_ = fork();
    if (Pid_ == 0) {
      const int Fd = open(Path.c_str(), O_WRONLY);
      char C = Fd >= 0 ? 'y' : 'n';
      if (write(Ready_[1], &C, 1) != 1) _exit(2);
      if (read(Release_[0], &C, 1) < 0) _exit(3);
      _exit(0);
    }
    char C = 0;
    Opened_ = Pid_ > 0 && read(Ready_[0], &C, 1) == 1 && C == 'y';
  }
  ~WriterProcess() {
    if (Pid_ > 0) {
      if (write(Release_[1], "x", 1) != 1) kill(Pid_, SIGKILL);
      int Status = 0;
      waitpid(Pid_, &Status, 0);
    }
    for (int Fd : {Ready_[0], Ready_[1], Release_[0], Release_[1]}) close(Fd);
  }
  bool Opened() const { return Opened_; }

 private:
  int Ready_[2] = {-1, -1}, Release_[2] = {-1, -1};
  pid_t Pid_ = -1;
  bool Opened_ = false;
};

TEST_F(MD5ActionTest, FileOpenForWritingElsewhereCannotBeHashed) {
  const std::string Path = Write("busy.log", "in use");
  Action.SetFileName(Path);
  {
    WriterProcess Writer(Path);
    ASSERT_TRUE(Writer.Opened());
    EXPECT_FALSE(Action.Execute());
  }
  EXPECT_EQ(Host.Messages, Lines{"Hash of file " + Path + " failed"});
}

TEST_F(MD5ActionTest, SecondFileOpenForWritingElsewhereCannotBeHashed) {
  const std::string Busy = Write("busy.log", "in use");
  Action.SetFileName(Write("a.txt", "in use"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Busy);
  WriterProcess Writer(Busy);
  ASSERT_TRUE(Writer.Opened());
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"MD5 for a.txt is " + PlainMD5Hex("in use"), "Hash of file " + Busy + " failed"}));
}

// A host whose variable store fails: the action reports the exception in two
// lines and fails.
class FailingVariablesHost : public testing::FakeHost {
 public:
  void SetVariable(const std::string&, const frame::TZTVariant&) override {
    throw std::runtime_error("variable store is read-only");
  }
};

TEST_F(MD5ActionTest, ExceptionDuringTheRunIsReportedInTwoLines) {
  FailingVariablesHost Failing;
  Action.SetHost(&Failing);
  Action.SetFileName(Write("abc.txt", "abc"));
  Action.SetZTVariable("Digest");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Failing.Messages, (Lines{"MD5 for abc.txt is 900150983CD24FB0D6963F7D28E17F72", "Couldn't compute MD5:",
                                     "variable store is read-only"}));
}

TEST_F(MD5ActionTest, ValidationRequiresAFileName) {
  testing::ValidationErrors Errors;
  EXPECT_FALSE(Action.Validate(Errors));
  EXPECT_EQ(Errors.Errors, (std::vector<std::string>{"File Name: Filename has not been set"}));
  Action.SetFileName("x");
  testing::ValidationErrors None;
  EXPECT_TRUE(Action.Validate(None));
}

TEST_F(MD5ActionTest, PublishesItsPropertiesInOrderWithEmptyDefaults) {
  Lines Names;
  for (const auto& P : TZTFileMD5Action::ClassType().Properties())
    Names.push_back(P.Name + ":" + P.TypeName + "=" + P.Get(Action).AsString());
  EXPECT_EQ(Names, (Lines{"FileName:string=", "ZTVariable:string=", "FailIfDiffToFile:Boolean=False",
                          "CompareToFile:string=", "FailIfDiffToMD5:Boolean=False", "CompareToMD5:string="}));
  EXPECT_EQ(TZTFileMD5Action::GetActionName(), "Calculate File MD5");
  EXPECT_EQ(Action.GetHelpTopicID(), 3300);
  EXPECT_EQ(Action.GetQuickHelpFilename(), "Plugins\\FileMD5.html");
}

}  // namespace
}  // namespace zt::package
