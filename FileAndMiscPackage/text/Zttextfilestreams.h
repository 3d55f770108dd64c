// Whole-file reads and writes shared by the text-file and variable actions.
// Failures raise EZTFileStreamError with the run-time library's stream
// texts ("Cannot open file "<path>". " + the system's message), which the
// actions log after their own words.
#pragma once

#include <stdexcept>
#include <string>

#include "platform/files.h"

namespace zt::package {

class EZTFileStreamError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Opens Path with Mode (fmOpen* | fmShare*) or raises "Cannot open file ...".
platform::THandle OpenFileStream(const std::string& Path, int Mode);

// Closes a handle from OpenFileStream when it goes out of scope.
class TFileStreamHandle {
 public:
  TFileStreamHandle(const std::string& Path, int Mode) : Handle_(OpenFileStream(Path, Mode)) {}
  ~TFileStreamHandle() { platform::FileClose(Handle_); }
  TFileStreamHandle(const TFileStreamHandle&) = delete;
  TFileStreamHandle& operator=(const TFileStreamHandle&) = delete;
  platform::THandle Get() const { return Handle_; }

 private:
  platform::THandle Handle_;
};

// The bytes of an open file from its position to the end; Path names it in
// the message of a failed read.
std::string ReadFileStream(platform::THandle Handle, const std::string& Path);

// Creates or replaces Path with exactly Bytes. The replacement is atomic: a
// failure leaves an existing file as it was and no other file behind.
// Raises "Cannot create file ...".
void SaveFileStream(const std::string& Path, const std::string& Bytes);

// "<What> "<Path>". " + the system's message for the last error.
std::string FileStreamMessage(const std::string& What, const std::string& Path);

}  // namespace zt::package
