// Files in tests: whole contents in and out, what a folder holds, a file's
// permission bits. Plain POSIX and standard-library calls, so tests never
// check the platform layer with itself.
#pragma once

#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zt::testing {

// Writes Text to Path byte for byte, making missing parent folders; Mode,
// when given, becomes the file's permission bits.
inline void WriteText(const std::string& Path, const std::string& Text = "x", mode_t Mode = 0) {
  std::error_code Ec;
  std::filesystem::create_directories(std::filesystem::path(Path).parent_path(), Ec);
  std::ofstream(Path, std::ios::binary) << Text;
  if (Mode != 0) chmod(Path.c_str(), Mode);
}

// The bytes of the file at Path; "" when it cannot be read.
inline std::string ReadText(const std::string& Path) {
  std::ifstream In(Path, std::ios::binary);
  return {std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>()};
}

// True for anything at Path, a dangling link included.
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
  std::error_code Ec;
  for (const auto& E : std::filesystem::directory_iterator(Dir, Ec)) Names.push_back(E.path().filename());
  std::sort(Names.begin(), Names.end());
  return Names;
}

// A folder's files as lines "path=contents" ("path" alone when the contents
// are "x"), sorted, paths relative to the folder; an empty folder is "path/".
// A read-only file ends in " [ro]", a file with stored DOS attributes in
// " [0x..]" (the layer's stored value, as "0x24" for system and archive); a
// link is "path -> target". MakeTree makes the files its lines name, and
// "path => other" as a second name of other.
inline std::vector<std::string> Tree(const std::string& Dir) {
  namespace fs = std::filesystem;
  std::vector<std::string> Lines;
  std::error_code Ec;
  for (auto It = fs::recursive_directory_iterator(Dir, Ec); It != fs::recursive_directory_iterator();
       It.increment(Ec)) {
    const std::string Path = It->path().string(), Name = Path.substr(Dir.size() + 1);
    if (It->is_symlink()) {
      Lines.push_back(Name + " -> " + fs::read_symlink(Path, Ec).string());
      continue;
    }
    if (It->is_directory()) {
      if (fs::is_empty(Path, Ec)) Lines.push_back(Name + "/");
      continue;
    }
    const std::string Text = ReadText(Path);
    std::string Line = Text == "x" ? Name : Name + "=" + Text;
    if ((ModeOf(Path) & 0222) == 0) Line += " [ro]";
    char Stored[32] = {};
    if (getxattr(Path.c_str(), "user.DOSATTRIB", Stored, sizeof Stored - 1) > 0)
      Line += " [" + std::string(Stored) + "]";
    Lines.push_back(Line);
  }
  std::sort(Lines.begin(), Lines.end());
  return Lines;
}

inline void MakeTree(const std::string& Dir, const std::vector<std::string>& Lines) {
  for (std::string Line : Lines) {
    std::error_code Ec;
    if (Line.ends_with("/")) {
      std::filesystem::create_directories(Dir + "/" + Line, Ec);
      continue;
    }
    if (const std::size_t Arrow = Line.find(" => "); Arrow != std::string::npos) {
      std::filesystem::create_hard_link(Dir + "/" + Line.substr(Arrow + 4), Dir + "/" + Line.substr(0, Arrow),
                                        Ec);
      continue;
    }
    if (const std::size_t Arrow = Line.find(" -> "); Arrow != std::string::npos) {
      std::filesystem::create_directories(
          std::filesystem::path(Dir + "/" + Line.substr(0, Arrow)).parent_path(), Ec);
      std::filesystem::create_symlink(Line.substr(Arrow + 4), Dir + "/" + Line.substr(0, Arrow), Ec);
      continue;
    }
    std::string Stored;
    bool ReadOnly = false;
    for (std::size_t At; Line.ends_with("]") && (At = Line.rfind(" [")) != std::string::npos;
         Line.resize(At)) {
      const std::string Mark = Line.substr(At + 2, Line.size() - At - 3);
      if (Mark == "ro")
        ReadOnly = true;
      else
        Stored = Mark;
    }
    const std::size_t Eq = Line.find('=');
    const std::string Path = Dir + "/" + Line.substr(0, Eq);
    WriteText(Path, Eq == std::string::npos ? "x" : Line.substr(Eq + 1));
    if (!Stored.empty()) setxattr(Path.c_str(), "user.DOSATTRIB", Stored.data(), Stored.size(), 0);
    if (ReadOnly) chmod(Path.c_str(), 0444);
  }
}

}  // namespace zt::testing
