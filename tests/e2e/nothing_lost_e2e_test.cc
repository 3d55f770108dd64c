// What a hostile but ordinary user does to files through zt, and what must
// survive it: a full disk under a move, an interrupted move, two builds
// writing one INI file, INI files behind links, copies into their own tree.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/TempDir.h"
#include "support/Files.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// A file of Size bytes that takes no space (its data is one hole).
void Sparse(const std::string& Path, std::uintmax_t Size) {
  std::ofstream(Path).close();
  fs::resize_file(Path, Size);
}

bool SameDevice(const std::string& A, const std::string& B) {
  struct stat SA, SB;
  return stat(A.c_str(), &SA) == 0 && stat(B.c_str(), &SB) == 0 && SA.st_dev == SB.st_dev;
}

// A tmpfs of a few MiB mounted on a temporary directory (root only).
class SmallDisk {
 public:
  explicit SmallDisk(int KiB) {
    Mounted_ =
        mount("tmpfs", Dir_.Path().c_str(), "tmpfs", 0, ("size=" + std::to_string(KiB) + "k").c_str()) == 0;
  }
  ~SmallDisk() {
    if (Mounted_) umount2(Dir_.Path().c_str(), MNT_DETACH);
  }
  bool Mounted() const { return Mounted_; }
  std::string operator/(const std::string& Name) const { return Dir_ / Name; }
  const std::string& Path() const { return Dir_.Path(); }

 private:
  TempDir Dir_;
  bool Mounted_ = false;
};

TEST(NothingLost, MoveOntoAFullDiskKeepsTheOldTarget) {
  SmallDisk Disk(2048);
  if (!Disk.Mounted()) GTEST_SKIP() << "mounting a small tmpfs needs root";
  TempDir Dir;
  WriteText(Dir / "report.dat", std::string(3 << 20, 'n'));
  WriteText(Disk / "report.dat", "last week's report");
  ZtResult R = RunZt(
      Dir.Path(), "actions:\n  - action: Move File(s)\n    FileSpec: report.dat\n    Target: " + Disk.Path() +
                      "\n    TargetIsDir: true\n");
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Moving files : report.dat -> " + Disk.Path(),
                   " --> Error Moving File : report.dat -> " + Disk.Path() + "/report.dat",
                   " --> There is not enough space on the disk", "0 Files Moved."}));
  EXPECT_EQ(ReadText(Disk / "report.dat"), "last week's report");
  EXPECT_EQ(ListNames(Disk.Path()), Lines{"report.dat"});
  EXPECT_EQ(fs::file_size(Dir / "report.dat"), 3u << 20);
}

TEST(NothingLost, MoveAcrossFileSystemsStoppedTwiceLeavesBothFilesWhole) {
  TempDir Shm("/dev/shm"), Dir;
  if (Shm.Path().empty() || SameDevice(Shm.Path(), Dir.Path())) GTEST_SKIP() << "no second file system";
  Sparse(Shm / "big.bin", std::uintmax_t{16} << 30);  // minutes of copying: the signals come first
  WriteText(Dir / "out/big.bin", "old");
  ZtResult R = RunZtAndSignal(Dir.Path(),
                              "actions:\n  - action: Move File(s)\n    FileSpec: " + Shm.Path() +
                                  "/big.bin\n    Target: out\n    TargetIsDir: true\n",
                              "\"Moving File :", SIGINT, 2);
  EXPECT_EQ(R.ExitCode, 130) << R.Stderr;
  ASSERT_FALSE(R.Events.empty());
  EXPECT_EQ(R.Events.back()["event"], "build-end");
  EXPECT_EQ(R.Events.back()["result"], "stopped");
  EXPECT_EQ(ReadText(Dir / "out/big.bin"), "old");
  EXPECT_EQ(ListNames(Dir / "out"), Lines{"big.bin"});
  EXPECT_EQ(fs::file_size(Shm / "big.bin"), std::uintmax_t{16} << 30);
}

std::string WritesOfKeys(const std::string& Ini, const std::string& Prefix, int Count) {
  std::string Yaml = "actions:\n";
  for (int I = 0; I < Count; ++I)
    Yaml += "  - action: Write Ini File\n    IniFile: " + Ini +
            "\n    Section: Keys\n    ValueName: " + Prefix + std::to_string(I) + "\n    NewValue: \"" +
            std::to_string(I) + "\"\n";
  return Yaml;
}

