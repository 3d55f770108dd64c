// Shared helpers of the file-action tests: files on disk, the order a
// search visits them, a fault-injecting Env, and in-memory project file sets.
#pragma once

#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <strings.h>

#include "frame/ZTFileSet.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "support/ActionTesting.h"
#include "support/FakeHost.h"

namespace zt::testing {

namespace pf = zt::platform;
using Lines = std::vector<std::string>;

inline void WriteFile(const std::string& Path, const std::string& Text = "x") { std::ofstream(Path) << Text; }

// Makes SetFileAttributesA and FileOpen fail with ERROR_ACCESS_DENIED for
// the paths in Victims; installed for its lifetime.
class FaultyFilesEnv : public pf::EnvWrapper {
 public:
  explicit FaultyFilesEnv(std::set<std::string> Victims)
      : EnvWrapper(pf::Env::Platform()), Victims_(std::move(Victims)) {
    Previous_ = pf::Env::SetDefault(this);
  }
  ~FaultyFilesEnv() override { pf::Env::SetDefault(Previous_); }

  bool SetFileAttributesA(const std::string& Path, pf::DWORD Attributes) override {
    if (Victims_.count(Path)) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), false;
    return EnvWrapper::SetFileAttributesA(Path, Attributes);
  }
  pf::THandle FileOpen(const std::string& Path, int Mode) override {
    if (Victims_.count(Path)) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), pf::INVALID_HANDLE_VALUE;
    return EnvWrapper::FileOpen(Path, Mode);
  }

 private:
  std::set<std::string> Victims_;
  pf::Env* Previous_ = nullptr;
};

// A project file set with a fixed file list.
class FakeFileSet : public frame::IZTProjectObject, public frame::IZTFileSet {
 public:
  FakeFileSet(std::string Name, Lines Files) : Name_(std::move(Name)), Files_(std::move(Files)) {}
  std::string GetName() const override { return Name_; }
  std::string GetKind() const override { return frame::ZT_FILESET_OBJECT_KIND; }
  frame::IZTFileSet* AsFileSet() override { return this; }
  void Refresh(frame::TZTAction&) override {}
  std::string GetFilesText(const std::string& Separator) override {
    std::string R;
    for (const auto& F : Files_) R += F + Separator;
    return R;
  }
  int GetFileCount() override { return static_cast<int>(Files_.size()); }
  std::string GetFile(int Index) override { return Files_.at(static_cast<std::size_t>(Index)); }
  std::string GetBaseDir() override { return "/"; }

 private:
  std::string Name_;
  Lines Files_;
};

// A FakeHost whose project holds file sets.
class FileSetHost : public FakeHost, public frame::IZTProjectObjectAPI {
 public:
  std::vector<FakeFileSet> Sets;
  frame::IZTProjectObjectAPI* GetProjectObjectAPI() override { return this; }
  frame::IZTProjectObject* FindObject(const std::string& Name, const std::string& Kind) override {
    if (Kind != frame::ZT_FILESET_OBJECT_KIND) return nullptr;
    for (auto& S : Sets)
      if (strcasecmp(S.GetName().c_str(), Name.c_str()) == 0) return &S;
    return nullptr;
  }
};

// Names of the published properties of a class, in order.
inline Lines PropertyNames(const frame::TZTActionClass& C) {
  Lines R;
  for (const auto& P : C.Properties()) R.push_back(P.Name);
  return R;
}

}  // namespace zt::testing
