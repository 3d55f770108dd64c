// Where the built-in copy tools (robocopy.h, xcopy.h) send what they report.
// Every call comes from the thread that runs the tool.
#pragma once

#include <string>

namespace zt::platform {

class IToolOutput {
 public:
  virtual ~IToolOutput() = default;
  // One line of the tool's output, without its line end.
  virtual void Line(const std::string& Text) = 0;
  // How far the current file has got (0-100).
  virtual void Progress(const std::string& Text, int Percent) { (void)Text, (void)Percent; }
  // Polled between files and while waiting: true ends the run.
  virtual bool StopRequested() { return false; }
};

}  // namespace zt::platform
