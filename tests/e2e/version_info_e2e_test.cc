// "Extract Version Info" through zt on executables built in memory: the
// version text and numbers, strings in the language asked for, and the
// failures of files that are no executables or whose resource is damaged.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/PEImage.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

const std::vector<TVersionTable> kEnglish = {
    {"040904B0", {{"CompanyName", "Acme \xC2\xA9 2024 \xF0\x9F\x9A\x80"}, {"FileVersion", "1.2.3.4-beta"}}}};

std::string English32() {
  return PEImage(false, {{0x0409, VersionResource({1, 2, 3, 4}, {5, 6, 7, 65535}, kEnglish, {0x040904B0})}});
}

TEST(VersionInfoEndToEnd, ReadsVersionsAndStringsOfPE32AndPE32PlusImages) {
  TempDir D;
  D.Write("app32.dll", English32());
  // Two languages; the translation names the German table first.
  const std::vector<TVersionTable> Both = {{"040904b0", {{"FileVersion", "en"}}},
                                           {"040704B0", {{"FileVersion", "de"}}}};
  D.Write("app64.exe",
          PEImage(true, {{0x0409, VersionResource({9, 0, 0, 1}, {9, 0, 0, 0}, Both, {0x040704B0})},
                         {0x0407, VersionResource({9, 0, 0, 2}, {9, 0, 0, 0}, Both, {0x040704B0})}}));
  // No translation: the first table.
  D.Write("plain.dll", PEImage(false, {{0x0409, VersionResource({1, 0, 0, 0}, {1, 0, 0, 0}, Both, {})}}));
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Extract Version Info, FileName: app32.dll, ZTVariable: V, MajorVariable: MA, MinorVariable: MI,
     ReleaseVariable: RE, BuildVariable: BU, StringValues: "CompanyName=COMPANY\nLegalTrademarks=TM"}
  - {action: Extract Version Info, FileName: app32.dll, ZTVariable: PV, VersionSource: vsProductVersion,
     BuildVariable: PBU}
  - {action: Extract Version Info, FileName: app32.dll, ZTVariable: FVS, VersionSource: vsFileVersionString}
  - {action: Extract Version Info, FileName: app64.exe, ZTVariable: FVS64,
     VersionSource: vsFileVersionString}
  - {action: Extract Version Info, FileName: app64.exe, ZTVariable: EN, VersionSource: vsFileVersionString,
     Language: "0409", BuildVariable: ENBU}
  - {action: Extract Version Info, FileName: app64.exe, ZTVariable: DE,
     VersionSource: vsProductVersionString, ignoreFailure: true}
  - {action: Extract Version Info, FileName: plain.dll, ZTVariable: FIRST,
     VersionSource: vsFileVersionString, Language: "0C0A"}
)");
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"Version of app32.dll is 1.2.3.4", "CompanyName = Acme \xC2\xA9 2024 \xF0\x9F\x9A\x80",
                   "Version string not found : LegalTrademarks"}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"Version of app32.dll is 5.6.7.65535"}));
  EXPECT_EQ(Messages(R, "4"), (Lines{"Version of app64.exe is de"}));
  EXPECT_EQ(Messages(R, "6"), (Lines{"Version string not found : ProductVersion"}));
  EXPECT_EQ(ActionResult(R, "6"), "ignored");
  // The English resource's English table for EN; the first table for FIRST.
  EXPECT_EQ(FinalVariables(R), nlohmann::json::parse(R"({"V": "1.2.3.4", "MA": 1, "MI": 2, "RE": 3, "BU": 4,
      "COMPANY": "Acme \u00a9 2024 \ud83d\ude80", "TM": "", "PV": "5.6.7.65535", "PBU": 65535, "FVS": "1.2.3.4-beta",
      "FVS64": "de", "EN": "en", "ENBU": 1, "DE": "", "FIRST": "en"})"));
}

TEST(VersionInfoEndToEnd, FilesWithoutUsableVersionInformationGiveTheirOwnLine) {
  TempDir D;
  const std::string Good = English32();
  D.Write("plain.dll", PEImage(false, {}));
  D.Write("linux.so",
          "\x7F"
          "ELF\x02\x01\x01" +
              std::string(64, '\0'));
  D.Write("short.dll", Good.substr(0, 0x200 + 100));  // cut inside the resource tree
  std::string Damaged = Good;
  const std::size_t Root = Damaged.find(std::string("V\0S\0_\0V", 7)) - 6;
  Damaged[Root] = Damaged[Root + 1] = '\xFF';  // longer than its resource
  D.Write("damaged.dll", Damaged);
  std::string Translated = Good;  // a string longer than its table
  const std::size_t String = Translated.find(std::string("C\0o\0m\0p", 7)) - 6;
  Translated[String + 1] = '\x10';
  D.Write("child.dll", Translated);
  const struct {
    std::string File, Line, Result;
  } Cases[] = {
      {"plain.dll", "No version information in : plain.dll", "success"},
      {"linux.so", "Not a Windows executable : linux.so", "ignored"},
      {"short.dll", "Damaged version information in : short.dll", "ignored"},
      {"damaged.dll", "Damaged version information in : damaged.dll", "ignored"},
      {"child.dll", "Damaged version information in : child.dll", "ignored"},
      {"missing.dll", "ERROR - File missing: missing.dll", "ignored"},
      {".", "Not a Windows executable : .", "ignored"},
  };
  std::string Yaml = "variables:\n  V: untouched\nactions:\n";
  for (const auto& C : Cases)
    Yaml += "  - {action: Extract Version Info, FileName: " + C.File +
            ", ZTVariable: V, FailIfNoVersionInfo: false, ignoreFailure: true}\n";
  ZtResult R = RunZt(D.Path(), Yaml);
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    EXPECT_EQ(Messages(R, std::to_string(I + 1)), Lines{Cases[I].Line});
    EXPECT_EQ(ActionResult(R, std::to_string(I + 1)), Cases[I].Result) << Cases[I].File;
  }
  EXPECT_EQ(FinalVariables(R)["V"], "untouched");
}

}  // namespace
}  // namespace zt::testing
