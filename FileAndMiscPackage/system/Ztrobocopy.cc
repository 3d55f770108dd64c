#include "system/Ztrobocopy.h"

#include <memory>

#include "frame/ZTUtils.h"
#include "platform/paths.h"
#include "platform/system_paths.h"
#include "platform/tools/robocopy.h"
#include "system/Ztrobocopyoptions.h"
#include "system/Zttoolengine.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTCustomRobocopyAction, &TZTCustomRobocopyAction::Publish)
ZT_IMPLEMENT_CLASS(TZTRobocopyJobAction, &TZTRobocopyJobAction::Publish)
ZT_IMPLEMENT_CLASS(TZTRobocopySelectionAction, &TZTRobocopySelectionAction::Publish)
ZT_IMPLEMENT_CLASS(TZTRobocopyMirrorAction, nullptr)
ZT_IMPLEMENT_CLASS(TZTCustomRobocopyCopyAction, &TZTCustomRobocopyCopyAction::Publish)
ZT_IMPLEMENT_CLASS(TZTRobocopyCopyAction, &TZTRobocopyCopyAction::Publish)
ZT_IMPLEMENT_CLASS(TZTRobocopyMoveAction, &TZTRobocopyMoveAction::Publish)

namespace {

const std::vector<std::string> kAttributeNames = {"raReadOnly",   "raArchive",   "raSystem",
                                                  "raHidden",     "raCompressed", "raNotIndexed",
                                                  "raEncrypted",  "raTemporary", "raOffline"};

void Flag(frame::ICommandLineBuilder& B, const char* Switch, bool When = true) {
  if (When) B.AddArgument(Switch, "", frame::akSwitchOrPath);
}

void Value(frame::ICommandLineBuilder& B, const char* Switch, const std::string& V) {
  B.AddArgument(Switch, V, frame::akSwitchValue);
}

void Attributes(frame::ICommandLineBuilder& B, const char* Switch, int Set) {
  if (Set) Value(B, Switch, RobocopyAttributeLetters(Set));
}

// "[Page]" then "Name=Caption" for each property whose caption is not just
// its name split into words.
void Page(frame::TStrings& List, const char* Heading, std::initializer_list<const char*> Aliases) {
  List.Add(std::string("[") + Heading + "]");
  for (const char* A : Aliases) List.Add(A);
}

}  // namespace

std::string RobocopyAttributeLetters(int Set) {
  static const char kLetters[] = "RASHCNETO";
  std::string L;
  for (int I = 0; I < 9; ++I)
    if (Set & (1 << I)) L += kLetters[I];
  return L;
}

std::string RobocopyExitWords(int Code) {
  static const char* kWords[] = {"files copied", "extra files or directories", "mismatched files or directories",
                                 "copy failures", "serious error"};
  std::string W;
  for (int I = 0; I < 5; ++I)
    if (Code & (1 << I)) W += (W.empty() ? "" : ", ") + std::string(kWords[I]);
  return W.empty() ? "no change" : W;
}

void TZTCustomRobocopyAction::Publish(frame::TZTPublisher<TZTCustomRobocopyAction>& P) {
  using A = TZTCustomRobocopyAction;
  P.String("Source", &A::GetSource, &A::SetSource);
  P.String("Destination", &A::GetDestination, &A::SetDestination);
  P.StringList("Files", &A::GetFilesText, &A::SetFilesText);
  P.Integer("Retries", &A::GetRetries, &A::SetRetries);
  P.Integer("RetryWait", &A::GetRetryWait, &A::SetRetryWait);
  P.Integer("Threads", &A::GetThreads, &A::SetThreads);
  P.String("AdditionalSwitches", &A::GetAdditionalSwitches, &A::SetAdditionalSwitches);
  P.Integer("FailureLevel", &A::GetFailureLevel, &A::SetFailureLevel);
  P.Integer("ReturnCode", &A::GetReturnCode).Stored = false;
  P.Boolean("ListOnly", &A::GetListOnly, &A::SetListOnly);
  P.Boolean("ReportExtra", &A::GetReportExtra, &A::SetReportExtra);
  P.Boolean("Verbose", &A::GetVerbose, &A::SetVerbose);
  P.Boolean("TimeStamps", &A::GetTimeStamps, &A::SetTimeStamps);
  P.Boolean("FullPaths", &A::GetFullPaths, &A::SetFullPaths);
  P.Boolean("NoSizes", &A::GetNoSizes, &A::SetNoSizes);
  P.Boolean("NoClasses", &A::GetNoClasses, &A::SetNoClasses);
  P.Boolean("NoFileList", &A::GetNoFileList, &A::SetNoFileList);
  P.Boolean("NoDirList", &A::GetNoDirList, &A::SetNoDirList);
  P.Boolean("Tee", &A::GetTee, &A::SetTee);
  P.Boolean("NoJobHeader", &A::GetNoJobHeader, &A::SetNoJobHeader);
  P.Boolean("NoJobSummary", &A::GetNoJobSummary, &A::SetNoJobSummary);
  P.Boolean("NoProgress", &A::GetNoProgress, &A::SetNoProgress);
  P.String("LogFile", &A::GetLogFile, &A::SetLogFile);
  P.Boolean("AppendLog", &A::GetAppendLog, &A::SetAppendLog);
  P.Boolean("UnicodeLog", &A::GetUnicodeLog, &A::SetUnicodeLog);
}

