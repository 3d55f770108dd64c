// Small file helpers for the platform tests (plain POSIX calls, so the tests
// never check the layer with itself).
#pragma once

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace zt::testing {

inline void WriteText(const std::string& Path, const std::string& Text) {
  std::ofstream(Path, std::ios::binary) << Text;
}

inline std::string ReadText(const std::string& Path) {
  std::ifstream In(Path, std::ios::binary);
  std::stringstream S;
  S << In.rdbuf();
  return S.str();
}

inline bool Exists(const std::string& Path) {
  struct stat St;
  return lstat(Path.c_str(), &St) == 0;
}

inline mode_t ModeOf(const std::string& Path) {
  struct stat St;
  stat(Path.c_str(), &St);
  return St.st_mode & 07777;
}

// Names in a directory, "." and ".." left out, sorted.
inline std::vector<std::string> ListNames(const std::string& Dir) {
  std::vector<std::string> Names;
  if (DIR* D = opendir(Dir.c_str())) {
    while (dirent* E = readdir(D))
      if (std::string(E->d_name) != "." && std::string(E->d_name) != "..") Names.push_back(E->d_name);
    closedir(D);
  }
  std::sort(Names.begin(), Names.end());
  return Names;
}

}  // namespace zt::testing
