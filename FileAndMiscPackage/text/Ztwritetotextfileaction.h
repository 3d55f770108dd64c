// "Write to Text File": puts the expanded new content after (append) or
// before (prepend) the content of an existing file, with CR LF between
// them. Prepending rewrites the file atomically, so the old content is
// never lost, whatever fails.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

enum TZTWriteToPos { toStart, toEnd };

class TZTWriteToTextFileAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTWriteToTextFileAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Write to Text File"; }
  static void Publish(frame::TZTPublisher<TZTWriteToTextFileAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3230; }
  std::string GetQuickHelpFilename() override { return "Plugins\\WriteToTextFile.html"; }

  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  const std::string& GetNewContent() const { return FNewContent; }
  void SetNewContent(const std::string& Value) { FNewContent = Value; }
  bool GetCreateIfNotExists() const { return FCreateIfNotExists; }
  void SetCreateIfNotExists(bool Value) { FCreateIfNotExists = Value; }
  TZTWriteToPos GetWriteToPosition() const { return FWriteToPosition; }
  void SetWriteToPosition(TZTWriteToPos Value) { FWriteToPosition = Value; }

 private:
  // Both raise with the message Execute logs.
  static void Append(const std::string& Path, const std::string& Content);
  static void Prepend(const std::string& Path, const std::string& Content);

  std::string FFileName;
  std::string FNewContent;
  bool FCreateIfNotExists = false;
  TZTWriteToPos FWriteToPosition = toEnd;
};

}  // namespace zt::package
