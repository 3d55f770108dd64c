// FindFirst / FindNext on POSIX: directory order, "." and ".." included,
// Windows wildcards, Delphi's attribute-mask rule. A directory that its path
// reaches a second time (a symbolic link to an ancestor) is not listed, so
// no recursive walk can run round a loop.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <string_view>
#include <utility>
#include <vector>

#include "platform/dates.h"
#include "platform/paths.h"
#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

namespace {

class PosixFindState final : public FindState {
 public:
  PosixFindState(DIR* Dir, std::string Prefix, std::string Pattern)
      : Dir_(Dir), Prefix_(std::move(Prefix)), Pattern_(std::move(Pattern)) {}
  ~PosixFindState() override {
    if (Dir_) closedir(Dir_);
  }
  PosixFindState(const PosixFindState&) = delete;
  PosixFindState& operator=(const PosixFindState&) = delete;

  // The next entry that matches the pattern and passes the mask; false at
  // the end. An entry that vanishes between listing and reading is skipped.
  bool Next(int ExcludeAttr, std::string& Name, FileInfo& Info) {
    if (!Dir_) return false;
    while (struct dirent* E = readdir(Dir_)) {
      if (!MatchesWildcard(E->d_name, Pattern_)) continue;
      if (!Describe(E->d_name, E->d_type, Info)) continue;
      if (static_cast<int>(Info.Attributes) & ExcludeAttr) continue;
      Name = E->d_name;
      return true;
    }
    return false;
  }

 private:
  // Fills Info for the entry Name of directory-entry type Type; false when
  // it is gone. The platform's own Env looks the entry up relative to the
  // open directory (no walk of the whole path); a replacement Env gets the
  // QueryFileInfo primitive call.
  bool Describe(const char* Name, unsigned char Type, FileInfo& Info) {
    if (!PlatformEnvInstalled()) return Env::Default()->QueryFileInfo(Prefix_ + Name, Info) == ERROR_SUCCESS;
    const struct timespec Before = ClockBeforeStat();
    struct stat St;
    bool Link = Type == DT_LNK;
    if (Type == DT_UNKNOWN) {  // some file systems do not say: ask
      if (fstatat(dirfd(Dir_), Name, &St, AT_SYMLINK_NOFOLLOW) != 0) return false;
      Link = S_ISLNK(St.st_mode);
    }
    if (fstatat(dirfd(Dir_), Name, &St, 0) != 0) {
      // A dangling symbolic link is still an entry: describe the link itself.
      if (errno != ENOENT || fstatat(dirfd(Dir_), Name, &St, AT_SYMLINK_NOFOLLOW) != 0) return false;
    }
    DWORD Attributes = CombineAttributes(St, StoredBitsOf(Prefix_ + Name, St, Before), IsDotHiddenName(Name));
    FillInfo(St, Link ? WithLinkBit(Attributes) : Attributes, Info);
    return true;
  }

  DIR* Dir_;            // null for a search that named one file exactly
  std::string Prefix_;  // the directory part, delimiter included
  std::string Pattern_;
};

void Fill(TSearchRec& F, std::string Name, const FileInfo& Info) {
  F.Name = std::move(Name);
  F.Attr = static_cast<int>(Info.Attributes);
  F.Size = Info.Size;
  F.Time = DateTimeToFileDate(UnixToDateTime(static_cast<std::time_t>(Info.LastWriteSeconds)));
  F.LastWriteTime = UnixToFileTime(Info.LastWriteSeconds, Info.LastWriteNanoseconds);
}

// True when Dir (a directory part, delimiter included) passes through one
// directory twice: the same device and inode among its components. "." is no
// step and ".." a step back, so "a/./" and "a/b/../b/" list as written.
bool ReachesADirectoryTwice(const std::string& Dir) {
  std::vector<std::pair<dev_t, ino_t>> Passed;
  std::size_t Begin = 0;
  if (!Dir.empty() && Dir[0] == '/') {
    struct stat Root;
    if (stat("/", &Root) == 0) Passed.emplace_back(Root.st_dev, Root.st_ino);
    Begin = 1;
  }
  for (std::size_t End; (End = Dir.find('/', Begin)) != std::string::npos; Begin = End + 1) {
    const std::string_view Name(Dir.data() + Begin, End - Begin);
    if (Name.empty() || Name == ".") continue;
    if (Name == "..") {
      if (!Passed.empty()) Passed.pop_back();
      continue;
    }
    struct stat St;
    if (stat(Dir.substr(0, End).c_str(), &St) != 0) return false;  // the listing will say why
    for (const auto& [Dev, Ino] : Passed)
      if (Dev == St.st_dev && Ino == St.st_ino) return true;
    Passed.emplace_back(St.st_dev, St.st_ino);
  }
  return false;
}

bool HasWildcards(const std::string& Pattern) {
  if (Pattern.find_first_of("*?") != std::string::npos) return true;
  // "name." means "name" to Windows; the matcher knows, a plain look-up not.
  return Pattern != "." && Pattern != ".." && Pattern.back() == '.';
}

}  // namespace

int PosixEnv::FindFirst(const std::string& Path, int Attr, TSearchRec& F) {
  F.State.reset();
  F.ExcludeAttr = ~Attr & (faHidden | faSysFile | faVolumeID | faDirectory);
  std::string Prefix = ExtractFilePath(Path);
  std::string Pattern = ExtractFileName(Path);
  if (Pattern.empty()) return static_cast<int>(ERROR_FILE_NOT_FOUND);

  FileInfo Info;
  if (!HasWildcards(Pattern)) {
    // One exact name: look it up instead of listing the directory.
    DWORD Error = Env::Default()->QueryFileInfo(Path, Info);
    if (Error != ERROR_SUCCESS) return static_cast<int>(Error);
    if (static_cast<int>(Info.Attributes) & F.ExcludeAttr) return static_cast<int>(ERROR_FILE_NOT_FOUND);
    F.State = std::make_shared<PosixFindState>(nullptr, Prefix, Pattern);
    Fill(F, Pattern, Info);
    return 0;
  }

  // Found again through a link: nothing there, as for a missing directory.
  if (ReachesADirectoryTwice(Prefix)) return static_cast<int>(ERROR_PATH_NOT_FOUND);
  DIR* Dir = opendir(Prefix.empty() ? "." : Prefix.c_str());
  if (!Dir) {
    int Error = errno;
    return static_cast<int>(Error == ENOENT || Error == ENOTDIR ? ERROR_PATH_NOT_FOUND
                                                                : ErrnoToWindowsError(Error));
  }
  auto State = std::make_shared<PosixFindState>(Dir, Prefix, Pattern);
  std::string Name;
  if (!State->Next(F.ExcludeAttr, Name, Info)) return static_cast<int>(ERROR_FILE_NOT_FOUND);
  F.State = std::move(State);
  Fill(F, std::move(Name), Info);
  return 0;
}

int PosixEnv::FindNext(TSearchRec& F) {
  auto* State = dynamic_cast<PosixFindState*>(F.State.get());
  if (!State) return static_cast<int>(ERROR_INVALID_HANDLE);
  std::string Name;
  FileInfo Info;
  if (!State->Next(F.ExcludeAttr, Name, Info)) return static_cast<int>(ERROR_NO_MORE_FILES);
  Fill(F, std::move(Name), Info);
  return 0;
}

void PosixEnv::FindClose(TSearchRec& F) { F.State.reset(); }

}  // namespace zt::platform::posix
