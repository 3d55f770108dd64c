// The package's exported entry points (looked up by the host with dlsym).
#include <cstdio>
#include <exception>

#include "Ztfilereg.h"
#include "Ztservices.h"

#define ZT_EXPORT __attribute__((visibility("default")))

extern "C" {

ZT_EXPORT int ZTPackageApiVersion() { return zt::frame::ZT_HOST_API_VERSION; }

ZT_EXPORT void ZTSetServices(const zt::frame::TZTServices* Services) { zt::package::SetServices(Services); }

// No exception may cross into the host through a C entry point.
ZT_EXPORT void ZTRegister(bool Designing) {
  if (!zt::package::HasServices()) {
    std::fputs("FileAndMiscPackage: ZTRegister called before ZTSetServices\n", stderr);
    return;
  }
  try {
    zt::package::RegisterPackage(Designing);
  } catch (const std::exception& E) {
    std::fprintf(stderr, "FileAndMiscPackage: registration failed: %s\n", E.what());
  }
}

}  // extern "C"
