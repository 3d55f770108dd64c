#include "host/project/file_set.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <strings.h>

namespace zt::host {

namespace fs = std::filesystem;

namespace {

bool AnyMatches(const std::vector<Glob>& Globs, const std::string& Path) {
  return std::any_of(Globs.begin(), Globs.end(), [&](const Glob& G) { return G.Matches(Path); });
}

std::string NativePath(const std::string& BaseDir, const std::string& Relative) {
  std::string R = BaseDir;
  if (R.empty() || R.back() != fs::path::preferred_separator) R += static_cast<char>(fs::path::preferred_separator);
  for (char C : Relative) R += C == '/' ? static_cast<char>(fs::path::preferred_separator) : C;
  return R;
}

}  // namespace

std::vector<std::string> EvaluateFileSet(const std::string& BaseDir, const std::vector<Glob>& Include,
                                         const std::vector<Glob>& Exclude, std::string* Problem) {
  std::vector<std::string> Files;
  std::error_code Ec;
  if (!fs::is_directory(BaseDir, Ec)) {
    if (Problem) *Problem = "the base directory " + BaseDir + " does not exist";
    return Files;
  }
  const fs::path Base(BaseDir);
  const std::string BaseText = Base.generic_string();
  // Entries are Base + "/" + relative path.
  const std::size_t Skip = BaseText.size() + (BaseText.empty() || BaseText.back() != '/' ? 1 : 0);
  fs::recursive_directory_iterator It(Base, fs::directory_options::skip_permission_denied, Ec), End;
  for (; !Ec && It != End; It.increment(Ec)) {
    const std::string Relative = It->path().generic_string().substr(Skip);
    std::error_code TypeEc;
    if (It->is_directory(TypeEc)) {
      // A directory excluded as a whole is not entered at all.
      if (std::any_of(Exclude.begin(), Exclude.end(),
                      [&](const Glob& G) { return G.MatchesEverythingBelow(Relative); }))
        It.disable_recursion_pending();
      continue;
    }
    if (!It->is_regular_file(TypeEc)) continue;
    if (!Include.empty() && !AnyMatches(Include, Relative)) continue;
    if (AnyMatches(Exclude, Relative)) continue;
    Files.push_back(NativePath(BaseDir, Relative));
  }
  if (Ec && Problem) *Problem = "could not read all of " + BaseDir + ": " + Ec.message();
  std::sort(Files.begin(), Files.end());
  return Files;
}

FileSet::FileSet(const FileSetDefinition& Definition, const std::string& ProjectDir, LogFn Log)
    : Name_(Definition.Name), Log_(std::move(Log)) {
  fs::path Base = fs::path(ProjectDir) / Definition.Base;  // an absolute base replaces ProjectDir
  BaseDir_ = fs::absolute(Base).lexically_normal().string();
  while (BaseDir_.size() > 1 && BaseDir_.back() == fs::path::preferred_separator) BaseDir_.pop_back();
  for (const auto& P : Definition.Include) Include_.emplace_back(P);
  for (const auto& P : Definition.Exclude) Exclude_.emplace_back(P);
}

std::string FileSet::Evaluate() {
  std::string Problem;
  Files_ = EvaluateFileSet(BaseDir_, Include_, Exclude_, &Problem);
  Evaluated_ = true;
  return Problem;
}

const std::vector<std::string>& FileSet::Files() {
  if (!Evaluated_) Evaluate();
  return Files_;
}

void FileSet::Refresh(frame::TZTAction& Context) {
  const std::string Problem = Evaluate();
  if (!Log_) return;
  if (!Problem.empty()) Log_(Context, "File set \"" + Name_ + "\": " + Problem);
  Log_(Context, "File set \"" + Name_ + "\": " + std::to_string(Files_.size()) + " files");
}

std::string FileSet::GetFilesText(const std::string& Separator) {
  std::string Text;
  for (const auto& F : Files()) Text += F + Separator;
  return Text;
}

std::string FileSet::GetFile(int Index) {
  const auto& F = Files();
  return Index >= 0 && Index < static_cast<int>(F.size()) ? F[static_cast<std::size_t>(Index)] : std::string();
}

ProjectObjects::ProjectObjects(const std::vector<FileSetDefinition>& Definitions, const std::string& ProjectDir,
                               FileSet::LogFn Log) {
  for (const auto& D : Definitions) Sets_.push_back(std::make_unique<FileSet>(D, ProjectDir, Log));
}

frame::IZTProjectObject* ProjectObjects::FindObject(const std::string& Name, const std::string& Kind) {
  if (strcasecmp(Kind.c_str(), frame::ZT_FILESET_OBJECT_KIND) != 0) return nullptr;
  for (auto& S : Sets_)
    if (strcasecmp(S->GetName().c_str(), Name.c_str()) == 0) return S.get();
  return nullptr;
}

}  // namespace zt::host