void TZTRobocopyJobAction::Publish(frame::TZTPublisher<TZTRobocopyJobAction>& P) {
  using A = TZTRobocopyJobAction;
  P.String("JobFile", &A::GetJobFile, &A::SetJobFile);
  P.Boolean("NoSourceDir", &A::GetNoSourceDir, &A::SetNoSourceDir);
  P.Boolean("NoDestDir", &A::GetNoDestDir, &A::SetNoDestDir);
}

void TZTRobocopySelectionAction::Publish(frame::TZTPublisher<TZTRobocopySelectionAction>& P) {
  using A = TZTRobocopySelectionAction;
  P.Boolean("OnlyArchive", &A::GetOnlyArchive, &A::SetOnlyArchive);
  P.Boolean("ResetArchive", &A::GetResetArchive, &A::SetResetArchive);
  P.Boolean("IncludeSame", &A::GetIncludeSame, &A::SetIncludeSame);
  P.Boolean("IncludeTweaked", &A::GetIncludeTweaked, &A::SetIncludeTweaked);
  P.Set("IncludeAttributes", "TZTRobocopyAttributes", kAttributeNames, &A::GetIncludeAttributes,
        &A::SetIncludeAttributes);
  P.Integer("MaxSize", &A::GetMaxSize, &A::SetMaxSize);
  P.Integer("MinSize", &A::GetMinSize, &A::SetMinSize);
  P.String("MaxAge", &A::GetMaxAge, &A::SetMaxAge);
  P.String("MinAge", &A::GetMinAge, &A::SetMinAge);
  P.Set("ExcludeAttributes", "TZTRobocopyAttributes", kAttributeNames, &A::GetExcludeAttributes,
        &A::SetExcludeAttributes);
  P.Boolean("ExcludeChanged", &A::GetExcludeChanged, &A::SetExcludeChanged);
  P.Boolean("ExcludeNewer", &A::GetExcludeNewer, &A::SetExcludeNewer);
  P.Boolean("ExcludeOlder", &A::GetExcludeOlder, &A::SetExcludeOlder);
  P.Boolean("ExcludeExtra", &A::GetExcludeExtra, &A::SetExcludeExtra);
  P.Boolean("ExcludeLonely", &A::GetExcludeLonely, &A::SetExcludeLonely);
  P.Boolean("ExcludeLinks", &A::GetExcludeLinks, &A::SetExcludeLinks);
  P.Boolean("FatFileTimes", &A::GetFatFileTimes, &A::SetFatFileTimes);
  P.Boolean("CompensateDST", &A::GetCompensateDST, &A::SetCompensateDST);
  P.StringList("ExcludeFiles", &A::GetExcludeFilesText, &A::SetExcludeFilesText);
  P.StringList("ExcludeDirs", &A::GetExcludeDirsText, &A::SetExcludeDirsText);
}

