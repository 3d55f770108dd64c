// The package's entry points where zt cannot reach them: registering before
// the host set its services, and a type not built yet that runs anyway. (What
// the package registers is checked through `zt actions` and `zt help`.)
#include <gtest/gtest.h>

#include "Ztplaceholders.h"
#include "frame/ZTServices.h"
#include "support/FakeHost.h"

namespace zt::package {
namespace {
ZT_PLACEHOLDER(TStandIn, "Stand-in")
}  // namespace
}  // namespace zt::package

namespace zt::testing {
namespace {

TEST(Registration, RegisterBeforeServicesAreSetDoesNothing) {
  ZTSetServices(nullptr);
  ZTRegister(true);  // must neither crash nor throw
  EXPECT_EQ(ZTPackageApiVersion(), frame::ZT_HOST_API_VERSION);
}

TEST(Registration, ATypeNotAvailableYetFailsWithOneLine) {
  FakeHost Host;
  package::TStandIn A;
  A.SetHost(&Host);
  EXPECT_FALSE(A.Execute());
  EXPECT_EQ(Host.Messages, std::vector<std::string>{"Stand-in is not available yet"});
  EXPECT_FALSE(package::TStandIn::ClassType().IsAvailable());
}

}  // namespace
}  // namespace zt::testing
