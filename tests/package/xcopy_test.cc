// What xcopy reads from the XCopy action's exclusion file: the expanded,
// non-empty lines, each ended by CR LF. (The switches and the file's removal
// are checked through zt.)
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/FakeHost.h"
#include "system/Ztxcopyaction.h"

namespace zt::package {
namespace {

struct RecordedArgument : frame::IArgument {
  std::string Name, Value;
  int Kind = 0;
  std::string GetName() const override { return Name; }
  std::string GetValue() const override { return Value; }
  int GetKind() const override { return Kind; }
};

struct RecordingBuilder : frame::ICommandLineBuilder {
  std::vector<std::shared_ptr<RecordedArgument>> Arguments;
  frame::IArgumentPtr AddArgument(const std::string& Name, const std::string& Value, int Kind) override {
    auto A = std::make_shared<RecordedArgument>();
    A->Name = Name, A->Value = Value, A->Kind = Kind;
    Arguments.push_back(A);
    return A;
  }
  std::string GetCommandLineText() const override { return "text"; }
};

TEST(XCopyActionTest, TheExclusionFileHoldsTheExpandedLines) {
  testing::FakeHost Host;
  Host.Variables["EXT"] = ".log";
  TZTXCopyAction A;
  A.SetHost(&Host);
  A.SetSource("src");
  A.SetDestination("out");
  A.SetExcludeFilesText("\\obj\\\r\n\r\n%EXT%\r\n");
  RecordingBuilder B;
  ASSERT_TRUE(A.GetCommandLine(B));
  const std::string Name = A.GetExclusionFileName();
  std::ifstream In(Name, std::ios::binary);
  EXPECT_EQ(std::string((std::istreambuf_iterator<char>(In)), {}), "\\obj\\\r\n.log\r\n");
  ASSERT_EQ(B.Arguments.size(), 5u);
  EXPECT_EQ(B.Arguments[4]->Name, "/EXCLUDE:");
  EXPECT_EQ(B.Arguments[4]->Value, Name);
  EXPECT_EQ(B.Arguments[4]->Kind, frame::akSwitchValue);
  std::remove(Name.c_str());
}

}  // namespace
}  // namespace zt::package
