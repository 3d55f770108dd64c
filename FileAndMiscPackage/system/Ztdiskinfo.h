// "Get Disk Free Space": stores the space free to the build's user and the
// size of the volume that holds a path, in a chosen unit, and can fail when
// less than a minimum is free.
#pragma once

#include <cstdint>
#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

enum class TZTSizeUnit { suBytes, suKB, suMB, suGB };  // 1024-based

class TDiskInfoAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TDiskInfoAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Get Disk Free Space"; }
  static void Publish(frame::TZTPublisher<TDiskInfoAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override { return "Get Disk Free Space [ " + FDrive + " ]"; }
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 513; }
  std::string GetQuickHelpFilename() override { return "Plugins\\DiskFreeSpace.html"; }

  const std::string& GetDrive() const { return FDrive; }
  void SetDrive(const std::string& Value) { FDrive = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  const std::string& GetTotalVariable() const { return FTotalVariable; }
  void SetTotalVariable(const std::string& Value) { FTotalVariable = Value; }
  TZTSizeUnit GetSizeUnit() const { return FSizeUnit; }
  void SetSizeUnit(TZTSizeUnit Value) { FSizeUnit = Value; }
  int GetMinimumFree() const { return FMinimumFree; }
  void SetMinimumFree(int Value) { FMinimumFree = Value; }

 private:
  std::string FDrive;
  std::string FZTVariable;
  std::string FTotalVariable;
  TZTSizeUnit FSizeUnit = TZTSizeUnit::suMB;
  int FMinimumFree = 0;
};

}  // namespace zt::package
