// The built-in xcopy through `zt xcopy`: what each switch selects and
// writes, the lines it prints and its exit codes, including the refusals
// (missing source, cyclic copy, unknown switch) that change nothing.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

void Write(const fs::path& Path, const std::string& Text, int AgeSeconds = 1000) {
  fs::create_directories(Path.parent_path());
  std::ofstream(Path) << Text;
  fs::last_write_time(Path, fs::file_time_type::clock::now() - std::chrono::seconds(AgeSeconds));
}

// Every file and directory under Dir, relative, directories ending in '/'.
Lines Tree(const fs::path& Dir) {
  Lines Names;
  if (!fs::exists(Dir)) return Names;
  for (const auto& E : fs::recursive_directory_iterator(Dir))
    Names.push_back(fs::relative(E.path(), Dir).string() + (E.is_directory() ? "/" : ""));
  std::sort(Names.begin(), Names.end());
  return Names;
}

Lines OutputLines(const std::string& Text) {
  Lines L;
  std::istringstream In(Text);
  for (std::string Line; std::getline(In, Line);) L.push_back(Line);
  return L;
}

struct XCopyCase {
  Lines Args;
  std::function<void(const fs::path&)> Prepare;  // may be empty
  Lines Output;
  int ExitCode;
  Lines Out;  // the tree under out/ afterwards
};

void ReadOnlyCopy(const fs::path& D) {
  Write(D / "out/a.txt", "kept", 10);
  chmod((D / "out/a.txt").c_str(), 0444);
}

TEST(XCopyTool, SwitchesSelectWriteAndReportAsXCopyDoes) {
  const std::vector<XCopyCase> Cases = {
      {{"src", "out", "/I"}, {}, {"src/a.txt", "src/b.log", "2 File(s) copied"}, 0, {"a.txt", "b.log"}},
      {{"src", "out", "/S", "/Y"},
       {},
       {"src/a.txt", "src/b.log", "src/sub/c.txt", "src/sub/deep/d.txt", "4 File(s) copied"},
       0,
       {"a.txt", "b.log", "sub/", "sub/c.txt", "sub/deep/", "sub/deep/d.txt"}},
      {{"src", "out", "/E", "/Q"},
       {},
       {"4 File(s) copied"},
       0,
       {"a.txt", "b.log", "empty/", "sub/", "sub/c.txt", "sub/deep/", "sub/deep/d.txt"}},
      {{"src", "out", "/S", "/H", "/Q", "/EXCLUDE:excl.lst"},
       [](const fs::path& D) { Write(D / "excl.lst", "\\SUB\\\r\n.LOG\r\n"); },
       {"2 File(s) copied"},
       0,
       {".hidden", "a.txt"}},
      {{"src/*.txt", "out", "/F", "/L"}, {}, {"src/a.txt -> out/a.txt", "1 File(s)"}, 0, {}},
      {{"src", "out", "/T", "/E"}, {}, {"0 File(s) copied"}, 0, {"empty/", "sub/", "sub/deep/"}},
      {{"src", "out", "/D"},
       [](const fs::path& D) { Write(D / "out/a.txt", "newer", 10); },
       {"src/b.log", "1 File(s) copied"},
       0,
       {"a.txt", "b.log"}},
      {{"src", "out", "/U"},
       [](const fs::path& D) { Write(D / "out/a.txt", "newer", 10); },
       {"src/a.txt", "1 File(s) copied"},
       0,
       {"a.txt"}},
      {{"src", "out"}, ReadOnlyCopy, {"src/a.txt", "Access is denied", "0 File(s) copied"}, 5, {"a.txt"}},
      {{"src", "out", "/C"},
       ReadOnlyCopy,
       {"src/a.txt", "Access is denied", "src/b.log", "1 File(s) copied"},
       0,
       {"a.txt", "b.log"}},
      {{"src", "out", "/R"}, ReadOnlyCopy, {"src/a.txt", "src/b.log", "2 File(s) copied"}, 0, {"a.txt", "b.log"}},
      {{"src/*.zz", "out"}, {}, {"File not found - *.zz", "0 File(s) copied"}, 1, {}},
      {{"nope", "out"}, {}, {"File not found - nope", "0 File(s) copied"}, 4, {}},
      {{"src", "src/sub/out", "/S"}, {}, {"Cannot perform a cyclic copy", "0 File(s) copied"}, 4, {}},
      {{"src", "out", "/P"}, {}, {"Invalid switch - /P"}, 4, {}},
  };
  for (const XCopyCase& C : Cases) {
    TempDir D;
    Write(D / "src/a.txt", "a");
    Write(D / "src/b.log", "bb");
    Write(D / "src/.hidden", "h");
    Write(D / "src/sub/c.txt", "c");
    Write(D / "src/sub/deep/d.txt", "d");
    fs::create_directories(D / "src/empty");
    if (C.Prepare) C.Prepare(D.Path());
    Lines Args = C.Args;
    Args.insert(Args.begin(), "xcopy");
    const ZtResult R = RunZtArgs(D.Path(), Args);
    const std::string Name = ::testing::PrintToString(C.Args);
    EXPECT_EQ(R.ExitCode, C.ExitCode) << Name;
    EXPECT_EQ(OutputLines(R.Stdout), C.Output) << Name;
    EXPECT_EQ(Tree(D / "out"), C.Out) << Name;
    EXPECT_FALSE(fs::exists(D / "src/sub/out")) << Name;
  }
}

TEST(XCopyTool, CopiesLoseReadOnlyUnlessKept) {
  TempDir D;
  Write(D / "src/ro.txt", "ro");
  chmod((D / "src/ro.txt").c_str(), 0444);
  ASSERT_EQ(RunZtArgs(D.Path(), {"xcopy", "src", "plain", "/Q"}).ExitCode, 0);
  ASSERT_EQ(RunZtArgs(D.Path(), {"xcopy", "src", "kept", "/Q", "/K"}).ExitCode, 0);
  EXPECT_EQ(access((D / "plain/ro.txt").c_str(), W_OK), 0);
  EXPECT_NE(fs::status(D / "kept/ro.txt").permissions() & fs::perms::owner_write, fs::perms::owner_write);
}

}  // namespace
}  // namespace zt::testing
