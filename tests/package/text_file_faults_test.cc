// Text-file actions when the disk fails in mid-write: the old content is
// whole afterwards and no temporary file is left (the end-to-end tests cover
// everything a real disk can show).
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/env.h"
#include "platform/errors.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/TempDir.h"
#include "text/Ztcreatetextfileaction.h"
#include "text/Ztwritetotextfileaction.h"

namespace zt::testing {
namespace {

namespace pf = zt::platform;
using Lines = std::vector<std::string>;

// A disk that fills up: after a new file's first bytes, when old bytes are
// copied into it, and for any whole-file write.
class FullDiskEnv : public pf::EnvWrapper {
 public:
  FullDiskEnv() : EnvWrapper(pf::Env::Platform()) {}
  pf::DWORD CopyChunk(pf::THandle, pf::THandle, std::int64_t, std::int64_t& Copied) override {
    Copied = 0;
    return pf::ERROR_DISK_FULL;
  }
  bool WriteFileAtomically(const std::string&, const std::string&) override {
    pf::SetLastError(pf::ERROR_DISK_FULL);
    return false;
  }
};

std::size_t EntriesIn(const std::string& Dir) {
  std::size_t N = 0;
  for ([[maybe_unused]] const auto& E : std::filesystem::directory_iterator(Dir)) ++N;
  return N;
}

TEST(TextFileFaultsTest, FullDiskKeepsTheOldContentWholeAndLeavesNoTemporaryFile) {
  TempDir D;
  const std::string Path = D / "report.txt";
  WriteText(Path, "old content");
  FakeHost Host;
  package::TZTWriteToTextFileAction Prepend;
  Prepend.SetHost(&Host);
  Prepend.SetFileName(Path);
  Prepend.SetNewContent("new");
  Prepend.SetWriteToPosition(package::toStart);
  package::TZTCreateTextFileAction Overwrite;
  Overwrite.SetHost(&Host);
  Overwrite.SetNewFileName(Path);
  Overwrite.SetOverwriteExisting(true);
  FullDiskEnv Full;
  pf::ScopedEnv Use(&Full);

  EXPECT_FALSE(Prepend.Execute());
  EXPECT_FALSE(Overwrite.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"Error writing to text file:",
                                  "Could not create temporary file when writing file. "
                                  "There is not enough space on the disk",
                                  "File creation failed: Cannot create file \"" + Path +
                                      "\". There is not enough space on the disk"}));
  EXPECT_EQ(ReadText(Path), "old content");
  EXPECT_EQ(EntriesIn(D.Path()), 1u);
}

}  // namespace
}  // namespace zt::testing
