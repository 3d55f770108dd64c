#include "files/Ztfileverinfo.h"

#include <cstdio>

#include "files/Peversioninfo.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTExtractFileVerInfoAction, &TZTExtractFileVerInfoAction::Publish)

namespace {

bool IsHex(const std::string& S) {
  return S.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
}

std::string Dotted(std::uint32_t MS, std::uint32_t LS) {
  return std::to_string(MS >> 16) + "." + std::to_string(MS & 0xFFFF) + "." + std::to_string(LS >> 16) + "." +
         std::to_string(LS & 0xFFFF);
}

// The string table to read: the one whose key starts with Language (letter
// case ignored), else the one of the first translation, else the first.
const TVersionStringTable* ChooseTable(const TPEVersionInfo& Info, const std::string& Language) {
  auto Starting = [&](const std::string& Prefix) -> const TVersionStringTable* {
    for (const auto& T : Info.Tables)
      if (frame::LowerCase(T.Key).rfind(frame::LowerCase(Prefix), 0) == 0) return &T;
    return nullptr;
  };
  const TVersionStringTable* T = Language.empty() ? nullptr : Starting(Language);
  if (!T && !Info.Translations.empty()) {
    char Key[9];
    std::snprintf(Key, sizeof Key, "%04X%04X", Info.Translations[0] >> 16, Info.Translations[0] & 0xFFFF);
    T = Starting(Key);
  }
  if (!T && !Info.Tables.empty()) T = &Info.Tables.front();
  return T;
}

}  // namespace

void TZTExtractFileVerInfoAction::Publish(frame::TZTPublisher<TZTExtractFileVerInfoAction>& P) {
  using A = TZTExtractFileVerInfoAction;
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.Enumeration("VersionSource", "TZTVersionSource",
                {"vsFileVersion", "vsProductVersion", "vsFileVersionString", "vsProductVersionString"},
                &A::GetVersionSource, &A::SetVersionSource);
  P.String("MajorVariable", &A::GetMajorVariable, &A::SetMajorVariable);
  P.String("MinorVariable", &A::GetMinorVariable, &A::SetMinorVariable);
  P.String("ReleaseVariable", &A::GetReleaseVariable, &A::SetReleaseVariable);
  P.String("BuildVariable", &A::GetBuildVariable, &A::SetBuildVariable);
  P.StringList("StringValues", &A::GetStringValues, &A::SetStringValues);
  P.String("Language", &A::GetLanguage, &A::SetLanguage);
  P.Boolean("FailIfNoVersionInfo", &A::GetFailIfNoVersionInfo, &A::SetFailIfNoVersionInfo);
}

