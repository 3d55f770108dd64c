#include "images/Imagesmodule.h"

#include <dlfcn.h>

#include <mutex>

#include "platform/paths.h"

namespace zt::package {

namespace {

// The folder this package was loaded from: the module is installed beside it.
std::string PackageDirectory() {
  Dl_info Info{};
  if (dladdr(reinterpret_cast<void*>(&LoadImagesModule), &Info) == 0 || !Info.dli_fname) return "";
  return platform::ExtractFilePath(Info.dli_fname);
}

}  // namespace

const TZTImagesModule* LoadImagesModule(std::string& Error) {
  static std::once_flag Once;
  static TZTImagesModule Module{};
  static std::string LoadError;
  std::call_once(Once, [] {
    void* Lib = dlopen((PackageDirectory() + "FileAndMiscImages.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!Lib) {
      LoadError = dlerror();
      return;
    }
    auto Version = reinterpret_cast<TZTImagesVersionFn>(dlsym(Lib, "ZTImagesVersion"));
    Module.Process = reinterpret_cast<TZTImagesProcessFn>(dlsym(Lib, "ZTImagesProcess"));
    Module.Free = reinterpret_cast<TZTImagesFreeFn>(dlsym(Lib, "ZTImagesFree"));
    if (!Version || !Module.Process || !Module.Free || Version() != kImagesModuleVersion) {
      LoadError = "FileAndMiscImages.so is not the module of this package";
      Module = {};
    }
  });
  Error = LoadError;
  return Module.Process ? &Module : nullptr;
}

}  // namespace zt::package
