// "Copy File(s)" and "Move File(s)" through zt: the lines each run logs, its
// result, and every file afterwards (a copy carries the archive bit, stored
// as 0x20), one table row per rule.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(CopyMoveEndToEnd, CopyRules) {
  const Lines Src = {"src/a.txt=alpha", "src/b.txt=bravo", "src/c.log=charlie"};
  const Lines Tree = {"src/top.txt=top", "src/sub/one.txt=one", "src/sub/deep/two.txt=two", "src/empty/",
                      "src/other/skip.log=skip"};
  auto With = [](Lines A, const Lines& B) { return A.insert(A.end(), B.begin(), B.end()), A; };
  const std::string Copy = "action: Copy File(s), ";
  // clang-format off
  ExpectCases({
      {Copy + "FileSpec: src/*.txt, Target: out", With(Src, {"out/"}),
       {"Copying files : src/*.txt -> out", "2 Files Copied."}, "success",
       With(Src, {"out/a.txt=alpha [0x20]", "out/b.txt=bravo [0x20]"})},
      // Without a target directory every match is copied onto the one target.
      {Copy + "FileSpec: src/*.txt, TargetIsDir: false, Target: all.txt", {"src/a.txt", "src/b.txt"},
       {"Copying files : src/*.txt -> all.txt", "2 Files Copied."}, "success",
       {"all.txt [0x20]", "src/a.txt", "src/b.txt"}},
      // Hidden and system files match; a directory named by the spec does not.
      {Copy + "FileSpec: src/*, Target: out", {"src/.dot=d", "src/sys=s [0x6]", "src/dir/", "out/"},
       {"Copying files : src/* -> out", "2 Files Copied."}, "success",
       {"out/.dot=d [0x20]", "out/sys=s [0x26]", "src/.dot=d", "src/dir/", "src/sys=s [0x6]"}},
      {Copy + "FileSpec: 'no dir/*.txt', Target: out", {}, {"Copying files : no dir/*.txt -> out", "0 Files Copied."},
       "success", {}},
      {Copy + "FileSpec: src/*.none, Target: out, FailIfZeroFiles: true", Src,
       {"Copying files : src/*.none -> out", "0 Files Copied."}, "failure", Src},
      {Copy + "FileSpec: a.txt, Target: ' '", {"a.txt=a"}, {"Error: No target file specified."}, "failure",
       {"a.txt=a"}},
      {Copy + "FileSpec: '%NOPE%/*.txt', Target: out", {}, {"Variable \"NOPE\" is not defined"}, "failure", {}},
      // Targets that exist.
      {Copy + "FileSpec: a.txt, Target: b.txt", {"a.txt=new", "b.txt=old"},
       {"Copying files : a.txt -> b.txt", "1 Files Copied."}, "success", {"a.txt=new", "b.txt=new [0x20]"}},
      {Copy + "FileSpec: a.txt, Target: b.txt", {"a.txt=new", "b.txt=old [ro]"},
       {"Copying files : a.txt -> b.txt", "Failed to copy File : a.txt -> b.txt",
        "File Already Exists and is marked as Read Only", "0 Files Copied."},
       "failure", {"a.txt=new", "b.txt=old [ro]"}},
      {Copy + "FileSpec: a.txt, Target: b.txt, OverwriteReadOnly: true", {"a.txt=new [ro]", "b.txt=old [ro]"},
       {"Copying files : a.txt -> b.txt", "1 Files Copied."}, "success",
       {"a.txt=new [ro]", "b.txt=new [ro] [0x20]"}},
      {Copy + "FileSpec: a.txt, Target: b.txt, OverwriteReadOnly: true, ClearAttributes: true",
       {"a.txt=new [ro]", "b.txt=old [ro] [0x20]"}, {"Copying files : a.txt -> b.txt", "1 Files Copied."},
       "success", {"a.txt=new [ro]", "b.txt=new"}},
      // Target directories: made only with Force, and only where files go.
      {Copy + "FileSpec: src/*.txt, Target: out/new", {"src/a.txt=alpha"},
       {"Copying files : src/*.txt -> out/new", "Failed to copy File : src/a.txt -> out/new/a.txt",
        "Win32 Error : The system cannot find the path specified", "0 Files Copied."},
       "failure", {"src/a.txt=alpha"}},
      {Copy + "FileSpec: src/*.txt, Target: copy, Recurse: true, Force: true", Tree,
       {"Copying files : src/*.txt -> copy", "3 Files Copied."}, "success",
       With(Tree, {"copy/sub/deep/two.txt=two [0x20]", "copy/sub/one.txt=one [0x20]", "copy/top.txt=top [0x20]"})},
      // A sub-directory that fails logs why and the copy goes on; a failure
      // at the top level ends it before any sub-directory.
      {Copy + "FileSpec: src/*.txt, Target: out, Recurse: true", {"src/top.txt=top", "src/sub/one.txt=one", "out/"},
       {"Copying files : src/*.txt -> out", "Failed to copy File : src/sub/one.txt -> out/sub/one.txt",
        "Win32 Error : The system cannot find the path specified", "1 Files Copied."},
       "success", {"out/top.txt=top [0x20]", "src/sub/one.txt=one", "src/top.txt=top"}},
      {Copy + "FileSpec: src/*.txt, Target: out, Recurse: true, FailIfExists: true",
       {"src/s1/f.txt=1", "src/s2/f.txt=2", "src/s3/f.txt=3", "out/s1/", "out/s2/f.txt=taken", "out/s3/"},
       {"Copying files : src/*.txt -> out", "Failed to copy File : src/s2/f.txt -> out/s2/f.txt",
        "File Already Exists!", "2 Files Copied."},
       "success",
       {"out/s1/f.txt=1 [0x20]", "out/s2/f.txt=taken", "out/s3/f.txt=3 [0x20]", "src/s1/f.txt=1", "src/s2/f.txt=2",
        "src/s3/f.txt=3"}},
      {Copy + "FileSpec: src/*.txt, Target: out, Recurse: true, Force: true, FailIfExists: true",
       {"src/top.txt=top", "src/sub/one.txt=one", "out/top.txt=taken"},
       {"Copying files : src/*.txt -> out", "Failed to copy File : src/top.txt -> out/top.txt",
        "File Already Exists!", "0 Files Copied."},
       "failure", {"out/top.txt=taken", "src/sub/one.txt=one", "src/top.txt=top"}},
      // Recurse makes the target a directory; a later TargetIsDir: false
      // turns Recurse off again, so one file is copied onto "single".
      {Copy + "Recurse: true, FileSpec: src/*.txt, Target: single, TargetIsDir: false", {"src/sub/a.txt=a", "src/b.txt=b"},
       {"Copying files : src/*.txt -> single", "1 Files Copied."}, "success",
       {"single=b [0x20]", "src/b.txt=b", "src/sub/a.txt=a"}},
  });
  // clang-format on
}

