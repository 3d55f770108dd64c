// "If COM Class Registered" through zt: classes registered in the store
// (by class and programmatic identifier), the child actions it runs or
// skips, the status it leaves when the test does not hold.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// The action-end event of action Id.
nlohmann::json ActionEnd(const ZtResult& R, const std::string& Id) {
  for (const auto& E : R.Events)
    if (E.value("event", "") == "action-end" && E.value("id", "") == Id) return E;
  return nullptr;
}

// A condition (Settings: its property lines) with one child that marks the
// store when it runs.
std::string Condition(const std::string& Settings, const std::string& Mark) {
  return "  - action: If COM Class Registered\n    ignoreFailure: true\n" + Settings +
         "    actions:\n      - action: Set Registry Value\n        RegRoot: HKEY_CURRENT_USER\n"
         "        RegKey: Ran\n        AllowCreateKey: true\n        RegValueName: " +
         Mark + "\n";
}

TEST(ComConditionEndToEnd, RunsSkipsOrFailsItsChildren) {
  TempDir Dir;
  const std::string Store = Dir / "registry.json";
  WriteText(Store, R"({
  "HKEY_CLASSES_ROOT\\Acme.Tool\\CLSID": {"": {"type": "REG_SZ", "data": "{0002DF01-0000-0000-C000-000000000046}"}},
  "HKEY_CLASSES_ROOT\\CLSID\\{0002df01-0000-0000-c000-000000000046}": {}
})");
  const std::string ByGuid = "    UseProgID: false\n    CLSID: ";
  ZtResult R = RunZt(
      Dir.Path(),
      "name: COM\nvariables:\n  PROG: Acme.Tool\nactions:\n" + Condition("    ProgID: Acme.Tool\n", "a") +
          Condition(ByGuid + "0002df01-0000-0000-c000-000000000046\n", "b") +
          Condition("    ProgID: Missing.Tool\n", "c") +
          Condition("    ProgID: Missing.Tool\n    Invert: true\n", "d") +
          Condition(ByGuid + "\"{0002DF01-0000\"\n", "e") +
          Condition(ByGuid + "\"{00000000-0000-0000-0000-000000000000}\"\n"
                             "    FailIfNotRegistered: true\n",
                    "f") +
          Condition("    ProgID: \"%NOPE%\"\n", "g") + Condition("    ProgID: \"%PROG%\"\n", "h"),
      {"--registry", Store});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  const Lines Expected[] = {
      {"COM Class Acme.Tool is registered."},
      {"COM Class {0002df01-0000-0000-c000-000000000046} is registered."},
      {"COM Class Missing.Tool is not registered."},
      {"COM Class Missing.Tool is not registered."},
      {"Class ID {0002DF01-0000 is not a valid GUID."},
      {"COM Class {00000000-0000-0000-0000-000000000000} is not registered."},
      {"Cannot expand Programmatic ID: variable \"NOPE\" is not defined", "Programmatic ID is invalid."},
      // Looked up by the property as written ("%PROG%"), named by its expansion.
      {"COM Class Acme.Tool is not registered."},
  };
  const char* Results[] = {"success", "success", "success", "success",
                           "ignored", "ignored", "ignored", "success"};
  const char* Children[] = {"success", "success", "skipped", "success",
                            "skipped", "skipped", "skipped", "skipped"};
  for (int I = 0; I < 8; ++I) {
    const std::string Id = std::to_string(I + 1);
    SCOPED_TRACE(Id);
    EXPECT_EQ(Messages(R, Id), Expected[I]);
    EXPECT_EQ(ActionResult(R, Id), Results[I]);
    EXPECT_EQ(ActionResult(R, Id + ".1"), Children[I]);
    // The status marks a condition that did not hold and did not fail.
    EXPECT_EQ(ActionEnd(R, Id).value("status", 0), Id == "3" || Id == "8" ? 9 : 0);
  }
  EXPECT_EQ(ReadText(Store).find("\"c\""), std::string::npos);
  EXPECT_NE(ReadText(Store).find("\"d\""), std::string::npos);
}

}  // namespace
}  // namespace zt::testing