void TZTCustomRobocopyCopyAction::Publish(frame::TZTPublisher<TZTCustomRobocopyCopyAction>& P) {
  using A = TZTCustomRobocopyCopyAction;
  P.Boolean("CopySubDirs", &A::GetCopySubDirs, &A::SetCopySubDirs);
  P.Boolean("CopyEmptySubDirs", &A::GetCopyEmptySubDirs, &A::SetCopyEmptySubDirs);
  P.Integer("Levels", &A::GetLevels, &A::SetLevels);
  P.Set("AddAttributes", "TZTRobocopyAttributes", kAttributeNames, &A::GetAddAttributes, &A::SetAddAttributes);
  P.Set("RemoveAttributes", "TZTRobocopyAttributes", kAttributeNames, &A::GetRemoveAttributes,
        &A::SetRemoveAttributes);
}

void TZTRobocopyCopyAction::Publish(frame::TZTPublisher<TZTRobocopyCopyAction>& P) {
  using A = TZTRobocopyCopyAction;
  P.String("CopyFlags", &A::GetCopyFlags, &A::SetCopyFlags);
  P.String("DirCopyFlags", &A::GetDirCopyFlags, &A::SetDirCopyFlags);
  P.Boolean("Purge", &A::GetPurge, &A::SetPurge);
  P.Boolean("CreateOnly", &A::GetCreateOnly, &A::SetCreateOnly);
  P.Boolean("CopyLinks", &A::GetCopyLinks, &A::SetCopyLinks);
  P.Boolean("Restartable", &A::GetRestartable, &A::SetRestartable);
  P.Boolean("BackupMode", &A::GetBackupMode, &A::SetBackupMode);
}

void TZTRobocopyMoveAction::Publish(frame::TZTPublisher<TZTRobocopyMoveAction>& P) {
  using A = TZTRobocopyMoveAction;
  P.Boolean("MoveDirectories", &A::GetMoveDirectories, &A::SetMoveDirectories);
}

// ---- Running ----

bool TZTCustomRobocopyAction::UsesSystemTool() {
  return GetOptionValue(TZTRobocopyOptions::ClassType().ClassName, "Engine").AsString() == "reSystemTool";
}

bool TZTCustomRobocopyAction::Execute() {
  std::atomic_ref<pf::BOOL>(FTerminate).store(0);
  if (UsesSystemTool()) {
#ifdef _WIN32
    return inherited::Execute();
#else
    SendMessage("The system robocopy tool is not available here; using the built-in engine");
#endif
  }
  return RunWithBuiltInTool(*this, [this](const std::vector<std::string>& Args, pf::IToolOutput& Out) {
    return pf::RunRobocopy(Args, Out, &FTerminate);
  });
}

void TZTCustomRobocopyAction::TerminateAction() {
  std::atomic_ref<pf::BOOL>(FTerminate).store(1);
  inherited::TerminateAction();
}

std::string TZTCustomRobocopyAction::GetExecutable() {
  std::string Path = GetOptionValue(TZTRobocopyOptions::ClassType().ClassName, "RobocopyPath").AsString();
  return Path.empty() ? pf::IncludeTrailingPathDelimiter(pf::GetSysDirectory()) + "robocopy.exe" : Path;
}

bool TZTCustomRobocopyAction::Expand(const std::string& Caption, const std::string& Text, bool IsName,
                                     std::string& Out) {
  if (!TryExpandExpression(Caption, Text, IsName, Out)) return false;
  if (IsName) Out = frame::Trim(Out);
  return true;
}

bool TZTCustomRobocopyAction::AddList(frame::ICommandLineBuilder& B, const char* Switch, const char* Caption,
                                      const frame::TStrings& L) {
  bool First = true;
  for (int I = 0; I < L.Count(); ++I) {
    std::string Item;
    if (!Expand(Caption, L[I], true, Item)) return false;
    if (Item.empty()) continue;
    if (First && Switch) Flag(B, Switch);
    First = false;
    B.AddArgument("", Item, frame::akSwitchOrPath);
  }
  return true;
}

bool TZTCustomRobocopyAction::AddPaths(frame::ICommandLineBuilder& B) {
  std::string Source, Dest;
  if (!Expand("Source Directory", FSource, true, Source) || !Expand("Destination Directory", FDestination, true, Dest))
    return false;
  B.AddArgument("", Source, frame::akSwitchOrPath);
  B.AddArgument("", Dest, frame::akSwitchOrPath);
  return AddList(B, nullptr, "Files", FFiles);
}

