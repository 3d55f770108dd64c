// "Calculate File CRC32": logs the CRC-32 of a file, can store it in a build
// variable, and fails when it differs from a second file's CRC-32 or from an
// expected text (compared exactly, letter case included).
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTFileCRCAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTFileCRCAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Calculate File CRC32"; }
  static void Publish(frame::TZTPublisher<TZTFileCRCAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  int GetHelpTopicID() override { return 3290; }
  std::string GetQuickHelpFilename() override { return "Plugins\\FileCRC.html"; }

  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  bool GetFailIfDiffToFile() const { return FFailIfDiffToFile; }
  void SetFailIfDiffToFile(bool Value) { FFailIfDiffToFile = Value; }
  const std::string& GetCompareToFile() const { return FCompareToFile; }
  void SetCompareToFile(const std::string& Value) { FCompareToFile = Value; }
  bool GetFailIfDiffToCRC() const { return FFailIfDiffToCRC; }
  void SetFailIfDiffToCRC(bool Value) { FFailIfDiffToCRC = Value; }
  const std::string& GetCompareToCRC() const { return FCompareToCRC; }
  void SetCompareToCRC(const std::string& Value) { FCompareToCRC = Value; }
  bool GetUseDecimal() const { return FUseDecimal; }
  void SetUseDecimal(bool Value) { FUseDecimal = Value; }

 private:
  // GetCRC32's text, or its unsigned decimal value when UseDecimal is set.
  std::string CalculateCRC(const std::string& FileName);

  std::string FFileName;
  std::string FZTVariable;
  bool FFailIfDiffToFile = false;
  std::string FCompareToFile;
  bool FFailIfDiffToCRC = false;
  std::string FCompareToCRC;
  bool FUseDecimal = false;
};

}  // namespace zt::package
