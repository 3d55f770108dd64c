// Robocopy job files: the text read into arguments, the arguments read into
// settings. A job naming another job is refused, so nothing here reads a
// file; the settings read stay in their ranges.
#include <cstdint>
#include <string>

#include "platform/tools/robocopy_args.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace zt::platform;
  const std::string Text(reinterpret_cast<const char*>(Data), Size);
  std::vector<std::string> Args = ReadRobocopyJobText(Text);
  for (const std::string& A : Args)
    if (A.size() > Text.size()) __builtin_trap();
  // As the job's own arguments (a /JOB: among them reads nothing: it is refused).
  Args.insert(Args.begin(), {"/SD:job-source", "/DD:job-dest"});
  for (std::string& A : Args)
    if (A.size() >= 4 && (A[1] == 'J' || A[1] == 'j') && (A[2] == 'O' || A[2] == 'o')) A = "/S";
  TRobocopySettings S;
  std::string Error;
  if (ParseRobocopyArgs(Args, S, Error)) {
    if (S.Threads < 1 || S.Threads > 128 || S.Levels < 0 || S.Retries < 0 || S.Wait < 0) __builtin_trap();
  } else if (Error.rfind("ERROR : ", 0) != 0) {
    __builtin_trap();
  }
  return 0;
}
