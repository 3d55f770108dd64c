#include "system/Ztxcopyaction.h"

#include <atomic>
#include <cmath>
#include <stdexcept>

#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/system_paths.h"
#include "platform/tools/xcopy.h"
#include "system/Zttoolengine.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTXCopyAction, &TZTXCopyAction::Publish)

void TZTXCopyAction::Publish(frame::TZTPublisher<TZTXCopyAction>& P) {
  using A = TZTXCopyAction;
  P.String("Source", &A::GetSource, &A::SetSource);
  P.String("Destination", &A::GetDestination, &A::SetDestination);
  P.StringList("ExcludeFiles", &A::GetExcludeFilesText, &A::SetExcludeFilesText);
  P.Enumeration("XCopyMode", "TZTXCopyMode", {"mdNormal", "mdRecursive", "mdTest", "mdDirStructure"}, &A::GetXCopyMode,
                &A::SetXCopyMode);
  P.Enumeration("XCopyLogMode", "TZTXCopyLogMode", {"logNormal", "logQuiet", "logVerbose"}, &A::GetXCopyLogMode,
                &A::SetXCopyLogMode);
  P.Boolean("OnlyArchiveFiles", &A::GetOnlyArchiveFiles, &A::SetOnlyArchiveFiles);
  P.Boolean("TurnOffArchiveBit", &A::GetTurnOffArchiveBit, &A::SetTurnOffArchiveBit);
  P.Boolean("CopyHiddenAndSys", &A::GetCopyHiddenAndSys, &A::SetCopyHiddenAndSys);
  P.Boolean("OverwriteReadOnly", &A::GetOverwriteReadOnly, &A::SetOverwriteReadOnly);
  P.Boolean("CopyAttributes", &A::GetCopyAttributes, &A::SetCopyAttributes);
  P.Boolean("OnlyFilesThatAlreadyExist", &A::GetOnlyFilesThatAlreadyExist, &A::SetOnlyFilesThatAlreadyExist);
  P.Boolean("CopyUsingShortNames", &A::GetCopyUsingShortNames, &A::SetCopyUsingShortNames);
  P.Boolean("CopyNetworkedFiles", &A::GetCopyNetworkedFiles, &A::SetCopyNetworkedFiles);
  P.Boolean("CopyNewerFiles", &A::GetCopyNewerFiles, &A::SetCopyNewerFiles);
  P.Boolean("CopyFilesChnagedAfter", &A::GetCopyFilesChnagedAfter, &A::SetCopyFilesChnagedAfter);
  P.Boolean("Verify", &A::GetVerify, &A::SetVerify);
  P.Boolean("IgnoreErrors", &A::GetIgnoreErrors, &A::SetIgnoreErrors);
  P.DateTime("ChangedAfterDate", &A::GetChangedAfterDate, &A::SetChangedAfterDate);
  P.Boolean("CopyOwnershipAndACL", &A::GetCopyOwnershipAndACL, &A::SetCopyOwnershipAndACL);
  P.Boolean("CopyFileAuditSettings", &A::GetCopyFileAuditSettings, &A::SetCopyFileAuditSettings);
  P.Boolean("CopyEncryptedIfNotSupportedInDest", &A::GetCopyEncryptedIfNotSupportedInDest,
            &A::SetCopyEncryptedIfNotSupportedInDest);
  P.Boolean("CopyEmptyDirectories", &A::GetCopyEmptyDirectories, &A::SetCopyEmptyDirectories);
}

TZTXCopyAction::TZTXCopyAction() : FChangedAfterDate(std::floor(pf::Now())) {}

std::string FormatXCopyDate(pf::TDateTime D) { return pf::FormatDateTime("m-d-yyyy", D); }

bool TZTXCopyAction::Execute() {
  struct Cleanup {
    TZTXCopyAction& Self;
    ~Cleanup() { Self.RemoveExclusionFile(); }
  } Guard{*this};
  std::atomic_ref<pf::BOOL>(FTerminate).store(0);
#ifdef _WIN32
  return inherited::Execute();
#else
  // No xcopy here: the built-in one takes the same arguments.
  return RunWithBuiltInTool(*this, [this](const std::vector<std::string>& Args, pf::IToolOutput& Out) {
    return pf::RunXCopy(Args, Out, &FTerminate);
  });
#endif
}

void TZTXCopyAction::TerminateAction() {
  std::atomic_ref<pf::BOOL>(FTerminate).store(1);
  inherited::TerminateAction();
}

std::string TZTXCopyAction::GetExecutable() {
  return pf::IncludeTrailingPathDelimiter(pf::GetSysDirectory()) + "xcopy.exe";
}

