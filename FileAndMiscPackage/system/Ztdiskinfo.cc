#include "system/Ztdiskinfo.h"

#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TDiskInfoAction, &TDiskInfoAction::Publish)

namespace {

constexpr const char* kUnitNames[] = {" bytes", " KB", " MB", " GB"};

// Path itself when it exists, else its nearest existing ancestor: a build
// asks about the volume an output folder will be made on before it exists.
// A relative path with no existing part is measured at the current folder.
std::string NearestExisting(const std::string& Path) {
  std::string Probe = Path;
  while (pf::GetFileAttributesA(Probe) == pf::INVALID_FILE_ATTRIBUTES) {
    const pf::DWORD Error = pf::GetLastError();
    if (Error != pf::ERROR_FILE_NOT_FOUND && Error != pf::ERROR_PATH_NOT_FOUND) break;
    const std::string Parent = pf::ExtractFileDir(pf::ExcludeTrailingPathDelimiter(Probe));
    if (Parent.empty()) return ".";
    if (Parent == Probe) break;
    Probe = Parent;
  }
  return Probe;
}

}  // namespace

void TDiskInfoAction::Publish(frame::TZTPublisher<TDiskInfoAction>& P) {
  using A = TDiskInfoAction;
  P.String("Drive", &A::GetDrive, &A::SetDrive);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.String("TotalVariable", &A::GetTotalVariable, &A::SetTotalVariable);
  P.Enumeration("SizeUnit", "TZTSizeUnit", {"suBytes", "suKB", "suMB", "suGB"}, &A::GetSizeUnit, &A::SetSizeUnit);
  P.Integer("MinimumFree", &A::GetMinimumFree, &A::SetMinimumFree);
}

bool TDiskInfoAction::Execute() {
  std::string Path;
  if (!TryExpandExpression("Drive or Directory", FDrive, true, Path)) return false;
  Path = frame::Trim(Path);
  if (Path.empty()) {
    Path = IsVariableDefined("ZT_PROJECT_DIR") ? GetVariableValue("ZT_PROJECT_DIR").AsString() : ".";
  }
  std::uint64_t Free = 0, Total = 0;
  if (!pf::GetDiskFreeSpaceExA(NearestExisting(Path), &Free, &Total, nullptr)) {
    const pf::DWORD Error = pf::GetLastError();
    SendMessage("Unable to get free space of : " + Path);
    SendMessage(" --> " + pf::SysErrorMessage(Error));
    return false;
  }
  const int Unit = static_cast<int>(FSizeUnit) & 3;
  const std::string U = kUnitNames[Unit];
  // Floored to the unit; a 2^63-byte volume is beyond any file system.
  const auto F = static_cast<std::int64_t>(Free >> (10 * Unit));
  const auto T = static_cast<std::int64_t>(Total >> (10 * Unit));
  if (!FZTVariable.empty()) SetVariable(FZTVariable, frame::TZTVariant(F));
  if (!FTotalVariable.empty()) SetVariable(FTotalVariable, frame::TZTVariant(T));
  SendMessage("Free space on " + Path + " : " + std::to_string(F) + U + " of " + std::to_string(T) + U);
  if (FMinimumFree > 0 && F < FMinimumFree) {
    SendMessage("Not enough free space on " + Path + " : " + std::to_string(F) + U + " free, " +
                std::to_string(FMinimumFree) + U + " required");
    return false;
  }
  return true;
}

bool TDiskInfoAction::Validate(frame::IZTActionValidationError& Errors) {
  if (!FZTVariable.empty() || !FTotalVariable.empty() || FMinimumFree > 0) return true;
  Errors.AddError("Free Space Variable", "Set a variable or a minimum free space");
  return false;
}

void TDiskInfoAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Get Disk Free Space]");
  List.Add("Drive=Drive or Directory");
  List.Add("ZTVariable=Free Space Variable");
  List.Add("TotalVariable=Total Size Variable");
  List.Add("SizeUnit=Unit");
  List.Add("MinimumFree=Minimum Free Space");
}

void TDiskInfoAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("Drive=\"C:\", a directory or any path; empty: the project folder");
  List.Add("ZTVariable=space available to the build's user");
  List.Add("TotalVariable=size of the volume");
  List.Add("MinimumFree=fail below it; 0: no check");
}

}  // namespace zt::package
