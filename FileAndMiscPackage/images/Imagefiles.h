// What both image actions share: the files a specification matches (with
// Recurse, the same name pattern in every sub-directory), where each one's
// output goes, the entry they log into, and writing an output through a
// replacement, so a failure never leaves half an image.
#pragma once

#include <string>
#include <vector>

#include "frame/ZTAction.h"

namespace zt::package {

// One matched file: its path as the specification spells it, and its
// directory relative to the specification's ("" at the top, else ending in
// a delimiter).
struct TImageFile {
  std::string Source;
  std::string SubDir;
};

// The files Spec matches, in directory order, a directory's files before its
// sub-directories'. Collected before any output is written, so that outputs
// written beside their sources are never matched themselves.
std::vector<TImageFile> FindImageFiles(const std::string& Spec, bool Recurse);

// (OutputDir, or the source's directory) + sub-directory + base name + Suffix
// + Extension (empty: the source's).
std::string ImageOutputPath(const TImageFile& File, const std::string& OutputDir, const std::string& Suffix,
                            const std::string& Extension);

// Not a registered class: the two actions derive from it for the run they
// share and publish its properties in their own order.
class TCustomImageFilesAction : public frame::TCustomZTAction {
 public:
  bool Execute() override;
  int GetFilesAffected() override { return FFilesAffected; }

  const std::string& GetFileSpec() const { return FFileSpec; }
  void SetFileSpec(const std::string& Value) { FFileSpec = Value; }
  bool GetRecurse() const { return FRecurse; }
  void SetRecurse(bool Value) { FRecurse = Value; }
  bool GetFailIfNoFiles() const { return FFailIfNoFiles; }
  void SetFailIfNoFiles(bool Value) { FFailIfNoFiles = Value; }
  const std::string& GetOutputDirectory() const { return FOutputDirectory; }
  void SetOutputDirectory(const std::string& Value) { FOutputDirectory = Value; }
  const std::string& GetFileNameSuffix() const { return FFileNameSuffix; }
  void SetFileNameSuffix(const std::string& Value) { FFileNameSuffix = Value; }
  bool GetOverwriteExisting() const { return FOverwriteExisting; }
  void SetOverwriteExisting(bool Value) { FOverwriteExisting = Value; }

 protected:
  // The entry's heading ("Processing images : ") and count line
  // (" Images Processed.").
  virtual std::string Heading() const = 0;
  virtual std::string CountText() const = 0;
  // Once per run, before the walk; false after the reason is in Details.
  virtual bool BeginRun(frame::TStrings& Details) = 0;
  // The output's extension (with the dot) for Source; empty keeps Source's.
  virtual std::string OutputExtension(const std::string& Source) const = 0;
  // Turns Source into Output (through WriteOutput); true with the output's
  // size. On failure the reason is in Details.
  virtual bool ProcessImage(const std::string& Source, const std::string& Output, frame::TStrings& Details,
                            int& Width, int& Height) = 0;

  // Puts Data in place as Output (created beside it, renamed over it); false
  // after " --> Error Writing File : " and the system's message.
  static bool WriteOutput(const std::string& Output, const void* Data, std::size_t Size,
                          frame::TStrings& Details);

  bool ValidateFileSpec(frame::IZTActionValidationError& Errors);

 private:
  std::string FFileSpec;
  bool FRecurse = false;
  bool FFailIfNoFiles = true;
  std::string FOutputDirectory;
  std::string FFileNameSuffix;
  bool FOverwriteExisting = false;
  int FFilesAffected = 0;
};

}  // namespace zt::package
