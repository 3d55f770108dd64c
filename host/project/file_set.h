// Project file sets (the `filesets:` of a project file): a base directory
// plus include and exclude glob patterns (glob.h). A set is evaluated on the
// disk when it is first used and again on every Refresh; its files are full
// paths in byte order, so a file list is the same on every run.
//
// Thread use: the build thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frame/ZTFileSet.h"
#include "host/project/glob.h"
#include "host/project/project.h"

namespace zt::host {

// The files under BaseDir (absolute) whose relative path matches an include
// pattern and no exclude pattern; no include pattern means every file.
// Files are regular files (symbolic links to files included); the walk does
// not follow links to directories and skips directories it may not read.
// Full paths, sorted byte-wise. A missing base gives no files and sets
// *Problem (when given) to a line saying so.
std::vector<std::string> EvaluateFileSet(const std::string& BaseDir, const std::vector<Glob>& Include,
                                         const std::vector<Glob>& Exclude, std::string* Problem = nullptr);

class FileSet : public frame::IZTProjectObject, public frame::IZTFileSet {
 public:
  // Writes one host line to the log of the action that asked.
  using LogFn = std::function<void(frame::TZTAction& Context, const std::string& Line)>;

  // A relative base is taken from ProjectDir (the project file's folder).
  FileSet(const FileSetDefinition& Definition, const std::string& ProjectDir, LogFn Log = {});

  std::string GetName() const override { return Name_; }
  std::string GetKind() const override { return frame::ZT_FILESET_OBJECT_KIND; }
  frame::IZTFileSet* AsFileSet() override { return this; }

  // Re-evaluates the patterns and logs the count (and any problem) through Context.
  void Refresh(frame::TZTAction& Context) override;
  std::string GetFilesText(const std::string& Separator) override;
  int GetFileCount() override { return static_cast<int>(Files().size()); }
  std::string GetFile(int Index) override;  // "" outside 0..count-1
  std::string GetBaseDir() override { return BaseDir_; }

  const std::vector<std::string>& Files();  // evaluates on first use
  const std::string& BaseDirectory() const { return BaseDir_; }

 private:
  std::string Evaluate();  // returns the problem line, "" when none

  std::string Name_;
  std::string BaseDir_;
  std::vector<Glob> Include_, Exclude_;
  LogFn Log_;
  bool Evaluated_ = false;
  std::vector<std::string> Files_;
};

// The project's objects as actions see them (GetProjectObjectAPI): its file
// sets, found by name in any letter case.
class ProjectObjects : public frame::IZTProjectObjectAPI {
 public:
  ProjectObjects(const std::vector<FileSetDefinition>& Definitions, const std::string& ProjectDir,
                 FileSet::LogFn Log = {});
  frame::IZTProjectObject* FindObject(const std::string& Name, const std::string& Kind) override;

 private:
  std::vector<std::unique_ptr<FileSet>> Sets_;
};

}  // namespace zt::host
