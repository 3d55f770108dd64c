#include "platform/paths.h"

#include <gtest/gtest.h>

namespace zt::platform {
namespace {

TEST(Paths, SplitsLikeDelphi) {
  EXPECT_EQ(ExtractFilePath("/src/app/main.cpp"), "/src/app/");
  EXPECT_EQ(ExtractFileDir("/src/app/main.cpp"), "/src/app");
  EXPECT_EQ(ExtractFileName("/src/app/main.cpp"), "main.cpp");
  EXPECT_EQ(ExtractFileExt("/src/app/main.cpp"), ".cpp");
  EXPECT_EQ(ExtractFilePath("main.cpp"), "");
  EXPECT_EQ(ExtractFileDir("/main.cpp"), "/");
  EXPECT_EQ(ExtractFileExt("/src/v1.2/Makefile"), "");
  EXPECT_EQ(ExtractFileExt("archive.tar.gz"), ".gz");
}

TEST(Paths, ChangesAndTrimsDelimitersAndExtensions) {
  EXPECT_EQ(ChangeFileExt("/a.b/c.txt", ".bak"), "/a.b/c.bak");
  EXPECT_EQ(ChangeFileExt("/a.b/c", ".bak"), "/a.b/c.bak");
  EXPECT_EQ(IncludeTrailingPathDelimiter("/out"), "/out/");
  EXPECT_EQ(IncludeTrailingPathDelimiter("/out/"), "/out/");
  EXPECT_EQ(ExcludeTrailingPathDelimiter("/out/"), "/out");
  EXPECT_EQ(ExcludeTrailingPathDelimiter("/out"), "/out");
}

TEST(Paths, BackslashIsTheDelimiterOnlyAfterNormalizing) {
  EXPECT_EQ(PathDelim(), '/');
  EXPECT_FALSE(IsPathDelimiter('\\'));
  EXPECT_EQ(ExtractFileName("out\\a.txt"), "out\\a.txt");
  EXPECT_EQ(NormalizeDelimiters("out\\sub\\a.txt"), "out/sub/a.txt");
}

}  // namespace
}  // namespace zt::platform
