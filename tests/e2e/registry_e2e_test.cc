// "Read Registry Value", "Set Registry Value" and "Delete Registry Value"
// run through zt on a registry store of their own (--registry): log lines,
// the store afterwards, the variables the build leaves.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// A test directory with a store in it; Run passes the store to zt.
struct RegistryRun {
  TempDir Dir;
  std::string Store = Dir / "registry.json";

  ZtResult Run(const std::string& Project) { return RunZt(Dir.Path(), Project, {"--registry", Store}); }
};

// One action on a key of HKEY_CURRENT_USER whose failure is ignored, with
// Extra lines of properties ("    Name: value\n").
std::string Step(const std::string& Action, const std::string& Key, const std::string& Extra) {
  return "  - action: " + Action + "\n    RegRoot: HKEY_CURRENT_USER\n    RegKey: " + Key +
         "\n    ignoreFailure: true\n" + Extra;
}

const char* kAcmeStore = R"({
  "HKEY_CURRENT_USER\\Software\\Acme": {
    "a": {"type": "REG_SZ", "data": "1"},
    "Name": {"type": "REG_SZ", "data": "Acme Tool"}
  },
  "HKEY_CURRENT_USER\\Software\\Acme\\Leaf": {}
}
)";

TEST(RegistryEndToEnd, SetsEveryTypeAndReadsItBack) {
  RegistryRun T;
  ZtResult R = T.Run(R"(name: Registry
variables:
  APP: Acme
  S: ""
  I: 0
  D: 0
  B: false
actions:
  - {action: Set Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Software\%APP%\Tool,
     RegValueName: Name, RegValue: "%APP% Tool", AllowCreateKey: true}
  - {action: Set Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Software\%APP%\Tool,
     RegValueName: Count, RegValType: rtInteger, RegValue: "-5"}
  - {action: TSetRegValueAction, RegRoot: 0x80000001, RegKey: \Software\Acme\Tool, RegValueName: Mask,
     RegValType: rtDWord, RegValue: "4294967295"}
  - {action: Set Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Software\Acme\Tool,
     RegValueName: Enabled, RegValType: rtBoolean, RegValue: "True"}
  - {action: Read Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: software\ACME\tool,
     RegValueName: NAME, ZTVariable: S}
  - {action: Read Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Software\Acme\Tool,
     RegValueName: Count, RegValType: rtInteger, ZTVariable: I}
  - {action: Read Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Software\Acme\Tool,
     RegValueName: Mask, RegValType: rtDWord, ZTVariable: D}
  - {action: Read Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Software\Acme\Tool,
     RegValueName: Enabled, RegValType: rtBoolean, ZTVariable: B}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  const Lines Expected[] = {{"Set Value Name to : Acme Tool"},  {"Set Value Count to : -5"},
                            {"Set Value Mask to : 4294967295"}, {"Set Value Enabled to : True"},
                            {"Read Value : Acme Tool"},         {"Read Value : -5"},
                            {"Read Value : 4294967295"},        {"Read Value : True"}};
  for (int I = 0; I < 8; ++I) EXPECT_EQ(Messages(R, std::to_string(I + 1)), Expected[I]);
  EXPECT_EQ(FinalVariables(R),
            nlohmann::json::parse(R"({"APP":"Acme","S":"Acme Tool","I":-5,"D":4294967295,"B":true})"));
  EXPECT_EQ(ReadText(T.Store), R"({
  "HKEY_CURRENT_USER\\Software\\Acme\\Tool": {
    "Name": {"type": "REG_SZ", "data": "Acme Tool"},
    "Count": {"type": "REG_DWORD", "data": 4294967291},
    "Mask": {"type": "REG_DWORD", "data": 4294967295},
    "Enabled": {"type": "REG_DWORD", "data": 1}
  }
}
)");
}

