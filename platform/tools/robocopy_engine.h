// Inside the built-in robocopy: the walker (robocopy_walk.cc) lists,
// selects and classifies, creates directories and purges; file copies (and
// the moves' deletes) are jobs that run on the walker's thread or, with
// /MT:n, on n workers (robocopy_jobs.cc). Each job writes its lines into its
// own slot of an ordered output, which the walker's thread passes on in walk
// order.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/tools/robocopy_args.h"
#include "platform/tools/tool_output.h"

namespace zt::platform {

// Lines in slots, passed on in slot order once each slot is finished.
class TOrderedLines {
 public:
  explicit TOrderedLines(std::function<void(const std::string&)> Emit) : Emit_(std::move(Emit)) {}
  // A new slot at the end; Finished slots take no more lines.
  std::uint64_t Open(std::vector<std::string> Lines, bool Finished);
  void Add(std::uint64_t Slot, std::string Line);
  void Finish(std::uint64_t Slot);
  // Passes on the lines of the slots at the front, up to and including the
  // first unfinished one (the walker's thread only).
  void Flush();

 private:
  struct Slot {
    std::vector<std::string> Lines;
    bool Finished = false;
  };
  std::function<void(const std::string&)> Emit_;
  std::mutex Mutex_;
  std::deque<Slot> Slots_;
  std::uint64_t First_ = 0;  // number of the slot at the front
};

struct TRobocopyCounts {
  std::int64_t Total = 0, Copied = 0, Mismatched = 0, Failed = 0, Extra = 0;
};

// One directory entry as listed.
struct TRobocopyEntry {
  std::string Name;
  int Attr = 0;
  std::int64_t Size = 0;
  TFileTime Time = 0;
  bool IsDir() const { return (Attr & 0x10) != 0; }
  bool IsLink() const { return (Attr & 0x400) != 0; }
};

// One file to copy, or a source file to delete (a move of a file the
// destination already holds).
struct TRobocopyJob {
  std::string Source, Dest;
  TRobocopyEntry File;
  DWORD DestAttr = 0xFFFFFFFF;  // INVALID_FILE_ATTRIBUTES: no file there yet
  bool Copy = true;             // false: only the move's delete
  bool DeleteSource = false;    // /MOV once the destination holds the file
};

// The entries of Dir (with a trailing delimiter), "." and ".." left out;
// shared with the built-in xcopy.
std::vector<TRobocopyEntry> ListDirectory(const std::string& Dir);
// The path with links and "." / ".." resolved (as far as it exists).
std::string CanonicalPath(const std::string& Path);
// True when Inner is Outer or lies below it (both canonical).
bool IsInside(const std::string& Inner, const std::string& Outer);
// DeleteFile that also takes a read-only file (a purge or a move removes
// what it is told to, as robocopy does).
bool DeleteFileForce(const std::string& Path);

class TRobocopyEngine {
 public:
  TRobocopyEngine(const TRobocopySettings& S, IToolOutput& Out, BOOL* Cancel,
                  std::function<void(const std::string&)> Emit, std::string SourceDir, std::string DestDir);
  ~TRobocopyEngine();
  // Walks from the roots (the source existing; the destination existing
  // or, with /L, perhaps missing); returns the exit code bits.
  int Run(bool DestExists);
  const TRobocopyCounts& Dirs() const { return Dirs_; }
  const TRobocopyCounts& Files() const { return Files_; }
  const TRobocopyCounts& Bytes() const { return Bytes_; }
  bool Stopped();

 private:
  using Entry = TRobocopyEntry;
  using Job = TRobocopyJob;
  // robocopy_walk.cc
  void Walk(const std::string& Rel, int Level, bool DestExists);
  bool Selected(const Entry& E, const std::string& FullPath) const;
  bool ExcludedDir(const Entry& E, const std::string& FullPath) const;
  void Extras(const std::string& Rel, const std::vector<Entry>& Source, const std::vector<Entry>& Dest,
              bool WalkDirs);
  bool EnsureDirs();
  std::string FileLine(const std::string& Tag, const std::string& Rel, const Entry& E, bool FromDest) const;
  std::string DirLine(const std::string& Tag, const std::string& Rel, bool FromDest) const;
  // robocopy_jobs.cc
  void Submit(Job J, std::vector<std::string> Lines);
  void RunJob(Job& J, std::uint64_t Slot);
  bool CopyOne(const Job& J);
  // Retries Step as /R and /W say, logging into Slot; false after the last.
  bool Retry(const std::string& Verb, const std::string& Path, std::uint64_t Slot, const std::function<bool()>& Step);
  void Log(std::uint64_t Slot, std::string Line);
  bool DeleteTree(const std::string& Path, std::uint64_t Slot);
  void Worker();
  void Drain();

  const TRobocopySettings& S_;
  IToolOutput& Out_;
  BOOL* Cancel_;
  TOrderedLines Lines_;
  std::string SourceDir_, DestDir_;          // with a trailing delimiter
  std::string SourceCanon_, DestCanon_;      // canonical, for "inside" checks
  bool DestInsideSource_ = false, SourceInsideDest_ = false;
  std::vector<std::pair<std::string, std::string>> DirTimes_;  // /DCOPY:T: new directory, its source
  std::atomic<bool> AnyFailure_{false};      // a delete or purge that failed (exit bit 8)
  std::atomic<bool> Stop_{false};
  std::thread::id WalkerThread_;  // the caller's: the only one that asks Out_
  std::vector<std::string> PendingDirs_;    // /S: destination directories not created yet
  std::vector<std::string> EmptiedDirs_;    // /MOVE: source directories to remove, deepest first
  bool SaidInside_ = false;
  std::mutex CountMutex_;
  TRobocopyCounts Dirs_, Files_, Bytes_;
  // Workers (/MT:n > 1)
  std::vector<std::thread> Workers_;
  std::mutex QueueMutex_;
  std::condition_variable QueueChanged_;
  std::deque<std::pair<Job*, std::uint64_t>> Queue_;
  int Busy_ = 0;
  bool Closing_ = false;
};

}  // namespace zt::platform