TEST(CopyMoveEndToEnd, MoveRules) {
  const std::string Move = "action: Move File(s), ";
  const std::string Header = "Moving files : src/*.txt -> out";
  // clang-format off
  ExpectCases({
      {Move + "FileSpec: src/*.txt, Target: out", {"src/a.txt=a", "src/b.txt=b", "src/c.log=c", "out/"},
       {Header, "2 Files Moved."}, "success", {"out/a.txt=a", "out/b.txt=b", "src/c.log=c"}},
      // Hidden files move; system files and directories stay.
      {Move + "FileSpec: src/*, Target: out/", {"src/.dot=d", "src/sys=s [0x4]", "src/dir/", "out/"},
       {"Moving files : src/* -> out/", "1 Files Moved."}, "success", {"out/.dot=d", "src/dir/", "src/sys=s [0x4]"}},
      {Move + "FileSpec: src/a.txt, Target: made/here/b.txt, Force: true", {"src/a.txt=a"},
       {"Moving files : src/a.txt -> made/here/b.txt", "1 Files Moved."}, "success", {"made/here/b.txt=a", "src/"}},
      {Move + "FileSpec: src/a.txt, Target: made, TargetIsDir: true, Force: true", {"src/a.txt=a"},
       {"Moving files : src/a.txt -> made", "1 Files Moved."}, "success", {"made/a.txt=a", "src/"}},
      {Move + "FileSpec: src/*.txt, Target: out, ClearAttributes: true", {"src/a.txt=a [ro] [0x20]", "out/"},
       {Header, "1 Files Moved."}, "success", {"out/a.txt=a", "src/"}},
      {Move + "FileSpec: src/*.txt, Target: out, FailIfZeroFiles: true", {"out/"}, {Header, "0 Files Moved."},
       "failure", {"out/"}},
      // Empty texts are a silent success; an expansion that fails is logged.
      {Move + "FileSpec: src/a.txt, Target: ' '", {"src/a.txt=a"}, {}, "success", {"src/a.txt=a"}},
      {Move + "FileSpec: src/*.txt, Target: '%MISSING%'", {},
       {" --> Unable to Move files : src/*.txt", " --> Variable \"MISSING\" is not defined"}, "failure", {}},
      // Targets that exist.
      {Move + "FileSpec: src/*.txt, Target: out", {"src/a.txt=new", "out/a.txt=old"}, {Header, "1 Files Moved."},
       "success", {"out/a.txt=new", "src/"}},
      {Move + "FileSpec: src/*.txt, Target: out, FailIfExists: true", {"src/a.txt=new", "out/a.txt=old"},
       {Header, " --> Error Moving File : src/a.txt -> out/a.txt",
        " --> The target File exists and \"Fail if Exists\" is checked", "0 Files Moved."},
       "failure", {"out/a.txt=old", "src/a.txt=new"}},
      {Move + "FileSpec: src/*.txt, Target: out", {"src/a.txt=new", "out/a.txt=old [ro]"},
       {Header, " --> Error Moving File : src/a.txt -> out/a.txt", " --> The target File is marked \"Read Only\"",
        "0 Files Moved."},
       "failure", {"out/a.txt=old [ro]", "src/a.txt=new"}},
      {Move + "FileSpec: src/*.txt, Target: out, OverwriteReadOnly: true", {"src/a.txt=new", "out/a.txt=old [ro]"},
       {Header, "1 Files Moved."}, "success", {"out/a.txt=new", "src/"}},
      // The same file under another name is never deleted as the target.
      {Move + "FileSpec: src/a.txt, Target: src/a.txt", {"src/a.txt=a"},
       {"Moving files : src/a.txt -> src/a.txt", "1 Files Moved."}, "success", {"src/a.txt=a"}},
      {Move + "FileSpec: src/a.txt, Target: src/./a.txt", {"src/a.txt=a"},
       {"Moving files : src/a.txt -> src/./a.txt", " --> Error Moving File : src/a.txt -> src/./a.txt",
        " --> Cannot create a file when that file already exists", "0 Files Moved."},
       "success", {"src/a.txt=a"}},
      {Move + "FileSpec: '%UNDEFINED_DIR%/*.txt', Target: out", {},
       {" --> Unable to Move files : ", " --> Variable \"UNDEFINED_DIR\" is not defined"}, "failure", {}},
      {Move + "FileSpec: '  ', Target: out", {}, {}, "success", {}},
  });
  // clang-format on
}

