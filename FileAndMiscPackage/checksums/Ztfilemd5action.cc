#include "checksums/Ztfilemd5action.h"

#include <exception>
#include <memory>

#include "checksums/Hashalgmd5.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {
namespace {

// Letter case ignored for ASCII letters only, as the run-time's text
// comparison does; digests are ASCII anyway.
bool SameText(const std::string& A, const std::string& B) {
  if (A.size() != B.size()) return false;
  for (std::size_t I = 0; I < A.size(); ++I) {
    char X = A[I], Y = B[I];
    if (X >= 'a' && X <= 'z') X = static_cast<char>(X - 'a' + 'A');
    if (Y >= 'a' && Y <= 'z') Y = static_cast<char>(Y - 'a' + 'A');
    if (X != Y) return false;
  }
  return true;
}

}  // namespace

ZT_IMPLEMENT_CLASS(TZTFileMD5Action, &TZTFileMD5Action::Publish)

void TZTFileMD5Action::Publish(frame::TZTPublisher<TZTFileMD5Action>& P) {
  using A = TZTFileMD5Action;
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.Boolean("FailIfDiffToFile", &A::GetFailIfDiffToFile, &A::SetFailIfDiffToFile);
  P.String("CompareToFile", &A::GetCompareToFile, &A::SetCompareToFile);
  P.Boolean("FailIfDiffToMD5", &A::GetFailIfDiffToMD5, &A::SetFailIfDiffToMD5);
  P.String("CompareToMD5", &A::GetCompareToMD5, &A::SetCompareToMD5);
}

bool TZTFileMD5Action::Execute() {
  try {
    return HashAndCompare();
  } catch (const std::exception& E) {
    SendMessage("Couldn't compute MD5:");
    SendMessage(E.what());
    return false;
  }
}

bool TZTFileMD5Action::HashAndCompare() {
  std::string FileName;
  if (!TryExpandExpression("FileName", FFileName, true, FileName)) return false;
  if (!platform::FileExists(FileName)) {
    SendMessage("ERROR - File missing: " + FileName);
    return false;
  }
  const auto Alg = std::make_unique<THashAlgMD5>();
  THashDigest Digest;
  Alg->ClearHash(Digest);
  if (!Alg->HashFile(FileName, Digest)) {
    SendMessage("Hash of file " + FileName + " failed");
    return false;
  }
  const std::string Display = Alg->HashToDisplay(Digest);
  SendMessage("MD5 for " + platform::ExtractFileName(FileName) + " is " + Display);
  if (!FZTVariable.empty()) SetVariable(FZTVariable, frame::TZTVariant(Display));

  if (FFailIfDiffToFile) {
    std::string File2;
    if (!TryExpandExpression("Compare to File", FCompareToFile, true, File2)) return false;
    if (!platform::FileExists(File2)) {
      SendMessage("ERROR - File missing: " + File2);
      return false;
    }
    THashDigest Digest2;
    Alg->ClearHash(Digest2);
    if (!Alg->HashFile(File2, Digest2)) {
      SendMessage("Hash of file " + File2 + " failed");
      return false;
    }
    const std::string Display2 = Alg->HashToDisplay(Digest2);
    if (!SameText(Display, Display2)) {
      SendMessage("MD5 don't match");
      SendMessage("File 2 MD5: " + Display2);
      return false;
    }
    SendMessage("MD5 matches file: " + platform::ExtractFileName(File2));
  }

  if (FFailIfDiffToMD5) {
    std::string Expected;
    if (!TryExpandExpression("Compare to MD5", FCompareToMD5, false, Expected)) return false;
    if (!SameText(Display, Expected)) {
      SendMessage("MD5 don't match");
      SendMessage("Compare to MD5: " + Expected);
      return false;
    }
    SendMessage("MD5 matches.");
  }
  return true;
}

bool TZTFileMD5Action::Validate(frame::IZTActionValidationError& Errors) {
  if (FFileName.empty()) {
    Errors.AddError("File Name", "Filename has not been set");
    return false;
  }
  return true;
}

}  // namespace zt::package
