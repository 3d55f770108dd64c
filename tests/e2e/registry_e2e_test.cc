// The registry actions, "If COM Class Registered" and zt registry import /
// export / get, each on a store of its own (--registry): log lines, the
// store afterwards, the variables the build leaves, .reg files in both of
// the registry editor's formats and the errors for bad input.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// A test directory with a store in it; Run and Command pass the store to zt.
struct RegistryRun {
  TempDir Dir;
  std::string Store = Dir / "registry.json";

  ZtResult Run(const std::string& Project) { return RunZt(Dir.Path(), Project, {"--registry", Store}); }
  ZtResult Command(std::vector<std::string> Args) {
    Args.insert(Args.begin(), "registry");
    Args.insert(Args.end(), {"--registry", Store});
    return RunZtArgs(Dir.Path(), Args);
  }
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
variables: {APP: Acme, S: "", I: 0, D: 0, B: false}
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
  - {action: Set Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Software\Acme\Tool,
     RegValueName: Off, RegValType: rtBoolean, RegValue: "false"}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  const Lines Expected[] = {{"Set Value Name to : Acme Tool"},  {"Set Value Count to : -5"},
                            {"Set Value Mask to : 4294967295"}, {"Set Value Enabled to : True"},
                            {"Read Value : Acme Tool"},         {"Read Value : -5"},
                            {"Read Value : 4294967295"},        {"Read Value : True"},
                            {"Set Value Off to : false"}};
  for (int I = 0; I < 9; ++I) EXPECT_EQ(Messages(R, std::to_string(I + 1)), Expected[I]);
  EXPECT_EQ(FinalVariables(R),
            nlohmann::json::parse(R"({"APP":"Acme","S":"Acme Tool","I":-5,"D":4294967295,"B":true})"));
  EXPECT_EQ(ReadText(T.Store), R"({
  "HKEY_CURRENT_USER\\Software\\Acme\\Tool": {
    "Name": {"type": "REG_SZ", "data": "Acme Tool"},
    "Count": {"type": "REG_DWORD", "data": 4294967291},
    "Mask": {"type": "REG_DWORD", "data": 4294967295},
    "Enabled": {"type": "REG_DWORD", "data": 1},
    "Off": {"type": "REG_DWORD", "data": 0}
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

// The action-end event of action Id.
nlohmann::json ActionEnd(const ZtResult& R, const std::string& Id) {
  for (const auto& E : R.Events)
    if (E.value("event", "") == "action-end" && E.value("id", "") == Id) return E;
  return nullptr;
}

// A condition (Settings: its properties) with one child that marks the
// store when it runs.
std::string Condition(const std::string& Settings, const std::string& Mark) {
  return "  - {action: If COM Class Registered, ignoreFailure: true, " + Settings +
         ",\n     actions: [{action: Set Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: Ran, "
         "AllowCreateKey: true, "
         "RegValueName: " +
         Mark + "}]}\n";
}

TEST(ComConditionEndToEnd, RunsSkipsOrFailsItsChildren) {
  RegistryRun T;
  WriteText(T.Store, R"({
  "HKEY_CLASSES_ROOT\\Acme.Tool\\CLSID": {"": {"type": "REG_SZ", "data": "{0002DF01-0000-0000-C000-000000000046}"}},
  "HKEY_CLASSES_ROOT\\CLSID\\{0002df01-0000-0000-c000-000000000046}": {}
})");
  const std::string ByGuid = "UseProgID: false, CLSID: ";
  ZtResult R =
      T.Run("name: COM\nvariables: {PROG: Acme.Tool}\nactions:\n" + Condition("ProgID: Acme.Tool", "a") +
            Condition(ByGuid + "0002df01-0000-0000-c000-000000000046", "b") +
            Condition("ProgID: Missing.Tool", "c") + Condition("ProgID: Missing.Tool, Invert: true", "d") +
            Condition(ByGuid + "\"{0002DF01-0000\"", "e") +
            Condition(ByGuid + "\"{00000000-0000-0000-0000-000000000000}\", FailIfNotRegistered: true", "f") +
            Condition("ProgID: \"%NOPE%\"", "g") + Condition("ProgID: \"%PROG%\"", "h"));
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
  EXPECT_EQ(ReadText(T.Store).find("\"c\""), std::string::npos);
  EXPECT_NE(ReadText(T.Store).find("\"d\""), std::string::npos);
}

// Latin-1 text as UTF-16 little-endian with its byte-order mark, as the
// registry editor saves its files.
std::string Utf16File(const std::string& Latin1) {
  std::string R = "\xFF\xFE";
  for (char C : Latin1) R += std::string{C, '\0'};
  return R;
}

const char* kExported =
    "Windows Registry Editor Version 5.00\r\n"
    "\r\n"
    "[HKEY_CURRENT_USER\\Software\\Acme]\r\n"
    "@=\"Acme \\\"Tool\\\" caf\xC3\xA9\"\r\n"
    "\"Count\"=dword:0000002a\r\n"
    "\"Lines\"=hex(1):61,00,0a,00,62,00,00,00\r\n"
    "\"Path\"=hex(2):25,00,48,00,4f,00,4d,00,45,00,25,00,00,00\r\n"
    "\"List\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
    "\"Big\"=hex(b):00,f2,05,2a,01,00,00,00\r\n"
    "\"Blob\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,\\\r\n"
    "  16,17,18,19\r\n"
    "\r\n"
    "[HKEY_CURRENT_USER\\Software\\Acme\\Empty]\r\n"
    "\r\n";

TEST(RegistryCommand, RegFilesRoundTripThroughTheStore) {
  RegistryRun T;
  WriteText(T.Dir / "old.reg", "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Old]\r\n\"Gone\"=\"1\"\r\n");
  WriteText(T.Dir / "acme.reg",
            Utf16File("Windows Registry Editor Version 5.00\r\n\r\n"
                      "; settings of the build machine\r\n"
                      "[hkey_current_user\\Software\\Acme]\r\n"
                      "@=\"Acme \\\"Tool\\\" caf\xE9\"\r\n"
                      "\"Count\"=dword:2A\r\n"
                      "\"Lines\"=hex(1):61,00,0a,00,62,00,00,00\r\n"
                      "\"Path\"=hex(2):25,00,48,00,4f,00,4d,00,45,00,25,00,00,00\r\n"
                      "\"List\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
                      "\"Big\"=hex(b):00,f2,05,2a,01,00,00,00\r\n"
                      "\"Blob\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,\\\r\n"
                      "    14,15,16,17,18,19\r\n"
                      "\"Drop\"=\"x\"\r\n"
                      "\"Drop\"=-\r\n\r\n"
                      "[HKEY_CURRENT_USER\\Software\\Acme\\Empty]\r\n"
                      "[-HKEY_CURRENT_USER\\Software\\Old]\r\n"));
  ASSERT_EQ(T.Command({"import", "old.reg"}).ExitCode, 0);
  ZtResult R = T.Command({"import", "acme.reg"});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(R.Stdout, "Imported acme.reg into " + T.Store + "\n");
  const std::string Store = ReadText(T.Store);
  EXPECT_EQ(Store, R"({
  "HKEY_CURRENT_USER\\Software\\Acme": {
    "": {"type": "REG_SZ", "data": "Acme \"Tool\" café"},
    "Count": {"type": "REG_DWORD", "data": 42},
    "Lines": {"type": "REG_SZ", "data": "a\nb"},
    "Path": {"type": "REG_EXPAND_SZ", "data": "%HOME%"},
    "List": {"type": "REG_MULTI_SZ", "data": ["a", "b"]},
    "Big": {"type": "REG_QWORD", "data": 5000000000},
    "Blob": {"type": "REG_BINARY", "data": "000102030405060708090a0b0c0d0e0f10111213141516171819"}
  },
  "HKEY_CURRENT_USER\\Software\\Acme\\Empty": {}
}
)");

  R = T.Command({"export", "HKEY_CURRENT_USER\\software\\ACME", "out.reg"});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(ReadText(T.Dir / "out.reg"), kExported);
  std::remove(T.Store.c_str());
  EXPECT_EQ(T.Command({"import", "out.reg"}).ExitCode, 0);
  EXPECT_EQ(ReadText(T.Store), Store);

  R = T.Command({"get", "HKEY_CURRENT_USER\\Software\\Acme"});
  EXPECT_EQ(R.Stdout,
            "HKEY_CURRENT_USER\\Software\\Acme\n"
            "    (Default)    REG_SZ    Acme \"Tool\" caf\xC3\xA9\n"
            "    Count    REG_DWORD    42\n"
            "    Lines    REG_SZ    a\nb\n"
            "    Path    REG_EXPAND_SZ    %HOME%\n"
            "    List    REG_MULTI_SZ    a\\0b\n"
            "    Big    REG_QWORD    5000000000\n"
            "    Blob    REG_BINARY    000102030405060708090a0b0c0d0e0f10111213141516171819\n"
            "HKEY_CURRENT_USER\\Software\\Acme\\Empty\n");
  EXPECT_EQ(T.Command({"get", "HKEY_CURRENT_USER\\Software\\Acme", "list"}).Stdout, "a\nb\n");
  EXPECT_EQ(T.Command({"get", "HKEY_CURRENT_USER\\Software\\Acme", ""}).Stdout,
            "Acme \"Tool\" caf\xC3\xA9\n");
}

TEST(RegistryCommand, BadRegFilesAreNamedWithTheirLineAndChangeNothing) {
  RegistryRun T;
  const std::string V5 = "Windows Registry Editor Version 5.00\r\n\r\n";
  const std::string Key = "[HKEY_CURRENT_USER\\A]\r\n";
  const struct {
    std::string Text, Error;
  } Cases[] = {
      {"[HKEY_CURRENT_USER\\A]\r\n",
       "bad.reg:1: not a registry file: it must begin with \"Windows Registry Editor Version 5.00\" or "
       "\"REGEDIT4\""},
      {V5 + "\"a\"=\"1\"\r\n", "bad.reg:3: a value before the first key"},
      {V5 + "[HKLM\\A]\r\n",
       "bad.reg:3: \"HKLM\\A\" does not start with a root key (HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, "
       "HKEY_LOCAL_MACHINE, HKEY_USERS or HKEY_CURRENT_CONFIG)"},
      {V5 + Key + "\"a\"=dword:123456789\r\n", "bad.reg:4: dword: needs 1 to 8 hexadecimal digits"},
      {V5 + Key + "\"a\"=\"open\r\n", "bad.reg:4: a quoted text is not closed"},
      {V5 + Key + "\"a\"=hex(0):\r\n", "bad.reg:4: hex(0): the store holds no values of this type"},
      {V5 + Key + "\"a\"=hex:1,2\r\n", "bad.reg:4: hexadecimal bytes must be pairs separated by commas"},
      {V5 + Key + "\"a\"=hex(2):41\r\n", "bad.reg:4: the text is not valid UTF-16"},
      {V5 + "[-HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n",
       "bad.reg:4: a value under a key that is being deleted"},
  };
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Text);
    WriteText(T.Dir / "bad.reg", C.Text);
    ZtResult R = T.Command({"import", "bad.reg"});
    EXPECT_EQ(R.ExitCode, 2);
    EXPECT_EQ(R.Stderr, C.Error + "\n");
    EXPECT_FALSE(Exists(T.Store));
  }
}

