// "Calculate File MD5": logs the MD5 digest of a file, can store it in a
// build variable, and fails when it differs from a second file's digest or
// from an expected text (both compared ignoring letter case).
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTFileMD5Action : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTFileMD5Action, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Calculate File MD5"; }
  static void Publish(frame::TZTPublisher<TZTFileMD5Action>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  int GetHelpTopicID() override { return 3300; }
  std::string GetQuickHelpFilename() override { return "Plugins\\FileMD5.html"; }

  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  bool GetFailIfDiffToFile() const { return FFailIfDiffToFile; }
  void SetFailIfDiffToFile(bool Value) { FFailIfDiffToFile = Value; }
  const std::string& GetCompareToFile() const { return FCompareToFile; }
  void SetCompareToFile(const std::string& Value) { FCompareToFile = Value; }
  bool GetFailIfDiffToMD5() const { return FFailIfDiffToMD5; }
  void SetFailIfDiffToMD5(bool Value) { FFailIfDiffToMD5 = Value; }
  const std::string& GetCompareToMD5() const { return FCompareToMD5; }
  void SetCompareToMD5(const std::string& Value) { FCompareToMD5 = Value; }

 private:
  // Steps of Execute that may raise; Execute turns an exception into two
  // messages and a failure.
  bool HashAndCompare();

  std::string FFileName;
  std::string FZTVariable;
  bool FFailIfDiffToFile = false;
  std::string FCompareToFile;
  bool FFailIfDiffToMD5 = false;
  std::string FCompareToMD5;
};

}  // namespace zt::package