bool TZTCustomRobocopyAction::GetCommandLine(frame::ICommandLineBuilder& B) {
  FReturnCode = kNoReturnCode;
  if (!AddPaths(B) || !AddTreeOptions(B) || !AddSelection(B)) return false;
  const std::string Options = TZTRobocopyOptions::ClassType().ClassName;
  const auto OrDefault = [&](std::int32_t V, const char* Default) {
    return V >= 0 ? std::int64_t{V} : GetOptionValue(Options, Default).AsInteger();
  };
  Value(B, "/R:", std::to_string(OrDefault(FRetries, "DefaultRetries")));
  Value(B, "/W:", std::to_string(OrDefault(FRetryWait, "DefaultRetryWait")));
  if (FThreads > 0) Value(B, "/MT:", std::to_string(FThreads));
  Flag(B, "/L", FListOnly);
  Flag(B, "/X", FReportExtra);
  Flag(B, "/V", FVerbose);
  Flag(B, "/TS", FTimeStamps);
  Flag(B, "/FP", FFullPaths);
  Flag(B, "/NS", FNoSizes);
  Flag(B, "/NC", FNoClasses);
  Flag(B, "/NFL", FNoFileList);
  Flag(B, "/NDL", FNoDirList);
  Flag(B, "/TEE", FTee);
  Flag(B, "/NJH", FNoJobHeader);
  Flag(B, "/NJS", FNoJobSummary);
  Flag(B, "/NP", FNoProgress);
  std::string Log;
  if (!Expand("Log File", FLogFile, true, Log)) return false;
  if (!Log.empty()) Value(B, FUnicodeLog ? (FAppendLog ? "/UNILOG+:" : "/UNILOG:") : (FAppendLog ? "/LOG+:" : "/LOG:"), Log);
  if (!AddJob(B)) return false;
  std::string Extra;
  if (!Expand("Additional Switches", FAdditionalSwitches, true, Extra)) return false;
  if (!Extra.empty()) B.AddArgument(Extra, "", frame::akLiteral);
  return true;
}

void TZTCustomRobocopyAction::BeforeExecute(frame::ICommandLineBuilder& Builder) {
  inherited::BeforeExecute(Builder);
#ifdef _WIN32
  const bool System = UsesSystemTool();
#else
  const bool System = false;
#endif
  SendMessage((System ? "Calling robocopy using command line: " : "Copying with the built-in engine : ") +
              Builder.GetCommandLineText());
}

bool TZTCustomRobocopyAction::InterpretResult(int ExitCode) {
  FReturnCode = ExitCode;
  SendMessage("Robocopy exit code : " + std::to_string(ExitCode) + " (" + RobocopyExitWords(ExitCode) + ")");
  return ExitCode < FFailureLevel;
}

// A job's paths override the job file's; empty ones leave the job's.
bool TZTRobocopyJobAction::AddPaths(frame::ICommandLineBuilder& B) {
  std::string Source, Dest;
  if (!Expand("Source Directory", FSource, true, Source) || !Expand("Destination Directory", FDestination, true, Dest))
    return false;
  if (!Source.empty()) Value(B, "/SD:", Source);
  if (!Dest.empty()) Value(B, "/DD:", Dest);
  return AddList(B, nullptr, "Files", FFiles);
}

bool TZTRobocopyJobAction::AddJob(frame::ICommandLineBuilder& B) {
  std::string Job;
  if (!Expand("Job File", FJobFile, true, Job)) return false;
  Value(B, "/JOB:", Job);
  Flag(B, "/NOSD", FNoSourceDir);
  Flag(B, "/NODD", FNoDestDir);
  return true;
}