TEST(RegistryCommand, MissingKeysValuesAndCorruptStoresFailAndChangeNothing) {
  RegistryRun T;
  WriteText(T.Store, "{\"HKEY_CURRENT_USER\\\\Software\\\\Acme\": {}}");
  ZtResult R = T.Command({"get", "HKEY_CURRENT_USER\\Software\\Nowhere"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr, "zt: HKEY_CURRENT_USER\\Software\\Nowhere: no such key in " + T.Store + "\n");
  R = T.Command({"get", "HKEY_CURRENT_USER\\Software\\Acme", "Name"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr, "zt: HKEY_CURRENT_USER\\Software\\Acme: no value \"Name\" in " + T.Store + "\n");
  R = T.Command({"export", "HKCU\\Software"});
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_EQ(R.Stderr,
            "zt: \"HKCU\\Software\" does not start with a root key (HKEY_CLASSES_ROOT, "
            "HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS or HKEY_CURRENT_CONFIG)\n");
  WriteText(T.Store, "{\"HKEY_CURRENT_USER\\\\Software\\\\Acme\": {}");
  R = T.Command({"get", "HKEY_CURRENT_USER\\Software\\Acme"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr,
            "zt: " + T.Store +
                ":1:41: not valid JSON: syntax error while parsing object - unexpected end of input; "
                "expected '}'\n");
  // The store is left alone when an action finds it corrupt.
  WriteText(T.Store, "{\"HKEY_CURRENT_USER\\\\A\": {\"n\": 1}}");
  R = T.Run(
      "actions: [{action: Set Registry Value, RegRoot: HKEY_CURRENT_USER, RegKey: A, RegValueName: n}]\n");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"),
            Lines{T.Store + ": key \"HKEY_CURRENT_USER\\A\", value \"n\": must be an object "
                            "{\"type\": ..., \"data\": ...}"});
  EXPECT_EQ(ReadText(T.Store), "{\"HKEY_CURRENT_USER\\\\A\": {\"n\": 1}}");
}

}  // namespace
}  // namespace zt::testing
