// Shared fixture of the copy and move tests: a temporary directory, the
// in-memory host, and small file helpers.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/Ztcopymove.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "support/ActionTesting.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"

namespace zt::testing {

namespace fs = std::filesystem;
namespace pf = zt::platform;
using Lines = std::vector<std::string>;

inline void WriteText(const std::string& Path, const std::string& Text) { std::ofstream(Path, std::ios::binary) << Text; }

inline std::string ReadText(const std::string& Path) {
  std::ifstream In(Path, std::ios::binary);
  std::stringstream S;
  S << In.rdbuf();
  return S.str();
}

inline bool Exists(const std::string& Path) { return fs::exists(fs::symlink_status(Path)); }

inline pf::DWORD Attributes(const std::string& Path) { return pf::GetFileAttributesA(Path); }

template <class Action>
class ActionTest : public ::testing::Test {
 protected:
  ActionTest() {
    A.SetHost(&Host);
    A.SetTitle(Action::GetActionName());
  }
  bool Run(const std::string& Spec, const std::string& Target) {
    A.SetFileSpec(Spec);
    A.SetTarget(Target);
    return A.Execute();
  }

  TempDir Dir;
  FakeHost Host;
  Action A;
};

}  // namespace zt::testing
