// "Delete File(s)" through zt: the log entry, the result and the files left,
// one row per rule; the first read-only file stopping the deletion.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(DeleteFilesEndToEnd, DeleteRules) {
  const std::string Delete = "action: Delete File(s), ";
  // clang-format off
  ExpectCases({
      {Delete + "FileSpec: out/*.tmp", {"out/a.tmp", "out/b.tmp", "out/keep.txt"},
       {"Deleting files : out/*.tmp", "2 Files Deleted."}, "success", {"out/keep.txt"}},
      {Delete + "FileSpec: '  %OUT%/*.tmp '", {"out/a.tmp"}, {"Deleting files : out/*.tmp", "1 Files Deleted."},
       "success", {"out/"}},
      // Hidden files go; directories and system files stay.
      {Delete + "FileSpec: '*.txt'", {".hidden.txt", "plain.txt", "sub.txt/inner.txt", "sys.txt [0x4]"},
       {"Deleting files : *.txt", "2 Files Deleted."}, "success", {"sub.txt/inner.txt", "sys.txt [0x4]"}},
      {Delete + "FileSpec: '*.dat'", {"a.dat [ro]"},
       {"Deleting files : *.dat", " --> Error Deleting File : a.dat", " --> Access is denied", "0 Files Deleted."},
       "failure", {"a.dat [ro]"}},
      {Delete + "FileSpec: '*.dat', DeleteReadOnly: true", {"a.dat [ro]", "b.dat"},
       {"Deleting files : *.dat", "2 Files Deleted."}, "success", {}},
      // DeleteHidden clears the bit first, even when the delete then fails.
      {Delete + "FileSpec: '*.dat', DeleteHidden: true", {"a.dat [ro] [0x22]"},
       {"Deleting files : *.dat", " --> Error Deleting File : a.dat", " --> Access is denied", "0 Files Deleted."},
       "failure", {"a.dat [ro] [0x20]"}},
      // Nothing to delete fails unless allowed; a blank spec logs nothing.
      {Delete + "FileSpec: missing.txt", {}, {"Deleting files : missing.txt", "0 Files Deleted."}, "failure", {}},
      {Delete + "FileSpec: no-dir/*.txt, FailIfNoFile: false", {},
       {"Deleting files : no-dir/*.txt", "0 Files Deleted."}, "success", {}},
      {Delete + "FileSpec: '  '", {}, {}, "failure", {}},
      {Delete + "FileSpec: ' %BLANK% ', FailIfNoFile: false", {}, {}, "success", {}},
      {Delete + "FileSpec: '%NOPE%/*.txt'", {}, {"Variable \"NOPE\" is not defined"}, "failure", {}},
  }, {"--var", "OUT=out", "--var", "BLANK= "});
  // clang-format on
}

TEST(DeleteFilesEndToEnd, DeletingStopsAtTheFirstReadOnlyFile) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"out/a.dat", "out/b.dat", "out/c.dat [ro]", "out/d.dat"});
  ZtResult R = RunZt(Dir.Path(), "actions:\n  - {action: TDeleteFilesAction, FileSpec: out/*.dat}\n");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  // The files visited before the read-only one are gone; the count says how many.
  const std::size_t Deleted = 4 - ListNames(Dir / "out").size();
  EXPECT_TRUE(Exists(Dir / "out/c.dat"));
  EXPECT_EQ(Said(R, "1"), (Lines{"Deleting files : out/*.dat", " --> Error Deleting File : out/c.dat",
                                 " --> Access is denied", std::to_string(Deleted) + " Files Deleted."}));
  EXPECT_EQ(ActionResult(R, "1"), "failure");
}

}  // namespace
}  // namespace zt::testing