TEST(RegistryEndToEnd, FailedReadsAndWritesSayWhyAndChangeNothing) {
  RegistryRun T;
  WriteText(T.Store, kAcmeStore);
  const std::string Read = "Read Registry Value", Set = "Set Registry Value", Acme = "Software\\Acme";
  ZtResult R =
      T.Run("name: Failures\nvariables:\n  V: x\nactions:\n" +
            Step(Read, Acme, "    RegValueName: Name\n    ZTVariable: NEW\n") +
            Step(Read, Acme, "    RegValueName: Name\n    RegValType: rtDWord\n    ZTVariable: V\n") +
            Step(Read, Acme, "    RegValueName: Missing\n    RegValType: rtInteger\n    ZTVariable: V\n") +
            Step(Read, "Software\\%V%\\Nowhere", "    ZTVariable: V\n") +
            Step(Read, "Software\\%NOWHERE%", "    ZTVariable: V\n") +
            Step(Set, Acme, "    RegValueName: a\n    RegValType: rtInteger\n    RegValue: abc\n") +
            Step(Set, Acme, "    RegValueName: a\n    RegValType: rtBoolean\n    RegValue: maybe\n") +
            Step(Set, "Software\\Acme\\New", "    RegValueName: a\n    RegValue: \"1\"\n") +
            Step(Read, Acme, "    RegValueName: Missing\n    ZTVariable: V\n"));
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), Lines{"Variable : NEW is not defined"});
  EXPECT_EQ(Messages(R, "2"), Lines{"Invalid data type for 'Name'"});
  EXPECT_EQ(Messages(R, "3"), Lines{"Failed to get data for 'Missing'"});
  EXPECT_EQ(Said(R, "4"), Lines{"Key does not exist : Software\\%V%\\Nowhere"});
  EXPECT_EQ(Said(R, "5"), Lines{"Error Expanding String property : Variable \"NOWHERE\" is not defined"});
  EXPECT_EQ(Messages(R, "6"), Lines{"Error expanding Value : 'abc' is not a valid integer value"});
  EXPECT_EQ(Messages(R, "7"), Lines{"Error expanding Value : 'maybe' is not a valid boolean value"});
  EXPECT_EQ(Said(R, "8"), Lines{"Key does not exist : Software\\Acme\\New"});
  for (const char* Id : {"1", "2", "3", "4", "5", "6", "7", "8"})
    EXPECT_EQ(ActionResult(R, Id), "ignored") << Id;
  // A missing string value reads as empty text.
  EXPECT_EQ(Messages(R, "9"), Lines{"Read Value : "});
  EXPECT_EQ(ActionResult(R, "9"), "success");
  EXPECT_EQ(FinalVariables(R), nlohmann::json::parse(R"({"V":"","NEW":""})"));
  EXPECT_EQ(ReadText(T.Store), kAcmeStore);
}

TEST(RegistryEndToEnd, DeletesValuesAndKeysWithoutSubKeys) {
  RegistryRun T;
  WriteText(T.Store, kAcmeStore);
  const std::string Delete = "Delete Registry Value", Acme = "Software\\Acme", Leaf = "Software\\Acme\\Leaf";
  ZtResult R =
      T.Run("name: Deletes\nactions:\n" + Step(Delete, Acme, "    RegValueName: a\n") +
            Step(Delete, Acme, "    RegValueName: zz\n") + Step(Delete, Acme, "    DeleteKey: true\n") +
            Step(Delete, Leaf, "    DeleteKey: true\n") + Step(Delete, Leaf, "    DeleteKey: true\n"));
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Said(R, "1"), Lines{"Deleted Value a"});
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_EQ(Said(R, "2"), Lines{"Error Deleting Value zz - Value does not exist"});
  EXPECT_EQ(Messages(R, "3"),
            (Lines{"Deleting key Software\\Acme...", "This key contains subkeys. Cannot delete."}));
  EXPECT_EQ(Messages(R, "4"), (Lines{"Deleting key Software\\Acme\\Leaf...", "Key deleted"}));
  EXPECT_EQ(ActionResult(R, "4"), "success");
  EXPECT_EQ(Said(R, "5"), Lines{"Key does not exist : Software\\Acme\\Leaf"});
  const std::string After = R"({
  "HKEY_CURRENT_USER\\Software\\Acme": {
    "Name": {"type": "REG_SZ", "data": "Acme Tool"}
  }
}
)";
  EXPECT_EQ(ReadText(T.Store), After);

  // A read-only store refuses every change, with the system's reason.
  std::filesystem::permissions(T.Store, std::filesystem::perms::owner_read);
  R = T.Run("name: Refused\nactions:\n" + Step(Delete, Acme, "    RegValueName: Name\n") +
            Step(Delete, Acme, "    DeleteKey: true\n") +
            Step("Set Registry Value", Acme, "    RegValueName: Name\n"));
  EXPECT_EQ(Said(R, "1"), Lines{"Error Deleting Value Name : Access is denied"});
  EXPECT_EQ(Messages(R, "2"),
            (Lines{"Deleting key Software\\Acme...", "Failed to delete key. Access is denied"}));
  EXPECT_EQ(Messages(R, "3"), Lines{"Failed to set data for 'Name'"});
  for (const char* Id : {"1", "2", "3"}) EXPECT_EQ(ActionResult(R, Id), "ignored") << Id;
  EXPECT_EQ(ReadText(T.Store), After);
}

TEST(RegistryEndToEnd, CorruptStoreFailsTheActionAndIsLeftAlone) {
  RegistryRun T;
  WriteText(T.Store, "{\"HKEY_CURRENT_USER\\\\A\": {\"n\": 1}}");
  ZtResult R = T.Run(R"(name: Corrupt
actions:
  - {action: Set Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: A, RegValueName: n,
     AllowCreateKey: true}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"),
            Lines{T.Store + ": key \"HKEY_CURRENT_USER\\A\", value \"n\": must be an object "
                            "{\"type\": ..., \"data\": ...}"});
  EXPECT_EQ(ReadText(T.Store), "{\"HKEY_CURRENT_USER\\\\A\": {\"n\": 1}}");
}

}  // namespace
}  // namespace zt::testing
