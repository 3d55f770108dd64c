// What a hostile but ordinary user does to files through zt, and what must
// survive it: a full disk under a move, an interrupted move, two builds
// writing one INI file, INI files behind links, copies into their own tree;
// files that never end or never answer (FIFOs and devices are refused at
// once), and stops that end the reading of huge files without a result.
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
#include "support/Files.h"
#include "support/TempDir.h"

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

TEST(NothingLost, MoveOntoAFullDiskKeepsTheOldTarget) {
  TempDir Disk, Dir;  // Disk: a tmpfs of 2 MiB
  if (mount("tmpfs", Disk.Path().c_str(), "tmpfs", 0, "size=2048k") != 0)
    GTEST_SKIP() << "mounting needs root";
  const struct Unmount {
    std::string Path;
    ~Unmount() { umount2(Path.c_str(), MNT_DETACH); }
  } Mounted{Disk.Path()};
  WriteText(Dir / "report.dat", std::string(3 << 20, 'n'));
  WriteText(Disk / "report.dat", "last week's report");
  ZtResult R =
      RunZt(Dir.Path(), "actions:\n  - {action: Move File(s), FileSpec: report.dat, Target: " + Disk.Path() +
                            ", TargetIsDir: true}\n");
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Moving files : report.dat -> " + Disk.Path(),
                   " --> Error Moving File : report.dat -> " + Disk.Path() + "/report.dat",
                   " --> There is not enough space on the disk", "0 Files Moved."}));
  EXPECT_EQ(Tree(Disk.Path()), Lines{"report.dat=last week's report"});
  EXPECT_EQ(fs::file_size(Dir / "report.dat"), 3u << 20);
}

TEST(NothingLost, MoveAcrossFileSystemsStoppedTwiceLeavesBothFilesWhole) {
  TempDir Shm("/dev/shm"), Dir;
  if (Shm.Path().empty() || SameDevice(Shm.Path(), Dir.Path())) GTEST_SKIP() << "no second file system";
  Sparse(Shm / "big.bin", std::uintmax_t{16} << 30);  // minutes of copying: the signals come first
  WriteText(Dir / "out/big.bin", "old");
  ZtResult R = RunZtAndSignal(Dir.Path(),
                              "actions:\n  - {action: Move File(s), FileSpec: " + Shm.Path() +
                                  "/big.bin, Target: out, TargetIsDir: true}\n",
                              "\"Moving File :", SIGINT, 2);
  EXPECT_EQ(R.ExitCode, 130) << R.Stderr;
  ASSERT_FALSE(R.Events.empty());
  EXPECT_EQ(R.Events.back()["event"], "build-end");
  EXPECT_EQ(R.Events.back()["result"], "stopped");
  EXPECT_EQ(Tree(Dir / "out"), Lines{"big.bin=old"});
  EXPECT_EQ(fs::file_size(Shm / "big.bin"), std::uintmax_t{16} << 30);
}

std::string WritesOfKeys(const std::string& Ini, const std::string& Prefix, int Count) {
  std::string Yaml = "actions:\n";
  for (int I = 0; I < Count; ++I)
    Yaml += "  - {action: Write Ini File, IniFile: " + Ini + ", Section: Keys, ValueName: " + Prefix +
            std::to_string(I) + ", NewValue: '" + std::to_string(I) + "'}\n";
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

// A file with a second name is changed where it is: both names see it.
TEST(NothingLost, IniWritesGoThroughLinksAndKeepOwnerGroupAndAttributes) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"real.ini=[s]\r\nk=1\r\n", "link.ini -> real.ini", "hard.ini => real.ini"});
  const bool Root = geteuid() == 0;
  if (Root) {
    ASSERT_EQ(chown((Dir / "real.ini").c_str(), 1234, 5678), 0);
  }
  const bool Xattrs = setxattr((Dir / "real.ini").c_str(), "user.origin", "vendor", 6, 0) == 0;
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - {action: Write Ini File, IniFile: ./link.ini, Section: s, ValueName: j, NewValue: '2'}
  - {action: Write Ini File, IniFile: ./hard.ini, Section: s, ValueName: h, NewValue: '2'}
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_TRUE(fs::is_symlink(Dir / "link.ini"));
  EXPECT_TRUE(fs::equivalent(Dir / "real.ini", Dir / "hard.ini"));
  EXPECT_EQ(ReadText(Dir / "real.ini"), "[s]\r\nk=1\r\nj=2\r\nh=2\r\n");
  EXPECT_EQ(ListNames(Dir.Path()), (Lines{"hard.ini", "link.ini", "log.jsonl", "project.yml", "real.ini"}));
  struct stat St;
  ASSERT_EQ(stat((Dir / "real.ini").c_str(), &St), 0);
  if (Root) {
    EXPECT_EQ(St.st_uid, 1234u);
    EXPECT_EQ(St.st_gid, 5678u);
  }
  if (Xattrs) {
    EXPECT_EQ(getxattr((Dir / "real.ini").c_str(), "user.origin", nullptr, 0), 6);
  }
}

