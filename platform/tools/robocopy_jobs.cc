// The jobs of the built-in robocopy: one file copied (through the layer's
// copy, which never leaves half a file), retries as /R and /W say, the
// workers of /MT:n, and the ordered output that keeps lines in walk order.
#include <chrono>
#include <filesystem>

#include "platform/dates.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/stop.h"
#include "platform/tools/robocopy.h"
#include "platform/tools/robocopy_engine.h"

namespace zt::platform {

namespace {

constexpr DWORD kProtected = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

// Errors that no wait cures: the path is wrong, not the moment.
bool FailsAtOnce(DWORD E) {
  return E == ERROR_FILE_NOT_FOUND || E == ERROR_PATH_NOT_FOUND || E == ERROR_INVALID_NAME ||
         E == ERROR_FILENAME_EXCED_RANGE || E == ERROR_DIRECTORY;
}

DWORD CopyProgress(std::int64_t Total, std::int64_t Done, std::int64_t, std::int64_t, DWORD, DWORD, void* Data) {
  auto* P = static_cast<std::pair<IToolOutput*, const std::string*>*>(Data);
  P->first->Progress(*P->second, Total > 0 ? static_cast<int>(Done * 100 / Total) : 100);
  return PROGRESS_CONTINUE;
}

}  // namespace

std::string CanonicalPath(const std::string& Path) {
  std::error_code Ec;
  std::filesystem::path P = std::filesystem::weakly_canonical(std::filesystem::absolute(Path, Ec), Ec);
  std::string S = P.lexically_normal().string();
  while (S.size() > 1 && IsPathDelimiter(S.back())) S.pop_back();
  return S;
}

bool IsInside(const std::string& Inner, const std::string& Outer) {
  if (Inner == Outer) return true;
  const std::string Prefix = IncludeTrailingPathDelimiter(Outer);
  return Inner.compare(0, Prefix.size(), Prefix) == 0;
}

bool DeleteFileForce(const std::string& Path) {
  if (DeleteFile(Path)) return true;
  const DWORD Error = GetLastError();
  const DWORD A = GetFileAttributesA(Path);
  if (Error != ERROR_ACCESS_DENIED || A == INVALID_FILE_ATTRIBUTES || !(A & FILE_ATTRIBUTE_READONLY) ||
      !SetFileAttributesA(Path, A & ~FILE_ATTRIBUTE_READONLY)) {
    SetLastError(Error);
    return false;
  }
  if (DeleteFile(Path)) return true;
  const DWORD Again = GetLastError();
  SetFileAttributesA(Path, A);
  SetLastError(Again);
  return false;
}

std::uint64_t TOrderedLines::Open(std::vector<std::string> Lines, bool Finished) {
  std::lock_guard<std::mutex> L(Mutex_);
  Slots_.push_back({std::move(Lines), Finished});
  return First_ + Slots_.size() - 1;
}

void TOrderedLines::Add(std::uint64_t Slot, std::string Line) {
  std::lock_guard<std::mutex> L(Mutex_);
  Slots_[Slot - First_].Lines.push_back(std::move(Line));
}

void TOrderedLines::Finish(std::uint64_t Slot) {
  std::lock_guard<std::mutex> L(Mutex_);
  Slots_[Slot - First_].Finished = true;
}

void TOrderedLines::Flush() {
  std::vector<std::string> Ready;
  {
    std::lock_guard<std::mutex> L(Mutex_);
    // The front slot's lines go out as they come, finished or not.
    while (!Slots_.empty()) {
      Slot& Front = Slots_.front();
      for (std::string& Line : Front.Lines) Ready.push_back(std::move(Line));
      Front.Lines.clear();
      if (!Front.Finished) break;
      Slots_.pop_front();
      ++First_;
    }
  }
  for (const std::string& Line : Ready) Emit_(Line);
}

TRobocopyEngine::TRobocopyEngine(const TRobocopySettings& S, IToolOutput& Out, BOOL* Cancel,
                                 std::function<void(const std::string&)> Emit, std::string SourceDir,
                                 std::string DestDir)
    : S_(S), Out_(Out), Cancel_(Cancel), Lines_(std::move(Emit)), SourceDir_(std::move(SourceDir)),
      DestDir_(std::move(DestDir)) {
  SourceCanon_ = CanonicalPath(SourceDir_);
  DestCanon_ = CanonicalPath(DestDir_);
  DestInsideSource_ = IsInside(DestCanon_, SourceCanon_);
  SourceInsideDest_ = IsInside(SourceCanon_, DestCanon_);
  for (int I = 0; S_.Threads > 1 && I < S_.Threads; ++I) Workers_.emplace_back([this] { Worker(); });
}

TRobocopyEngine::~TRobocopyEngine() {
  {
    std::lock_guard<std::mutex> L(QueueMutex_);
    Closing_ = true;
  }
  QueueChanged_.notify_all();
  for (std::thread& T : Workers_) T.join();
}

bool TRobocopyEngine::Stopped() {
  if (!Stop_ && ((Cancel_ && std::atomic_ref<BOOL>(*Cancel_).load()) || LongOperationsCancelled())) Stop_ = true;
  if (!Stop_ && std::this_thread::get_id() == WalkerThread_ && Out_.StopRequested()) Stop_ = true;
  return Stop_;
}

int TRobocopyEngine::Run(bool DestExists) {
  WalkerThread_ = std::this_thread::get_id();
  Walk("", 1, DestExists);
  Drain();
  if (!S_.ListOnly && !Stopped()) {
    // Deepest first, so that a parent emptied by its children goes too.
    if (S_.MoveDirs) EmptiedDirs_.push_back(ExcludeTrailingPathDelimiter(SourceDir_));
    for (const std::string& Dir : EmptiedDirs_) RemoveDirectory(Dir);
    for (const auto& [Dest, Source] : DirTimes_) {
      WIN32_FILE_ATTRIBUTE_DATA Data;
      if (GetFileAttributesExA(Source, Data)) SetFileLastWriteTime(Dest, Data.ftLastWriteTime);
    }
  }
  if (Stopped()) return kRobocopyFatal;
  int Code = 0;
  if (Files_.Copied > 0) Code |= kRobocopyCopied;
  if (Files_.Extra + Dirs_.Extra > 0) Code |= kRobocopyExtras;
  if (Files_.Mismatched + Dirs_.Mismatched > 0) Code |= kRobocopyMismatches;
  if (Files_.Failed + Dirs_.Failed > 0 || AnyFailure_) Code |= kRobocopyFailures;
  return Code;
}

void TRobocopyEngine::Log(std::uint64_t Slot, std::string Line) {
  Lines_.Add(Slot, std::move(Line));
  if (std::this_thread::get_id() == WalkerThread_) Lines_.Flush();  // a retry's wait is seen as it starts
}

bool TRobocopyEngine::Retry(const std::string& Verb, const std::string& Path, std::uint64_t Slot,
                            const std::function<bool()>& Step) {
  for (int K = 0;; ++K) {
    if (Step()) return true;
    const DWORD Error = GetLastError();
    if (Stopped()) return false;
    Log(Slot, " --> Error " + Verb + " : " + Path);
    Log(Slot, " --> " + SysErrorMessage(Error));
    if (FailsAtOnce(Error) || K >= S_.Retries) {
      Log(Slot, " --> Giving up on : " + Path);
      return false;
    }
    Log(Slot, " --> Waiting " + std::to_string(S_.Wait) + " seconds before retry " + std::to_string(K + 1) + " of " +
                  std::to_string(S_.Retries));
    // The wait polls the stop every 100 ms.
    for (int Tick = 0; Tick < S_.Wait * 10; ++Tick) {
      if (Stopped()) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }
}

bool TRobocopyEngine::CopyOne(const Job& J) {
  // The job is to make the destination equal the source: a read-only,
  // hidden or system file there is replaced too (and keeps its attributes
  // when the copy fails).
  const bool Unprotect = J.DestAttr != INVALID_FILE_ATTRIBUTES && (J.DestAttr & kProtected);
  if (Unprotect && !SetFileAttributesA(J.Dest, J.DestAttr & ~kProtected)) return false;
  bool Ok;
  if (S_.CreateOnly) {
    Ok = WriteFileAtomically(J.Dest, "") && SetFileLastWriteTime(J.Dest, J.File.Time) &&
         SetFileAttributesA(J.Dest, (J.File.Attr & 0x27) | FILE_ATTRIBUTE_ARCHIVE);
  } else if (!S_.NoProgress && Workers_.empty()) {
    std::pair<IToolOutput*, const std::string*> P{&Out_, &J.Source};
    Ok = CopyFileExA(J.Source, J.Dest, &CopyProgress, &P, Cancel_, 0);
  } else {
    Ok = CopyFileExA(J.Source, J.Dest, nullptr, nullptr, Cancel_, 0);
  }
  if (!Ok) {
    const DWORD Error = GetLastError();
    if (Unprotect) SetFileAttributesA(J.Dest, J.DestAttr);
    SetLastError(Error);
    return false;
  }
  if (S_.CopyFlags.find('T') == std::string::npos) SetFileLastWriteTime(J.Dest, GetSystemTimeAsFileTime());
  const bool KeepAttributes = S_.CopyFlags.find('A') != std::string::npos;
  if (!KeepAttributes || S_.AddAttributes || S_.RemoveAttributes) {
    DWORD A = KeepAttributes ? GetFileAttributesA(J.Dest) : FILE_ATTRIBUTE_ARCHIVE;
    if (A != INVALID_FILE_ATTRIBUTES) SetFileAttributesA(J.Dest, (A | S_.AddAttributes) & ~S_.RemoveAttributes);
  }
  return true;
}

void TRobocopyEngine::RunJob(Job& J, std::uint64_t Slot) {
  bool Ok = true;
  if (J.Copy) {
    Ok = S_.ListOnly || Retry("Copying File", J.Source, Slot, [this, &J] { return CopyOne(J); });
    std::lock_guard<std::mutex> L(CountMutex_);
    if (Ok) {
      ++Files_.Copied;
      Bytes_.Copied += J.File.Size;
    } else if (!Stop_) {
      ++Files_.Failed;
      Bytes_.Failed += J.File.Size;
    }
  }
  if (Ok && !S_.ListOnly && J.Copy && S_.ResetArchive)
    SetFileAttributesA(J.Source, static_cast<DWORD>(J.File.Attr) & ~FILE_ATTRIBUTE_ARCHIVE & 0x27);
  if (Ok && !S_.ListOnly && J.DeleteSource &&
      !Retry("Deleting", J.Source, Slot, [&J] { return DeleteFileForce(J.Source); }) && !Stop_)
    AnyFailure_ = true;
  Lines_.Finish(Slot);
}

void TRobocopyEngine::Submit(Job J, std::vector<std::string> Lines) {
  const std::uint64_t Slot = Lines_.Open(std::move(Lines), false);
  if (Workers_.empty()) {
    RunJob(J, Slot);
    Lines_.Flush();
    return;
  }
  auto* Owned = new Job(std::move(J));
  std::unique_lock<std::mutex> L(QueueMutex_);
  // A bounded queue: the walker waits for the workers (passing on their lines
  // meanwhile) rather than listing the whole tree ahead of them.
  while (Queue_.size() >= Workers_.size() * 4) {
    L.unlock();
    Lines_.Flush();
    L.lock();
    QueueChanged_.wait_for(L, std::chrono::milliseconds(5));
  }
  Queue_.emplace_back(Owned, Slot);
  L.unlock();
  QueueChanged_.notify_all();
  Lines_.Flush();
}

void TRobocopyEngine::Worker() {
  std::unique_lock<std::mutex> L(QueueMutex_);
  for (;;) {
    QueueChanged_.wait(L, [this] { return Closing_ || !Queue_.empty(); });
    if (Queue_.empty()) return;
    auto [J, Slot] = Queue_.front();
    Queue_.pop_front();
    ++Busy_;
    L.unlock();
    QueueChanged_.notify_all();
    RunJob(*J, Slot);
    delete J;
    L.lock();
    --Busy_;
    QueueChanged_.notify_all();
  }
}

void TRobocopyEngine::Drain() {
  std::unique_lock<std::mutex> L(QueueMutex_);
  while (!Queue_.empty() || Busy_ > 0) {
    L.unlock();
    Lines_.Flush();
    L.lock();
    QueueChanged_.wait_for(L, std::chrono::milliseconds(5));
  }
  L.unlock();
  Lines_.Flush();
}

bool TRobocopyEngine::DeleteTree(const std::string& Path, std::uint64_t Slot) {
  const DWORD A = GetFileAttributesA(Path);
  // A link to a directory goes as a link; what it leads to stays.
  if (A != INVALID_FILE_ATTRIBUTES && !(A & FILE_ATTRIBUTE_REPARSE_POINT)) {
    TSearchRec F;
    std::vector<std::pair<std::string, bool>> Children;
    if (FindFirst(IncludeTrailingPathDelimiter(Path) + "*", faAnyFile, F) == 0) {
      do {
        if (F.Name != "." && F.Name != "..")
          Children.emplace_back(IncludeTrailingPathDelimiter(Path) + F.Name, (F.Attr & faDirectory) != 0);
      } while (FindNext(F) == 0);
      FindClose(F);
    }
    bool Ok = true;
    for (const auto& Entry : Children) {
      const std::string& Child = Entry.first;  // a named variable: clang's lambdas cannot capture a binding
      if (Stopped()) return false;
      Ok = (Entry.second ? DeleteTree(Child, Slot)
                         : Retry("Deleting", Child, Slot, [&Child] { return DeleteFileForce(Child); })) && Ok;
    }
    if (!Ok) return false;
    if (A & FILE_ATTRIBUTE_READONLY) SetFileAttributesA(Path, A & ~FILE_ATTRIBUTE_READONLY);
  }
  return Retry("Deleting", Path, Slot, [&Path] { return RemoveDirectory(Path); });
}

}  // namespace zt::platform
