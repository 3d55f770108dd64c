#include "checksums/Ztfilecrcaction.h"

#include <exception>

#include "checksums/Ztcrccalc.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

ZT_IMPLEMENT_CLASS(TZTFileCRCAction, &TZTFileCRCAction::Publish)

void TZTFileCRCAction::Publish(frame::TZTPublisher<TZTFileCRCAction>& P) {
  using A = TZTFileCRCAction;
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.Boolean("FailIfDiffToFile", &A::GetFailIfDiffToFile, &A::SetFailIfDiffToFile);
  P.String("CompareToFile", &A::GetCompareToFile, &A::SetCompareToFile);
  P.Boolean("FailIfDiffToCRC", &A::GetFailIfDiffToCRC, &A::SetFailIfDiffToCRC);
  P.String("CompareToCRC", &A::GetCompareToCRC, &A::SetCompareToCRC);
  P.Boolean("UseDecimal", &A::GetUseDecimal, &A::SetUseDecimal);
}

std::string TZTFileCRCAction::CalculateCRC(const std::string& FileName) {
  std::string Crc = GetCRC32(FileName);
  // "$" marks hexadecimal; eight digits always fit an unsigned decimal.
  if (FUseDecimal) Crc = std::to_string(std::stoull(Crc.substr(1), nullptr, 16));
  return Crc;
}

bool TZTFileCRCAction::Execute() {
  std::string FileName;
  if (!TryExpandExpression("FileName", FFileName, true, FileName)) return false;
  if (!platform::FileExists(FileName)) {
    SendMessage("ERROR - File missing: " + FileName);
    return false;
  }
  std::string Crc;
  try {
    Crc = CalculateCRC(FileName);
  } catch (const std::exception& E) {
    SendMessage(std::string("Error getting crc32 : ") + E.what());
    return false;
  }
  SendMessage("CRC32 for " + platform::ExtractFileName(FileName) + " is " + Crc);
  if (!FZTVariable.empty()) SetVariable(FZTVariable, frame::TZTVariant(Crc));

  if (FFailIfDiffToFile) {
    std::string File2;
    if (!TryExpandExpression("Compare to File", FCompareToFile, true, File2)) return false;
    if (!platform::FileExists(File2)) {
      SendMessage("ERROR - File missing: " + File2);
      return false;
    }
    std::string Crc2;
    try {
      Crc2 = CalculateCRC(File2);
    } catch (const std::exception& E) {
      SendMessage(std::string("Error getting crc32 for file2 : ") + E.what());
      return false;
    }
    if (Crc != Crc2) {
      SendMessage("CRC don't match");
      SendMessage("File 2 CRC: " + Crc2);
      return false;
    }
    SendMessage("CRC matches file: " + platform::ExtractFileName(File2));
  }

  if (FFailIfDiffToCRC) {
    std::string Expected;
    if (!TryExpandExpression("Compare to CRC", FCompareToCRC, false, Expected)) return false;
    if (Crc != Expected) {
      SendMessage("CRC don't match");
      SendMessage("Compare to CRC: " + Expected);
      return false;
    }
    SendMessage("CRC matches.");
  }
  return true;
}

bool TZTFileCRCAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FFileName.empty()) {
    Errors.AddError("File Name", "Filename has not been set");
    return false;
  }
  return true;
}

}  // namespace zt::package
