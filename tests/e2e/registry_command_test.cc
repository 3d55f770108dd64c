// zt registry import / export / get on a store of their own: .reg files in
// both of the registry editor's formats, the store they leave, the text
// exported, and the errors for bad input.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

struct RegistryCli {
  TempDir Dir;
  std::string Store = Dir / "registry.json";

  ZtResult Run(std::vector<std::string> Args) {
    Args.insert(Args.begin(), "registry");
    Args.insert(Args.end(), {"--registry", Store});
    return RunZtArgs(Dir.Path(), Args);
  }
};

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
  RegistryCli T;
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
  ASSERT_EQ(T.Run({"import", "old.reg"}).ExitCode, 0);
  ZtResult R = T.Run({"import", "acme.reg"});
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

  R = T.Run({"export", "HKEY_CURRENT_USER\\software\\ACME", "out.reg"});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(ReadText(T.Dir / "out.reg"), kExported);
  std::remove(T.Store.c_str());
  EXPECT_EQ(T.Run({"import", "out.reg"}).ExitCode, 0);
  EXPECT_EQ(ReadText(T.Store), Store);

  R = T.Run({"get", "HKEY_CURRENT_USER\\Software\\Acme"});
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
  EXPECT_EQ(T.Run({"get", "HKEY_CURRENT_USER\\Software\\Acme", "list"}).Stdout, "a\nb\n");
  EXPECT_EQ(T.Run({"get", "HKEY_CURRENT_USER\\Software\\Acme", ""}).Stdout, "Acme \"Tool\" caf\xC3\xA9\n");
}

TEST(RegistryCommand, BadRegFilesAreNamedWithTheirLineAndChangeNothing) {
  RegistryCli T;
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
    ZtResult R = T.Run({"import", "bad.reg"});
    EXPECT_EQ(R.ExitCode, 2);
    EXPECT_EQ(R.Stderr, C.Error + "\n");
    EXPECT_FALSE(Exists(T.Store));
  }
}

TEST(RegistryCommand, MissingKeysValuesAndCorruptStoresFail) {
  RegistryCli T;
  WriteText(T.Store, "{\"HKEY_CURRENT_USER\\\\Software\\\\Acme\": {}}");
  ZtResult R = T.Run({"get", "HKEY_CURRENT_USER\\Software\\Nowhere"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr, "zt: HKEY_CURRENT_USER\\Software\\Nowhere: no such key in " + T.Store + "\n");
  R = T.Run({"get", "HKEY_CURRENT_USER\\Software\\Acme", "Name"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr, "zt: HKEY_CURRENT_USER\\Software\\Acme: no value \"Name\" in " + T.Store + "\n");
  R = T.Run({"export", "HKCU\\Software"});
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_EQ(R.Stderr,
            "zt: \"HKCU\\Software\" does not start with a root key (HKEY_CLASSES_ROOT, "
            "HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS or HKEY_CURRENT_CONFIG)\n");
  WriteText(T.Store, "{\"HKEY_CURRENT_USER\\\\Software\\\\Acme\": {}");
  R = T.Run({"get", "HKEY_CURRENT_USER\\Software\\Acme"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr,
            "zt: " + T.Store +
                ":1:41: not valid JSON: syntax error while parsing object - unexpected end of input; "
                "expected '}'\n");
}

}  // namespace
}  // namespace zt::testing
