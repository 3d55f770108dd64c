// Files that never end or never answer, and stops at bad moments, through
// zt: FIFOs and devices are refused at once, files of /proc copy with their
// contents, and a stop ends a checksum of a huge file without a result.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

TEST(NothingHung, FifosAndDevicesAreRefusedInsteadOfWaitedFor) {
  TempDir D;
  fs::create_directory(D / "in");
  ASSERT_EQ(mkfifo((D / "in/pipe").c_str(), 0666), 0);
  std::ofstream(D / "a.txt") << "a";
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Copy File(s), FileSpec: in/*, Target: out, Force: true, ignoreFailure: true}
  - {action: Calculate File CRC32, FileName: /dev/zero, ignoreFailure: true}
  - {action: Touch File(s), FileSpec: in/*}
  - {action: Copy File(s), FileSpec: a.txt, Target: in/pipe, Force: true, ignoreFailure: true}
  - {action: Move File(s), FileSpec: a.txt, Target: in/pipe}
  - {action: Write to Text File, FileName: in/pipe, NewContent: never waits for a reader,
     ignoreFailure: true}
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
}

TEST(NothingHung, StopEndsAChecksumOfAHugeFileWithoutAResult) {
  TempDir Shm("/dev/shm"), D;  // reading a hole of tmpfs costs no disk and no memory
  const std::string Big = (Shm.Path().empty() ? D.Path() : Shm.Path()) + "/huge.bin";
  std::ofstream(Big).close();
  fs::resize_file(Big, std::uintmax_t{64} << 30);
  ZtResult R =
      RunZtAndSignal(D.Path(), "actions:\n  - action: Calculate File CRC32\n    FileName: " + Big + "\n",
                     "\"action-start\"", SIGTERM);
  EXPECT_EQ(R.ExitCode, 130);
  EXPECT_EQ(Messages(R, "1"), Lines{"Error getting crc32 : I/O error 995"});
  EXPECT_EQ(ActionResult(R, "1"), "failure");
}

TEST(NothingHung, StopEndsTheReadOfAHugeTextFileBeforeItIsTakenIn) {
  TempDir Shm("/dev/shm"), D;
  const std::string Big = (Shm.Path().empty() ? D.Path() : Shm.Path()) + "/huge.txt";
  std::ofstream(Big).close();
  fs::resize_file(Big, std::uintmax_t{2} << 30);  // seconds to take into memory
  ZtResult R = RunZtAndSignal(D.Path(),
                              "actions:\n  - action: Read Text File\n    FileName: " + Big +
                                  "\n    ZTVariable: TEXT\n    PutContentsInVar: true\n",
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

TEST(NothingHung, FilesOfProcCopyWithTheirContentsAndDevicesAreRefused) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Copy File(s), FileSpec: /proc/self/status, Target: out/status, Force: true}
  - {action: Copy File(s), FileSpec: /dev/null, Target: out/null}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Copying files : /proc/self/status -> out/status", "1 Files Copied."}));
  std::ifstream In(D / "out/status");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(In), {}).rfind("Name:\tzt\n", 0), 0u);
  EXPECT_EQ(StatusDetails(R, "2"),
            (Lines{"Copying files : /dev/null -> out/null", "Failed to copy File : /dev/null -> out/null",
                   "Win32 Error : Access is denied", "0 Files Copied."}));
}

}  // namespace
}  // namespace zt::testing
