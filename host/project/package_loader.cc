#include "host/project/package_loader.h"

#include <dlfcn.h>

#include <filesystem>

#include "frame/ZTServices.h"

namespace zt::host {

std::string DefaultPackagePath() {
  std::error_code Ec;
  auto Exe = std::filesystem::read_symlink("/proc/self/exe", Ec);
  return (Ec ? std::filesystem::path("FileAndMiscPackage.so") : Exe.parent_path() / "FileAndMiscPackage.so").string();
}

void LoadPackage(const std::string& Path, ActionRegistry& Registry, bool Designing) {
  void* Lib = dlopen(Path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!Lib) throw PackageError("cannot load the action package: " + std::string(dlerror()));
  using VersionFn = int (*)();
  using ServicesFn = void (*)(const frame::TZTServices*);
  using RegisterFn = void (*)(bool);
  auto Version = reinterpret_cast<VersionFn>(dlsym(Lib, "ZTPackageApiVersion"));
  auto SetServices = reinterpret_cast<ServicesFn>(dlsym(Lib, "ZTSetServices"));
  auto Register = reinterpret_cast<RegisterFn>(dlsym(Lib, "ZTRegister"));
  if (!Version || !SetServices || !Register)
    throw PackageError(Path + ": not an action package (ZTPackageApiVersion, ZTSetServices or ZTRegister missing)");
  if (Version() != frame::ZT_HOST_API_VERSION)
    throw PackageError(Path + ": built for host API version " + std::to_string(Version()) + ", this zt has version " +
                       std::to_string(frame::ZT_HOST_API_VERSION));
  static frame::TZTServices Services;  // the package keeps the pointer
  Services.ActionServices = &Registry;
  Services.ScriptingServices = &Registry;
  Services.OptionsServices = &Registry;
  SetServices(&Services);
  Register(Designing);
}

}  // namespace zt::host
