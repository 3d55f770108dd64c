// "Set File Attributes": sets or clears the read-only, archive, system and
// hidden bits of every file a file specification names, optionally in all
// sub-directories too. Stops at the first file whose attributes cannot be
// set.
#pragma once

#include <stdexcept>
#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

// What to do with one attribute bit.
enum TAttributeSetting { asNone, asSet, asClear };

// Raised (and caught by Execute) when a file's attributes cannot be set.
class EFileAttributeException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TCustomSetFileAttributesAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TCustomSetFileAttributesAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Set File Attributes"; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 556; }
  std::string GetQuickHelpFilename() override { return "Plugins\\SetFileAttributes.html"; }

  const std::string& GetFileSpec() const { return FFileSpec; }
  void SetFileSpec(const std::string& Value) { FFileSpec = Value; }
  bool GetRecurse() const { return FRecurse; }
  void SetRecurse(bool Value) { FRecurse = Value; }
  bool GetLogAllFiles() const { return FLogAllFiles; }
  void SetLogAllFiles(bool Value) { FLogAllFiles = Value; }
  bool GetFailIfFileNotFound() const { return FFailIfFileNotFound; }
  void SetFailIfFileNotFound(bool Value) { FFailIfFileNotFound = Value; }
  TAttributeSetting GetArchive() const { return FArchive; }
  void SetArchive(TAttributeSetting Value) { FArchive = Value; }
  TAttributeSetting GetHidden() const { return FHidden; }
  void SetHidden(TAttributeSetting Value) { FHidden = Value; }
  TAttributeSetting GetReadOnly() const { return FReadOnly; }
  void SetReadOnly(TAttributeSetting Value) { FReadOnly = Value; }
  TAttributeSetting GetSystemFile() const { return FSystemFile; }
  void SetSystemFile(TAttributeSetting Value) { FSystemFile = Value; }

 protected:
  // Processes the matches of Spec (only the first one when Spec has no
  // wildcard), then, with Recurse, the same name pattern in every
  // sub-directory. Raises EFileAttributeException at the first failure.
  void DoRecursiveAction(frame::IZTActionLogMessage& Entry, const std::string& Spec, bool Recurse);
  void ProcessFile(frame::IZTActionLogMessage& Entry, const std::string& FileName, int Attributes);

  std::string FFileSpec;
  bool FRecurse = false;
  bool FLogAllFiles = false;
  bool FFailIfFileNotFound = false;
  TAttributeSetting FArchive = asNone;
  TAttributeSetting FHidden = asNone;
  TAttributeSetting FReadOnly = asNone;
  TAttributeSetting FSystemFile = asNone;
  bool FFound = false;  // a file matched during the current run
};

// The registered type: publishes every property, in this order: FileSpec,
// Recurse, Archive, Hidden, ReadOnly, SystemFile, LogAllFiles,
// FailIfFileNotFound.
class TSetFileAttributesAction : public TCustomSetFileAttributesAction {
  ZT_DECLARE_CLASS(TSetFileAttributesAction, TCustomSetFileAttributesAction)

 public:
  static void Publish(frame::TZTPublisher<TSetFileAttributesAction>& P);
};

// The design-time editor's reading of typed text: "SET" and "CLEAR" in any
// letter case; anything else leaves the bit alone.
TAttributeSetting AttributeSettingFromText(const std::string& Text);

}  // namespace zt::package
