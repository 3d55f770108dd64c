#include "text/Ztwritetotextfileaction.h"

#include <exception>

#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "text/Zttextfilestreams.h"

namespace zt::package {

ZT_IMPLEMENT_CLASS(TZTWriteToTextFileAction, &TZTWriteToTextFileAction::Publish)

void TZTWriteToTextFileAction::Publish(frame::TZTPublisher<TZTWriteToTextFileAction>& P) {
  using A = TZTWriteToTextFileAction;
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.String("NewContent", &A::GetNewContent, &A::SetNewContent);
  P.Boolean("CreateIfNotExists", &A::GetCreateIfNotExists, &A::SetCreateIfNotExists);
  P.Enumeration("WriteToPosition", "TZTWriteToPos", {"toStart", "toEnd"}, &A::GetWriteToPosition,
                &A::SetWriteToPosition);
}

bool TZTWriteToTextFileAction::Validate(frame::IZTActionValidationError& Errors) {
  if (!FFileName.empty()) return true;
  Errors.AddError("File Name", "New filename has not been set");
  return false;
}

void TZTWriteToTextFileAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Write to Text File]");
  List.Add("NewContent=New content");
  List.Add("CreateIfNotExists=Create file missing");
  List.Add("FileName=Filename");
  List.Add("WriteToPosition=Write Position");
}

void TZTWriteToTextFileAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("NewContent=This text will be written to the file.  Any variables used will be expanded.");
  List.Add("CreateIfNotExists=Create the file if it doesn't exist");
  List.Add(
      "NewFileName=The location and name of the file");  // keyed as it always was: FileName shows no help
  List.Add("WriteToPosition=Specify either Start or End to write the new content to");
}

bool TZTWriteToTextFileAction::Execute() {
  std::string Path, Content;
  if (!TryExpandExpression("FileName", FFileName, true, Path)) return false;
  Path = frame::Trim(Path);
  if (!TryExpandExpression("Content", FNewContent, false, Content)) return false;
  try {
    if (!platform::FileExists(Path)) {
      if (!FCreateIfNotExists) {
        SendMessage("ERROR - File doesn't exist: " + Path);
        return false;
      }
      SaveFileStream(Path, Content);
    } else if (FWriteToPosition == toEnd) {
      Append(Path, Content);
    } else {
      Prepend(Path, Content);
    }
  } catch (const std::exception& E) {
    SendMessage("Error writing to text file:");
    SendMessage(E.what());
    return false;
  }
  return true;
}

// In place: the old bytes are never touched, only added to.
void TZTWriteToTextFileAction::Append(const std::string& Path, const std::string& Content) {
  TFileStreamHandle File(Path, platform::fmOpenWrite);
  const std::int64_t Size = platform::FileSeek(File.Get(), 0, 2);
  // CR LF even after a final line break, which leaves an empty line.
  const std::string Bytes = Size > 0 ? "\r\n" + Content : Content;
  std::size_t Done = 0;
  while (Done < Bytes.size()) {
    int N = platform::FileWrite(File.Get(), Bytes.data() + Done, static_cast<int>(Bytes.size() - Done));
    if (N <= 0) throw EZTFileStreamError(FileStreamMessage("Cannot write to file", Path));
    Done += static_cast<std::size_t>(N);
  }
}

// The new file is written under a temporary name beside the old one and
// renamed over it, so the old content stays whole until the new file is
// complete, and a failure (or a stop) leaves no temporary file. The update
// keeps other writers out meanwhile.
void TZTWriteToTextFileAction::Prepend(const std::string& Path, const std::string& Content) {
  std::int64_t Size;
  try {
    TFileStreamHandle Writable(Path, platform::fmOpenWrite);
    Size = platform::FileSeek(Writable.Get(), 0, 2);
  } catch (const std::exception& E) {
    throw EZTFileStreamError(std::string("Could not open target file for writing : ") + E.what());
  }
  platform::TFileUpdate Update;
  if (!Update.Begin(Path, /*Create=*/false) || !Update.CommitBefore(Size > 0 ? Content + "\r\n" : Content))
    throw EZTFileStreamError("Could not create temporary file when writing file. " +
                             platform::SysErrorMessage(platform::GetLastError()));
}

}  // namespace zt::package
