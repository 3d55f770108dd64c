// The registry store: its JSON text both ways, a corrupt store left alone
// with a message naming the file and the place, and no change lost to
// concurrent writers or a failed write.
#include "platform/registry_store.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/env.h"
#include "platform/registry.h"
#include "platform/registry_data.h"
#include "platform/tregistry.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using testing::ReadText;
using testing::TempDir;

// Points the layer at a store file in a fresh directory for one test.
class StoreTest : public ::testing::Test {
 protected:
  void SetUp() override { setenv("ZT_REGISTRY", Store.c_str(), 1); }
  void TearDown() override { unsetenv("ZT_REGISTRY"); }

  TempDir Dir;
  std::string Store = Dir / "registry.json";
};

// Every type's canonical form is also read through reg import and export end to end.
TEST(RegistryStoreText, ReadsAndWritesEveryTypeInOneCanonicalForm) {
  const std::string Text = R"({
  "HKEY_CLASSES_ROOT\\CLSID\\{0002DF01-0000-0000-C000-000000000046}": {},
  "HKEY_CURRENT_USER\\Software\\Acme": {
    "": {"type": "REG_SZ", "data": "tab\there \"quoted\" é"},
    "Count": {"type": "REG_DWORD", "data": 4294967295},
    "Big": {"type": "REG_QWORD", "data": 18446744073709551615},
    "List": {"type": "REG_MULTI_SZ", "data": ["a", "", "b"]}
  },
  "HKEY_CURRENT_USER\\Software\\Acme\\Sub": {}
}
)";
  TRegistryDocument Doc = TRegistryDocument::Parse(Text, "r.json");
  EXPECT_EQ(Doc.Serialize(), Text);
  const TRegKeyNode* Acme = Doc.Find(HKEY_CURRENT_USER, {"SOFTWARE", "acme"});
  ASSERT_NE(Acme, nullptr);
  EXPECT_EQ(Acme->Name, "Acme");
  EXPECT_NE(Doc.Find(HKEY_CLASSES_ROOT, {"CLSID"}), nullptr);  // implied by its sub-key
  EXPECT_EQ(Acme->FindValue("count")->Data, std::string("\xff\xff\xff\xff"));
  EXPECT_EQ(RegMultiStrings(Acme->FindValue("LIST")->Data), (std::vector<std::string>{"a", "", "b"}));
  EXPECT_EQ(TRegistryDocument().Serialize(), "{}\n");
}

TEST_F(StoreTest, CorruptStoreIsNamedWithItsPlaceAndNeverWritten) {
  const std::string Key = "\"HKEY_CURRENT_USER\\\\A\"", AtKey = ": key \"HKEY_CURRENT_USER\\A\": ";
  const std::string AtValue = ": key \"HKEY_CURRENT_USER\\A\", value \"n\": ";
  auto Value = [&](const std::string& Json) { return "{" + Key + ": {\"n\": " + Json + "}}"; };
  // clang-format off
  const struct {
    std::string Text, Message;
  } Cases[] = {
      {"[]", ": the top level: must be an object of key paths, as {\"HKEY_CURRENT_USER\\\\Software\": {}}"},
      {"{\"HKCU\\\\A\": {}}", ": key \"HKCU\\A\": does not start with a root key (HKEY_CLASSES_ROOT, "
                              "HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS or HKEY_CURRENT_CONFIG)"},
      {"{" + Key + ": {}, " + Key + ": {}}", AtKey + "is listed twice"},
      {"{" + Key + ": {}, \"hkey_current_user\\\\a\": {}}",
       ": key \"hkey_current_user\\a\": is listed twice (also as \"HKEY_CURRENT_USER\\A\")"},
      {"{" + Key + ": []}", AtKey + "must be an object of named values ({} for none)"},
      {Value("{\"type\": \"REG_DWORD\", \"data\": -1}"),
       AtValue + "REG_DWORD data must be a whole number from 0 to 4294967295"},
      {Value("{\"type\": \"REG_LINK\", \"data\": \"\"}"),
       AtValue + "\"type\" must be one of REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ, REG_DWORD, REG_QWORD, REG_BINARY"},
      {"{" + Key + ": {\"n\": {\"type\": \"REG_SZ\", \"data\": \"\"}, \"N\": {\"type\": \"REG_SZ\", \"data\": \"\"}}}",
       ": key \"HKEY_CURRENT_USER\\A\", value \"N\": is listed twice (names are compared without regard to case)"},
      {Value("{\"type\": \"REG_BINARY\", \"data\": \"abc\"}"),
       AtValue + "REG_BINARY data must be a string of hexadecimal byte pairs, as \"0a1b\""},
      {Value("1E999"), ": not valid JSON: number overflow parsing '1E999'"},
      {Value("{\"type\": \"REG_SZ\"}"), AtValue + "\"data\" is missing"},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Text);
    testing::WriteText(Store, C.Text);
    TRegistry R;
    try {
      R.OpenKey("Software\\New", true);
      ADD_FAILURE() << "a corrupt store was accepted";
    } catch (const ERegistryStoreError& E) {
      EXPECT_EQ(E.what(), Store + C.Message);
    }
    EXPECT_EQ(ReadText(Store), C.Text);
  }
}

