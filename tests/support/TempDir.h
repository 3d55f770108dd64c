// A temporary directory for one test, removed with everything in it
// (read-only files included) when the test ends.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "support/Files.h"

namespace zt::testing {

class TempDir {
 public:
  // Base: the folder to make it in (default: the system's temporary folder).
  // Path() is empty when it cannot be made there.
  explicit TempDir(const std::filesystem::path& Base = std::filesystem::temp_directory_path()) {
    std::string Tmpl = (Base / "zt-test-XXXXXX").string();
    const char* Made = mkdtemp(Tmpl.data());
    Path_ = Made ? Made : "";
  }
  ~TempDir() {
    if (Path_.empty()) return;
    std::error_code Ec;
    for (auto& E : std::filesystem::recursive_directory_iterator(Path_, Ec))
      std::filesystem::permissions(E.path(), std::filesystem::perms::owner_all,
                                   std::filesystem::perm_options::add, Ec);
    std::filesystem::remove_all(Path_, Ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& Path() const { return Path_; }
  std::string operator/(const std::string& Name) const { return Path_ + "/" + Name; }

  // Writes Bytes to the file Name (created or replaced) and returns its path.
  std::string Write(const std::string& Name, const std::string& Bytes) const {
    WriteText(*this / Name, Bytes);
    return *this / Name;
  }
  // The bytes of the file Name; "" when it cannot be read.
  std::string Read(const std::string& Name) const { return ReadText(*this / Name); }

 private:
  std::string Path_;
};

}  // namespace zt::testing