TEST(CopyMoveEndToEnd, MoveRulesThatDependOnTheOrderOfTheSearch) {
  TempDir D;
  MakeTree(D.Path(), {"one/a.txt=a", "one/b.txt=b", "two/a.txt=a", "two/b.txt=b"});
  Lines One, Two;  // in the order a search visits them
  for (const auto& E : std::filesystem::directory_iterator(D / "one")) One.push_back(E.path().filename());
  for (const auto& E : std::filesystem::directory_iterator(D / "two")) Two.push_back(E.path().filename());
  // The first of two files moved onto themselves is read-only: from then on
  // every existing target is made normal, the second's stored bits too.
  chmod((D / ("two/" + Two[0])).c_str(), 0444);
  setxattr((D / ("two/" + Two[1])).c_str(), "user.DOSATTRIB", "0x20", 4, 0);
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Move File(s), FileSpec: one/*.txt, TargetIsDir: false, Target: first.txt}
  - {action: Move File(s), FileSpec: two/*.txt, Target: two, OverwriteReadOnly: true}
)");
  EXPECT_EQ(Said(R, "1"), (Lines{"Moving files : one/*.txt -> first.txt", "1 Files Moved."}));
  EXPECT_EQ(Said(R, "2"), (Lines{"Moving files : two/*.txt -> two", "2 Files Moved."}));
  EXPECT_EQ(ListNames(D / "one"), Lines{One[1]});  // only the first match moves
  EXPECT_EQ(ReadText(D / "first.txt"), One[0].substr(0, 1));
  EXPECT_EQ(Tree(D / "two"), (Lines{"a.txt=a", "b.txt=b"}));
}

}  // namespace
}  // namespace zt::testing