bool TZTRobocopySelectionAction::AddSelection(frame::ICommandLineBuilder& B) {
  Flag(B, "/A", FOnlyArchive && !FResetArchive);
  Flag(B, "/M", FResetArchive);
  Flag(B, "/IS", FIncludeSame);
  Flag(B, "/IT", FIncludeTweaked);
  Attributes(B, "/IA:", FIncludeAttributes);
  if (FMaxSize > 0) Value(B, "/MAX:", std::to_string(FMaxSize));
  if (FMinSize > 0) Value(B, "/MIN:", std::to_string(FMinSize));
  std::string MaxAge, MinAge;
  if (!Expand("Max Age", FMaxAge, true, MaxAge) || !Expand("Min Age", FMinAge, true, MinAge)) return false;
  if (!MaxAge.empty()) Value(B, "/MAXAGE:", MaxAge);
  if (!MinAge.empty()) Value(B, "/MINAGE:", MinAge);
  Attributes(B, "/XA:", FExcludeAttributes);
  Flag(B, "/XC", FExcludeChanged);
  Flag(B, "/XN", FExcludeNewer);
  Flag(B, "/XO", FExcludeOlder);
  Flag(B, "/XX", FExcludeExtra);
  Flag(B, "/XL", FExcludeLonely);
  Flag(B, "/XJ", FExcludeLinks);
  Flag(B, "/FFT", FFatFileTimes);
  Flag(B, "/DST", FCompensateDST);
  return AddList(B, "/XF", "Exclude Files", FExcludeFiles) && AddList(B, "/XD", "Exclude Dirs", FExcludeDirs);
}

bool TZTRobocopyMirrorAction::AddTreeOptions(frame::ICommandLineBuilder& B) {
  Flag(B, "/MIR");
  return true;
}

bool TZTCustomRobocopyCopyAction::AddTreeOptions(frame::ICommandLineBuilder& B) {
  Flag(B, "/S", FCopySubDirs && !FCopyEmptySubDirs);
  Flag(B, "/E", FCopyEmptySubDirs);
  if (FLevels > 0) Value(B, "/LEV:", std::to_string(FLevels));
  Attributes(B, "/A+:", FAddAttributes);
  Attributes(B, "/A-:", FRemoveAttributes);
  return true;
}

bool TZTRobocopyCopyAction::AddTreeOptions(frame::ICommandLineBuilder& B) {
  inherited::AddTreeOptions(B);
  if (FCopyFlags != "DAT") Value(B, "/COPY:", FCopyFlags);
  if (FDirCopyFlags != "DA") Value(B, "/DCOPY:", FDirCopyFlags);
  Flag(B, "/PURGE", FPurge);
  Flag(B, "/CREATE", FCreateOnly);
  Flag(B, "/SL", FCopyLinks);
  Flag(B, "/Z", FRestartable);
  Flag(B, "/B", FBackupMode);
  return true;
}

bool TZTRobocopyMoveAction::AddTreeOptions(frame::ICommandLineBuilder& B) {
  inherited::AddTreeOptions(B);
  Flag(B, FMoveDirectories ? "/MOVE" : "/MOV");
  return true;
}

// ---- Design time ----

bool TZTCustomRobocopyAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Ok = true;
  if (FSource.empty()) Errors.AddError("Source Directory", "A source must be specified"), Ok = false;
  if (FDestination.empty()) Errors.AddError("Destination Directory", "A destination must be specified"), Ok = false;
  if (FThreads < 0 || FThreads > 128) Errors.AddError("Threads", "Threads must be between 0 and 128"), Ok = false;
  return Ok;
}

bool TZTRobocopyJobAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Ok = true;
  if (FJobFile.empty()) Errors.AddError("Job File", "A job file must be specified"), Ok = false;
  if (FThreads < 0 || FThreads > 128) Errors.AddError("Threads", "Threads must be between 0 and 128"), Ok = false;
  return Ok;
}

std::string TZTCustomRobocopyAction::GetFormattedDescription() {
  return GetTitle() + " [ " + FSource + " -> " + FDestination + " ]";
}

std::string TZTRobocopyJobAction::GetFormattedDescription() { return GetTitle() + " [ " + FJobFile + " ]"; }

void TZTCustomRobocopyAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  Page(List, "Main", {"Source=Source Directory", "Destination=Destination Directory", "Files=Files",
                      "Retries=Retries", "RetryWait=Retry Wait", "Threads=Threads",
                      "AdditionalSwitches=Additional Switches", "FailureLevel=Failure Level"});
  Page(List, "Log", {"ListOnly=List Only", "ReportExtra=Report Extra", "Verbose=Verbose", "TimeStamps=Time Stamps",
                     "FullPaths=Full Paths", "NoSizes=No Sizes", "NoClasses=No Classes", "NoFileList=No File List",
                     "NoDirList=No Dir List", "Tee=Tee", "NoJobHeader=No Job Header",
                     "NoJobSummary=No Job Summary", "NoProgress=No Progress", "LogFile=Log File",
                     "AppendLog=Append Log", "UnicodeLog=Unicode Log"});
}

void TZTCustomRobocopyAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("Source=The directory to copy from");
  List.Add("Destination=The directory to copy to");
  List.Add("Files=Names or wildcards of the files to copy, one a line (empty: all files)");
  List.Add("Retries=Retries of a failed copy (/R); -1: the robocopy options' default");
  List.Add("RetryWait=Seconds between retries (/W); -1: the robocopy options' default");
  List.Add("Threads=Files copied at once (/MT); 0: one at a time");
  List.Add("AdditionalSwitches=More robocopy switches, appended as written");
  List.Add("FailureLevel=The action fails when the exit code is at least this (8: copy failures)");
  List.Add("ListOnly=List what would be done, changing nothing (/L)");
  List.Add("NoProgress=Send no progress of each file (/NP)");
  List.Add("LogFile=Write the output to this file (/LOG); the build log gets it only with Tee");
}

void TZTCustomRobocopyAction::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("ReturnCode");
}

void TZTCustomRobocopyAction::GetReadOnlyProperties(frame::TStrings& List) {
  inherited::GetReadOnlyProperties(List);
  List.Add("ReturnCode");
}

void TZTRobocopyJobAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  Page(List, "Jobs", {"JobFile=Job File", "NoSourceDir=No Source Dir", "NoDestDir=No Dest Dir"});
}

void TZTRobocopyJobAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("JobFile=The job file whose switches to run (/JOB); Source and Destination override its paths");
}

void TZTRobocopySelectionAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  Page(List, "Include", {"OnlyArchive=Only Archive", "ResetArchive=Reset Archive", "IncludeSame=Include Same",
                         "IncludeTweaked=Include Tweaked", "IncludeAttributes=Include Attributes",
                         "MaxSize=Max Size", "MinSize=Min Size", "MaxAge=Max Age", "MinAge=Min Age"});
  Page(List, "Exclude", {"ExcludeAttributes=Exclude Attributes", "ExcludeChanged=Exclude Changed",
                         "ExcludeNewer=Exclude Newer", "ExcludeOlder=Exclude Older", "ExcludeExtra=Exclude Extra",
                         "ExcludeLonely=Exclude Lonely", "ExcludeLinks=Exclude Links",
                         "FatFileTimes=Fat File Times", "CompensateDST=Compensate DST"});
  Page(List, "Exclude Files", {"ExcludeFiles=Exclude Files"});
  Page(List, "Exclude Directories", {"ExcludeDirs=Exclude Dirs"});
}

void TZTRobocopySelectionAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("MaxAge=Leave out files older than this: days (below 1900) or a date YYYYMMDD");
  List.Add("MinAge=Leave out files newer than this: days (below 1900) or a date YYYYMMDD");
  List.Add("ExcludeFiles=Files to leave alone on both sides: names, wildcards or paths, one a line (/XF)");
  List.Add("ExcludeDirs=Directories to leave alone on both sides: names, wildcards or paths, one a line (/XD)");
}

void TZTCustomRobocopyCopyAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  Page(List, "Copy Options", {"CopySubDirs=Copy Sub Dirs", "CopyEmptySubDirs=Copy Empty Sub Dirs", "Levels=Levels",
                              "AddAttributes=Add Attributes", "RemoveAttributes=Remove Attributes"});
}

void TZTCustomRobocopyCopyAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("Levels=How many directory levels to copy (/LEV); 0: all");
}

void TZTRobocopyCopyAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("CopyFlags=Copy Flags");
  List.Add("DirCopyFlags=Dir Copy Flags");
  List.Add("Purge=Purge");
  List.Add("CreateOnly=Create Only");
  List.Add("CopyLinks=Copy Links");
  List.Add("Restartable=Restartable");
  List.Add("BackupMode=Backup Mode");
}

void TZTRobocopyCopyAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("Purge=Delete destination files and directories the source no longer has (/PURGE)");
}

void TZTRobocopyMoveAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  Page(List, "Move Options", {"MoveDirectories=Move Directories"});
}

void TZTRobocopyMoveAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("MoveDirectories=Also remove the source directories the move leaves empty (/MOVE)");
}

}  // namespace zt::package
