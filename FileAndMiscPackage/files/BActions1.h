// Small actions on one file or directory: "Check if File Exists" (by file
// specification or by project file set) and "Create Directory".
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

// What an action on one file or directory works on and needs.
enum TFileDirFlag { fdIsDir, fdIsFile, fdMustExist, fdAllowWildCards, fdForce, fdHasTarget, fdDelTree };

// A set of TFileDirFlag: bit n stands for the flag of ordinal n.
class TFileDirFlags {
 public:
  constexpr TFileDirFlags() = default;
  constexpr TFileDirFlags(std::initializer_list<TFileDirFlag> Flags) {
    for (TFileDirFlag F : Flags) Bits_ |= Bit(F);
  }
  constexpr bool Contains(TFileDirFlag F) const { return (Bits_ & Bit(F)) != 0; }
  constexpr std::uint32_t Bits() const { return Bits_; }
  constexpr bool operator==(const TFileDirFlags&) const = default;

 private:
  static constexpr std::uint32_t Bit(TFileDirFlag F) { return std::uint32_t{1} << F; }
  std::uint32_t Bits_ = 0;
};

// Base of the actions on one file or directory; publishes FileOrDirectory.
class TFileOrDirectoryAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TFileOrDirectoryAction, frame::TCustomZTAction)

 public:
  // The class's flags (a class query: the same for every object).
  virtual TFileDirFlags GetFlags() const { return {}; }

  const std::string& GetFileOrDirectory() const { return FFileOrDirectory; }
  void SetFileOrDirectory(const std::string& Value) { FFileOrDirectory = Value; }
  static void Publish(frame::TZTPublisher<TFileOrDirectoryAction>& P);

 protected:
  std::string FFileOrDirectory;
};

// How the answer of "Check if File Exists" becomes the run's result.
enum TFileExistsMode { feFailIfExists, feFailIfMissing, feIgnore };

class TFileExistsAction : public TFileOrDirectoryAction {
  ZT_DECLARE_CLASS(TFileExistsAction, TFileOrDirectoryAction)

 public:
  static std::string GetActionName() { return "Check if File Exists"; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetHiddenProperties(frame::TStrings& List) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 551; }
  std::string GetQuickHelpFilename() override { return "Plugins\\CheckFileExists.html"; }

  const std::string& GetFileSet() const { return FFileSet; }
  void SetFileSet(const std::string& Value) { FFileSet = Value; }
  // Legacy: true means feFailIfExists, false feFailIfMissing. Reads true
  // exactly when the mode is feFailIfExists.
  bool GetFailIfExists() const { return FExistsMode == feFailIfExists; }
  void SetFailIfExists(bool Value) { FExistsMode = Value ? feFailIfExists : feFailIfMissing; }
  TFileExistsMode GetExistsMode() const { return FExistsMode; }
  void SetExistsMode(TFileExistsMode Value) { FExistsMode = Value; }
  // The name of the variable that receives the answer. (SetVariable here
  // is the property's setter; the host service is TCustomZTAction's.)
  const std::string& GetVariable() const { return FVariable; }
  void SetVariable(const std::string& Value) { FVariable = Value; }
  bool GetUseFileSpec() const { return FUseFileSpec; }
  void SetUseFileSpec(bool Value) { FUseFileSpec = Value; }
  static void Publish(frame::TZTPublisher<TFileExistsAction>& P);

 protected:
  bool FileSpecExists();
  bool FileSetExists();

  std::string FFileSet;
  TFileExistsMode FExistsMode = feFailIfMissing;
  std::string FVariable;
  bool FUseFileSpec = true;
};

class TCreateDirectoryAction : public TFileOrDirectoryAction {
  ZT_DECLARE_CLASS(TCreateDirectoryAction, TFileOrDirectoryAction)

 public:
  static std::string GetActionName() { return "Create Directory"; }
  TFileDirFlags GetFlags() const override { return {fdIsDir, fdForce}; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 552; }
  std::string GetQuickHelpFilename() override { return "Plugins\\CreateDirectory.html"; }

  bool GetForce() const { return FForce; }
  void SetForce(bool Value) { FForce = Value; }
  static void Publish(frame::TZTPublisher<TCreateDirectoryAction>& P);

 protected:
  bool FForce = false;
};

}  // namespace zt::package