TEST(NothingLost, TwoBuildsWritingOneIniFileKeepEveryKey) {
  TempDir Shm("/dev/shm"), A, B;  // a file system without slow flushes, where one is
  const std::string Ini = (Shm.Path().empty() ? A.Path() : Shm.Path()) + "/shared.ini";
  WriteText(Ini, "");
  auto First = std::async(std::launch::async, [&] { return RunZt(A.Path(), WritesOfKeys(Ini, "a", 200)); });
  ZtResult Second = RunZt(B.Path(), WritesOfKeys(Ini, "b", 200));
  ZtResult R = First.get();
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout;
  ASSERT_EQ(Second.ExitCode, 0) << Second.Stdout;
  const std::string Text = ReadText(Ini);
  int Keys = 0;
  for (const char* Prefix : {"a", "b"})
    for (int I = 0; I < 200; ++I)
      Keys += Text.find("\n" + std::string(Prefix) + std::to_string(I) + "=" + std::to_string(I) + "\r") !=
              std::string::npos;
  EXPECT_EQ(Keys, 400);
}

TEST(NothingLost, IniWritesGoThroughLinksAndKeepOwnerGroupAndAttributes) {
  TempDir Dir;
  WriteText(Dir / "real.ini", "[s]\r\nk=1\r\n");
  fs::create_symlink("real.ini", Dir / "link.ini");
  const bool Root = geteuid() == 0;
  if (Root) {
    ASSERT_EQ(chown((Dir / "real.ini").c_str(), 1234, 5678), 0);
  }
  const bool Xattrs = setxattr((Dir / "real.ini").c_str(), "user.origin", "vendor", 6, 0) == 0;
  auto WriteKey = [&](const std::string& Name, const std::string& Key) {
    return RunZt(Dir.Path(), "actions:\n  - action: Write Ini File\n    IniFile: ./" + Name +
                                 "\n    Section: s\n    ValueName: " + Key + "\n    NewValue: \"2\"\n");
  };
  ASSERT_EQ(WriteKey("link.ini", "j").ExitCode, 0);
  EXPECT_TRUE(fs::is_symlink(Dir / "link.ini"));
  EXPECT_EQ(ReadText(Dir / "real.ini"), "[s]\r\nk=1\r\nj=2\r\n");
  struct stat St;
  ASSERT_EQ(stat((Dir / "real.ini").c_str(), &St), 0);
  if (Root) {
    EXPECT_EQ(St.st_uid, 1234u);
    EXPECT_EQ(St.st_gid, 5678u);
  }
  char Value[16] = {};
  if (Xattrs) {
    EXPECT_EQ(getxattr((Dir / "real.ini").c_str(), "user.origin", Value, sizeof Value), 6);
  }
  // A file with a second name is changed where it is: both names see it.
  fs::create_hard_link(Dir / "real.ini", Dir / "hard.ini");
  ASSERT_EQ(WriteKey("hard.ini", "h").ExitCode, 0);
  EXPECT_EQ(ReadText(Dir / "real.ini"), "[s]\r\nk=1\r\nj=2\r\nh=2\r\n");
  EXPECT_TRUE(fs::equivalent(Dir / "real.ini", Dir / "hard.ini"));
  EXPECT_EQ(ListNames(Dir.Path()), (Lines{"hard.ini", "link.ini", "log.jsonl", "project.yml", "real.ini"}));
}

TEST(NothingLost, RecursiveCopyIntoItsOwnSubFolderCopiesTheTreeOnce) {
  TempDir Dir;
  WriteText(Dir / "tree/a.txt", "a");
  WriteText(Dir / "tree/d/b.txt", "b");
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - {action: Copy File(s), FileSpec: tree/*, Target: tree/sub, Recurse: true, Force: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying files : tree/* -> tree/sub", "2 Files Copied."}));
  EXPECT_EQ(ListNames(Dir / "tree/sub"), (Lines{"a.txt", "d"}));
  EXPECT_EQ(ReadText(Dir / "tree/sub/d/b.txt"), "b");
}

TEST(NothingLost, RecursiveCopyStopsWhereALinkLeadsBackUpTheTree) {
  TempDir Dir;
  WriteText(Dir / "tree/a.txt", "a");
  WriteText(Dir / "tree/d/b.txt", "b");
  fs::create_directory_symlink("..", Dir / "tree/d/up");
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - {action: Copy File(s), FileSpec: tree/*, Target: out, Recurse: true, Force: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying files : tree/* -> out", "2 Files Copied."}));
  EXPECT_EQ(ListNames(Dir / "out"), (Lines{"a.txt", "d"}));
  EXPECT_EQ(ListNames(Dir / "out/d"), Lines{"b.txt"});
}

}  // namespace
}  // namespace zt::testing