bool TZTExtractFileVerInfoAction::Execute() {
  std::string Path, Language;
  if (!TryExpandExpression("File Name", FFileName, true, Path)) return false;
  Path = frame::Trim(Path);
  if (Path.empty()) {
    SendMessage("Error: No source file specified.");
    return false;
  }
  if (!TryExpandExpression("Language", FLanguage, true, Language)) return false;
  Language = frame::Trim(Language);
  if (!IsHex(Language) || (!Language.empty() && Language.size() != 4 && Language.size() != 8)) {
    SendMessage("Error: The language must be 4 or 8 hexadecimal digits : " + Language);
    return false;
  }

  const pf::DWORD Attr = pf::GetFileAttributesA(Path);
  if (Attr == pf::INVALID_FILE_ATTRIBUTES &&
      (pf::GetLastError() == pf::ERROR_FILE_NOT_FOUND || pf::GetLastError() == pf::ERROR_PATH_NOT_FOUND)) {
    SendMessage("ERROR - File missing: " + Path);
    return false;
  }
  TPEVersionInfo Info;
  const auto LangId = static_cast<std::uint16_t>(Language.empty() ? 0 : std::stoul(Language.substr(0, 4), nullptr, 16));
  const TPEVersionStatus Status = (Attr != pf::INVALID_FILE_ATTRIBUTES && (Attr & pf::faDirectory))
                                      ? TPEVersionStatus::vsNotExecutable
                                      : ReadPEVersionInfoFile(Path, LangId, Info);
  switch (Status) {
    case TPEVersionStatus::vsFound:
      break;
    case TPEVersionStatus::vsNotExecutable:
      SendMessage("Not a Windows executable : " + Path);
      return false;
    case TPEVersionStatus::vsNoVersionInfo:
      SendMessage("No version information in : " + Path);
      return !FFailIfNoVersionInfo;
    case TPEVersionStatus::vsDamaged:
      SendMessage("Damaged version information in : " + Path);
      return false;
    case TPEVersionStatus::vsReadError: {
      const pf::DWORD Error = pf::GetLastError();
      SendMessage("Unable to read : " + Path);
      SendMessage(" --> " + pf::SysErrorMessage(Error));
      return false;
    }
  }

  const TVersionStringTable* Table = ChooseTable(Info, Language);
  auto Lookup = [&](const std::string& Key, std::string& Value) { return Table && Table->Find(Key, Value); };
  const bool Product = FVersionSource == TZTVersionSource::vsProductVersion ||
                       FVersionSource == TZTVersionSource::vsProductVersionString;
  const std::uint32_t MS = Product ? Info.ProductVersionMS : Info.FileVersionMS;
  const std::uint32_t LS = Product ? Info.ProductVersionLS : Info.FileVersionLS;
  bool Result = true;
  std::string Version;
  if (FVersionSource == TZTVersionSource::vsFileVersion || FVersionSource == TZTVersionSource::vsProductVersion) {
    Version = Dotted(MS, LS);
  } else if (const std::string Key = Product ? "ProductVersion" : "FileVersion"; !Lookup(Key, Version)) {
    SendMessage("Version string not found : " + Key);
    Result = !FFailIfNoVersionInfo;
  }
  if (Result) SendMessage("Version of " + pf::ExtractFileName(Path) + " is " + Version);
  if (!FZTVariable.empty()) SetVariable(FZTVariable, frame::TZTVariant(Version));
  const std::pair<const std::string&, std::uint32_t> Words[] = {
      {FMajorVariable, MS >> 16}, {FMinorVariable, MS & 0xFFFF}, {FReleaseVariable, LS >> 16}, {FBuildVariable, LS & 0xFFFF}};
  for (const auto& [Name, Word] : Words)
    if (!Name.empty()) SetVariable(Name, frame::TZTVariant(static_cast<std::int64_t>(Word)));

  for (const std::string& Line : FStringValues.Lines()) {
    if (frame::Trim(Line).empty()) continue;
    const std::size_t Eq = Line.find('=');
    const std::string Key = frame::Trim(Line.substr(0, Eq));
    const std::string Variable = Eq == std::string::npos ? std::string() : frame::Trim(Line.substr(Eq + 1));
    std::string Value;
    if (Lookup(Key, Value))
      SendMessage(Key + " = " + Value);
    else
      SendMessage("Version string not found : " + Key);
    if (!Variable.empty()) SetVariable(Variable, frame::TZTVariant(Value));
  }
  return Result;
}

bool TZTExtractFileVerInfoAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Valid = true;
  if (FFileName.empty()) {
    Errors.AddError("File Name", "Filename has not been set");
    Valid = false;
  }
  if (FZTVariable.empty() && FMajorVariable.empty() && FMinorVariable.empty() && FReleaseVariable.empty() &&
      FBuildVariable.empty() && FStringValues.Count() == 0) {
    Errors.AddError("Version Variable", "No variable has been set");
    Valid = false;
  }
  return Valid;
}

void TZTExtractFileVerInfoAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Extract Version Info]");
  List.Add("FileName=File Name");
  List.Add("ZTVariable=Version Variable");
  List.Add("VersionSource=Version Source");
  List.Add("MajorVariable=Major Variable");
  List.Add("MinorVariable=Minor Variable");
  List.Add("ReleaseVariable=Release Variable");
  List.Add("BuildVariable=Build Variable");
  List.Add("StringValues=Strings to Variables");
  List.Add("Language=Language");
  List.Add("FailIfNoVersionInfo=Fail If No Version Info");
}

void TZTExtractFileVerInfoAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("FileName=.exe, .dll, .ocx, .sys ... (PE32 or PE32+)");
  List.Add("ZTVariable=the version text");
  List.Add("VersionSource=fixed binary version \"a.b.c.d\", or the string of that name");
  List.Add("MajorVariable=the first of the fixed file (product, for the product sources) version's four words");
  List.Add("MinorVariable=the second of the fixed file (product, for the product sources) version's four words");
  List.Add("ReleaseVariable=the third of the fixed file (product, for the product sources) version's four words");
  List.Add("BuildVariable=the fourth of the fixed file (product, for the product sources) version's four words");
  List.Add("StringValues=Key=Variable lines (CompanyName=COMPANY); any key");
  List.Add("Language=table to read: 4 hex digits (language) or 8 (+ code page)");
}

}  // namespace zt::package