TEST_F(StoreTest, TwoProcessesWritingAtOnceKeepEveryValue) {
  constexpr int kWrites = 200;
  // The lock is under test, not the disk: in memory, 400 flushes take no time.
  TempDir Fast(std::filesystem::is_directory("/dev/shm") ? "/dev/shm"
                                                         : std::filesystem::temp_directory_path());
  setenv("ZT_REGISTRY", (Fast / "registry.json").c_str(), 1);
  pid_t Children[2];
  for (int P = 0; P < 2; ++P) {
    Children[P] = fork();
    ASSERT_GE(Children[P], 0);
    if (Children[P] == 0) {
      int Failed = 0;
      try {
        TRegistry R;
        Failed = !R.OpenKey("Software\\Race", true);
        for (int I = 0; I < kWrites; ++I)
          R.WriteInteger(std::string(1, static_cast<char>('A' + P)) + std::to_string(I), I);
      } catch (...) {
        Failed = 1;
      }
      _exit(Failed ? 1 : 0);
    }
  }
  for (pid_t Child : Children) {
    int Status = 0;
    ASSERT_EQ(waitpid(Child, &Status, 0), Child);
    EXPECT_TRUE(WIFEXITED(Status) && WEXITSTATUS(Status) == 0);
  }
  TRegistry R;
  ASSERT_TRUE(R.OpenKey("Software\\Race", false));
  for (int I = 0; I < kWrites; ++I) {
    EXPECT_EQ(R.ReadInteger("A" + std::to_string(I)), I);
    EXPECT_EQ(R.ReadInteger("B" + std::to_string(I)), I);
  }
}

// Fails every atomic replacement, as a full disk would.
class DiskFullEnv : public EnvWrapper {
 public:
  DiskFullEnv() : EnvWrapper(Env::Platform()) {}
  bool WriteFileAtomically(const std::string&, const std::string&) override {
    SetLastError(ERROR_DISK_FULL);
    return false;
  }
};

TEST_F(StoreTest, FailedWriteLeavesTheStoreAsItWas) {
  const std::string Text =
      "{\n  \"HKEY_CURRENT_USER\\\\A\": {\n    \"n\": {\"type\": \"REG_SZ\", \"data\": \"old\"}\n  }\n}\n";
  testing::WriteText(Store, Text);
  HKEY Key = 0;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "a", KEY_ALL_ACCESS, Key), ERROR_SUCCESS);
  {
    DiskFullEnv Full;
    ScopedEnv Installed(&Full);
    EXPECT_EQ(RegSetValueExA(Key, "n", REG_SZ, "new"), ERROR_DISK_FULL);
    EXPECT_EQ(RegDeleteValueA(Key, "n"), ERROR_DISK_FULL);
  }
  EXPECT_EQ(ReadText(Store), Text);
  std::string Data;
  EXPECT_EQ(RegQueryValueExA(Key, "N", nullptr, &Data), ERROR_SUCCESS);
  EXPECT_EQ(Data, "old");
  RegCloseKey(Key);
}

TEST_F(StoreTest, KeysBehaveAsWindowsKeys) {
  HKEY Key = 0, Sub = 0, ReadOnly = 0;
  DWORD Disposition = 0;
  ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "Software\\Acme\\Tool", KEY_ALL_ACCESS, Key, &Disposition),
            0u);
  EXPECT_EQ(Disposition, REG_CREATED_NEW_KEY);
  ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\ACME", KEY_ALL_ACCESS, Sub, &Disposition), 0u);
  EXPECT_EQ(Disposition, REG_OPENED_EXISTING_KEY);
  EXPECT_EQ(RegSetValueExA(Key, "Name", REG_DWORD, "12"), ERROR_INVALID_PARAMETER);     // not 4 bytes
  EXPECT_EQ(RegSetValueExA(Key, "Name", REG_SZ, "\xff"), ERROR_INVALID_PARAMETER);      // not UTF-8
  EXPECT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, "Software\\Acme"), ERROR_ACCESS_DENIED);  // has a sub-key
  EXPECT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, ""), ERROR_ACCESS_DENIED);
  ASSERT_EQ(RegOpenKeyExA(Sub, "tool", KEY_READ, ReadOnly), 0u);
  EXPECT_EQ(RegSetValueExA(ReadOnly, "x", REG_SZ, "1"), ERROR_ACCESS_DENIED);
  std::string Name;
  EXPECT_EQ(RegEnumKeyExA(Sub, 0, Name), 0u);
  EXPECT_EQ(Name, "Tool");
  EXPECT_EQ(RegEnumKeyExA(Sub, 1, Name), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(RegDeleteKeyA(Sub, "TOOL"), 0u);
  EXPECT_EQ(RegQueryValueExA(Key, "", nullptr, nullptr), ERROR_KEY_DELETED);
  EXPECT_EQ(RegSetValueExA(Key, "x", REG_SZ, "1"), ERROR_KEY_DELETED);
  EXPECT_EQ(RegOpenKeyExA(Sub, "Tool", KEY_READ, ReadOnly), ERROR_FILE_NOT_FOUND);
  for (HKEY H : {Key, Sub}) EXPECT_EQ(RegCloseKey(H), 0u);
  EXPECT_EQ(RegCloseKey(Key), ERROR_INVALID_HANDLE);
}

}  // namespace
}  // namespace zt::platform
