// Contract pieces of the frame that carry behaviour of their own: the loop
// counter of the iterator base, file-set look-up, the host string helpers.
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "frame/ZTFileSet.h"
#include "frame/ZTIterator.h"
#include "frame/ZTUtils.h"

namespace zt::testing {
namespace {

class ThreeItems : public frame::TZTBaseIterator {
 public:
  bool BeforeFirstIteration() override {
    SetIterationCount(3);
    return true;
  }
  frame::TZTVariant GetCurrentValue() override { return frame::TZTVariant(GetCurrentIteration() * 10); }
};

TEST(IteratorBase, CountsPassesUntilTheIterationCountAndResets) {
  ThreeItems It;
  It.SetZTVariable("I");
  EXPECT_EQ(It.GetZTVariable(), "I");
  ASSERT_TRUE(It.BeforeFirstIteration());
  std::string Values;
  while (!It.NoMoreIterations()) {
    It.NextIteration();
    Values += It.GetCurrentValue().AsString() + ",";
  }
  EXPECT_EQ(Values, "10,20,30,");
  EXPECT_EQ(It.GetCurrentIteration(), 3);
  It.Reset();
  EXPECT_EQ(It.GetCurrentIteration(), 0);
  EXPECT_FALSE(It.NoMoreIterations());
  EXPECT_TRUE(It.GetIsFlowControlAction());
}

struct OneFileSet : frame::IZTFileSet, frame::IZTProjectObject {
  void Refresh(frame::TZTAction&) override {}
  std::string GetFilesText(const std::string& Sep) override { return "a" + Sep; }
  int GetFileCount() override { return 1; }
  std::string GetFile(int) override { return "a"; }
  std::string GetBaseDir() override { return "/"; }
  std::string GetName() const override { return "Sources"; }
  std::string GetKind() const override { return frame::ZT_FILESET_OBJECT_KIND; }
  frame::IZTFileSet* AsFileSet() override { return this; }
};

struct Objects : frame::IZTProjectObjectAPI {
  OneFileSet Set;
  std::string LastKind;
  frame::IZTProjectObject* FindObject(const std::string& Name, const std::string& Kind) override {
    LastKind = Kind;
    return Name == "Sources" ? &Set : nullptr;
  }
};

TEST(FileSets, FoundByNameUnderTheFileSetKind) {
  Objects Api;
  EXPECT_EQ(frame::FindFileSet(&Api, "Sources"), &Api.Set);
  EXPECT_EQ(Api.LastKind, "FileSetObject");
  EXPECT_EQ(frame::FindFileSet(&Api, "Other"), nullptr);
  EXPECT_EQ(frame::FindFileSet(nullptr, "Sources"), nullptr);
}

TEST(HostStrings, TrimRemovesBlanksAndControlCharactersAtBothEnds) {
  EXPECT_EQ(frame::Trim(" \t a b \r\n"), "a b");
  EXPECT_EQ(frame::Trim("   "), "");
  EXPECT_EQ(frame::Trim(""), "");
}

TEST(HostStrings, StripQuotesRemovesOnePairOnly) {
  EXPECT_EQ(frame::StripQuotes("\"C:\\a b\\x.exe\""), "C:\\a b\\x.exe");
  EXPECT_EQ(frame::StripQuotes("\"\"x\"\""), "\"x\"");
  EXPECT_EQ(frame::StripQuotes("\"open"), "\"open");
  EXPECT_EQ(frame::StripQuotes("\""), "\"");
}

}  // namespace
}  // namespace zt::testing