TEST(NothingLost, RecursiveCopiesCopyATreeOnceIntoItselfAndNeverThroughALinkBackUp) {
  TempDir Dir;
  MakeTree(Dir.Path(),
           {"tree/a.txt=a", "tree/d/b.txt=b", "linked/a.txt=a", "linked/d/b.txt=b", "linked/d/up -> .."});
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - {action: Copy File(s), FileSpec: tree/*, Target: tree/sub, Recurse: true, Force: true}
  - {action: Copy File(s), FileSpec: linked/*, Target: out, Recurse: true, Force: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying files : tree/* -> tree/sub", "2 Files Copied."}));
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Copying files : linked/* -> out", "2 Files Copied."}));
  EXPECT_EQ(Tree(Dir / "tree"),
            (Lines{"a.txt=a", "d/b.txt=b", "sub/a.txt=a [0x20]", "sub/d/b.txt=b [0x20]"}));
  EXPECT_EQ(Tree(Dir / "out"), (Lines{"a.txt=a [0x20]", "d/b.txt=b [0x20]"}));
}

TEST(NothingHung, FifosAndDevicesAreRefusedInsteadOfWaitedFor) {
  TempDir D;
  MakeTree(D.Path(), {"a.txt=a", "in/"});
  ASSERT_EQ(mkfifo((D / "in/pipe").c_str(), 0666), 0);
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Copy File(s), FileSpec: in/*, Target: out, Force: true, ignoreFailure: true}
  - {action: Calculate File CRC32, FileName: /dev/zero, ignoreFailure: true}
  - {action: Touch File(s), FileSpec: in/*}
  - {action: Copy File(s), FileSpec: a.txt, Target: in/pipe, Force: true, ignoreFailure: true}
  - {action: Move File(s), FileSpec: a.txt, Target: in/pipe}
  - {action: Write to Text File, FileName: in/pipe, NewContent: never waits for a reader,
     ignoreFailure: true}
  - {action: Copy File(s), FileSpec: /proc/self/status, Target: out/status, Force: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Copying files : in/* -> out", "Failed to copy File : in/pipe -> out/pipe",
                   "Win32 Error : Access is denied", "0 Files Copied."}));
  EXPECT_EQ(Messages(R, "2"), Lines{"Error getting crc32 : File access denied"});
  // A FIFO is a system file, which the touch's search leaves out.
  EXPECT_EQ(StatusDetails(R, "3"), Lines{"Processed : 0 File(s)"});
  EXPECT_FALSE(fs::exists(D / "out/pipe"));
  // Nor is one ever replaced, removed or written to as a target.
  EXPECT_EQ(StatusDetails(R, "4"),
            (Lines{"Copying files : a.txt -> in/pipe", "Failed to copy File : a.txt -> in/pipe",
                   "Win32 Error : Access is denied", "0 Files Copied."}));
  EXPECT_EQ(StatusDetails(R, "5"),
            (Lines{"Moving files : a.txt -> in/pipe", " --> Error Moving File : a.txt -> in/pipe",
                   " --> Cannot create a file when that file already exists", "0 Files Moved."}));
  EXPECT_EQ(Messages(R, "6"),
            (Lines{"Error writing to text file:", "Cannot open file \"in/pipe\". Access is denied"}));
  EXPECT_TRUE(fs::is_fifo(D / "in/pipe"));
  EXPECT_TRUE(fs::exists(D / "a.txt"));
  // A file of /proc says it is empty, yet copies with its contents.
  EXPECT_EQ(StatusDetails(R, "7"),
            (Lines{"Copying files : /proc/self/status -> out/status", "1 Files Copied."}));
  EXPECT_EQ(ReadText(D / "out/status").rfind("Name:\tzt\n", 0), 0u);
}

TEST(NothingHung, StopEndsAChecksumOfAHugeFileWithoutAResult) {
  TempDir Shm("/dev/shm"), D;  // reading a hole of tmpfs costs no disk and no memory
  const std::string Big = (Shm.Path().empty() ? D.Path() : Shm.Path()) + "/huge.bin";
  Sparse(Big, std::uintmax_t{64} << 30);
  ZtResult R =
      RunZtAndSignal(D.Path(), "actions:\n  - {action: Calculate File CRC32, FileName: " + Big + "}\n",
                     "\"action-start\"", SIGTERM);
  EXPECT_EQ(R.ExitCode, 130);
  EXPECT_EQ(Messages(R, "1"), Lines{"Error getting crc32 : I/O error 995"});
  EXPECT_EQ(ActionResult(R, "1"), "failure");
}

TEST(NothingHung, StopEndsTheReadOfAHugeTextFileBeforeItIsTakenIn) {
  TempDir Shm("/dev/shm"), D;
  const std::string Big = (Shm.Path().empty() ? D.Path() : Shm.Path()) + "/huge.txt";
  Sparse(Big, std::uintmax_t{2} << 30);  // seconds to take into memory
  ZtResult R = RunZtAndSignal(D.Path(),
                              "actions:\n  - {action: Read Text File, FileName: " + Big +
                                  ", ZTVariable: TEXT, PutContentsInVar: true}\n",
                              "\"action-start\"", SIGTERM);
  EXPECT_EQ(R.ExitCode, 130);
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"Reading file...", "Failed to read from text file: Cannot read file \"" + Big +
                                          "\". The I/O operation has been aborted because of either a "
                                          "thread exit or an application request"}));
#ifdef __SANITIZE_ADDRESS__
  const int MaxMs = 10000;  // the sanitizer marks and clears the shadow of the whole reserve
#else
  const int MaxMs = 1000;  // taking the whole file in would take several seconds
#endif
  for (const auto& E : R.Events) {
    if (E.value("event", "") == "action-end") {
      EXPECT_LT(E["duration_ms"].get<int>(), MaxMs);
    }
  }
}

}  // namespace
}  // namespace zt::testing
