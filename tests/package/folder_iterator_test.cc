// A stop asked while the folder iterator walks a tree ends the walk at the
// next folder it finds (zt's stop arrives from another thread, which an
// end-to-end test cannot place inside the walk).
#include <filesystem>

#include <gtest/gtest.h>

#include "iterators/Ztfolderiteratoraction.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

TEST(FolderIterator, StopDuringTheWalkEndsItWithTheStopMessage) {
  TempDir D;
  std::filesystem::create_directories(D / "a/b");
  FakeHost Host;
  package::TFolderIterator It;
  It.SetHost(&Host);
  It.SetStartingFolder(D.Path());
  It.SetRecurse(true);
  ASSERT_TRUE(It.BeforeFirstIteration());
  EXPECT_EQ(It.GetIterationCount(), 2);

  Host.Stop = true;
  try {
    It.BeforeFirstIteration();
    FAIL() << "the walk went on after a stop";
  } catch (const frame::EIteratorException& E) {
    EXPECT_STREQ(E.what(), "Stopping folder search.");
  }
  EXPECT_EQ(Host.Messages.back(), "Searching for Folders...");
}

}  // namespace
}  // namespace zt::testing