std::string TZTXCopyAction::GetStartingDir(const std::string& Default) {
  std::string Dir;
  return TryExpandExpression("Source", FSource, false, Dir) ? Dir : Default;
}

bool TZTXCopyAction::GetCommandLine(frame::ICommandLineBuilder& Builder) {
  std::string Source, Destination;
  if (!TryExpandExpression("Source", FSource, true, Source)) return false;
  Builder.AddArgument("", Source, frame::akSwitchOrPath);
  if (!TryExpandExpression("Destination", FDestination, true, Destination)) return false;
  Builder.AddArgument("", Destination, frame::akSwitchOrPath);
  const auto Switch = [&Builder](const char* Name, bool When = true) {
    if (When) Builder.AddArgument(Name, "", frame::akSwitchOrPath);
  };
  Switch("/Y");
  Switch("/I");
  if (!AddExclusionList(Builder)) return false;
  Switch("/Q", FXCopyLogMode == logQuiet);
  Switch("/F", FXCopyLogMode == logVerbose);
  Switch("/S", FXCopyMode == mdRecursive);
  Switch("/L", FXCopyMode == mdTest);
  Switch("/T", FXCopyMode == mdDirStructure);
  Switch("/E", FCopyEmptyDirectories && (FXCopyMode == mdRecursive || FXCopyMode == mdDirStructure));
  Switch("/A", FOnlyArchiveFiles && !FTurnOffArchiveBit);
  Switch("/M", FOnlyArchiveFiles && FTurnOffArchiveBit);
  Switch("/H", FCopyHiddenAndSys);
  Switch("/R", FOverwriteReadOnly);
  Switch("/K", FCopyAttributes);
  Switch("/U", FOnlyFilesThatAlreadyExist);
  Switch("/Z", FCopyNetworkedFiles);
  Switch("/V", FVerify);
  Switch("/C", FIgnoreErrors);
  Switch("/D", FCopyNewerFiles);
  if (FCopyFilesChnagedAfter) Builder.AddArgument("/D:", FormatXCopyDate(FChangedAfterDate), frame::akSwitchValue);
  Switch("/N", FCopyUsingShortNames);
  Switch("/X", FCopyFileAuditSettings);
  Switch("/G", FCopyEncryptedIfNotSupportedInDest);
  Switch("/O", FCopyOwnershipAndACL);
  SendMessage("Calling xcopy using command line: " + Builder.GetCommandLineText());
  return true;
}

bool TZTXCopyAction::AddExclusionList(frame::ICommandLineBuilder& Builder) {
  frame::TStrings Lines;
  std::string Text;
  for (int I = 0; I < FExcludeFiles.Count(); ++I) {
    std::string Line;
    if (!TryExpandExpression("Excluded file " + std::to_string(I), FExcludeFiles[I], true, Line)) return false;
    if (Line.empty()) continue;
    Text += Line + "\r\n";
    Lines.Add(std::move(Line));
  }
  if (Lines.Count() == 0) return true;
  if (Text.find_first_of("*?") != std::string::npos)
    SendMessage("Warning: Excluded file list contains wildcard characters. XCopy exclude list does not support "
                "wildcards, substring matching only.");
  FTempFileName = pf::GetTemporaryFileName("xcp");
  const pf::THandle H = FTempFileName.empty() ? pf::INVALID_HANDLE_VALUE : pf::FileCreate(FTempFileName);
  const bool Written = H != pf::INVALID_HANDLE_VALUE &&
                       pf::FileWrite(H, Text.data(), static_cast<int>(Text.size())) == static_cast<int>(Text.size());
  const pf::DWORD Error = pf::GetLastError();
  if (H != pf::INVALID_HANDLE_VALUE) pf::FileClose(H);
  if (!Written) throw std::runtime_error("Cannot create file \"" + FTempFileName + "\". " + pf::SysErrorMessage(Error));
  Builder.AddArgument("/EXCLUDE:", FTempFileName, frame::akSwitchValue);
  return true;
}

bool TZTXCopyAction::InterpretResult(int ExitCode) {
  const bool Result = inherited::InterpretResult(ExitCode);
  RemoveExclusionFile();
  return Result;
}

void TZTXCopyAction::RemoveExclusionFile() {
  if (!FTempFileName.empty()) pf::DeleteTemporaryFile(FTempFileName);
  FTempFileName.clear();
}

bool TZTXCopyAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Result = true;
  if (FSource.empty()) {
    Errors.AddError("Source", "A source must be specified");
    Result = false;
  }
  if (FDestination.empty()) {
    Errors.AddError("Destination", "A destination must be specified");
    Result = false;
  }
  return Result;
}

std::string TZTXCopyAction::GetFormattedDescription() {
  return GetTitle() + " [ " + FSource + " -> " + FDestination + " ]";
}

}  // namespace zt::package
