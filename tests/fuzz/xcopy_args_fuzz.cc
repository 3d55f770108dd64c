// The built-in xcopy's arguments, one per input line, run in a scratch folder
// of its own: any argument list either runs or is refused with exit 4, never
// a crash. Paths are kept inside the scratch folder (a path outside it, or a
// device as an exclusion list, is renamed), so fuzzing never copies or reads
// the machine's own files.
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "platform/tools/xcopy.h"

namespace {

struct Quiet : zt::platform::IToolOutput {
  void Line(const std::string&) override {}
};

// A scratch folder with a small tree to copy, made once per process.
const std::string& Scratch() {
  static const std::string Dir = [] {
    char Name[] = "/tmp/zt-xcopy-fuzz-XXXXXX";
    if (!mkdtemp(Name)) std::abort();
    const std::string D = Name;
    std::system(("cd " + D +
                 " && mkdir -p src/sub && echo a > src/a.txt && echo b > src/sub/b.log && echo .log > ex.txt")
                    .c_str());
    return D;
  }();
  static const bool Cleaned = std::atexit([] { std::system(("rm -rf " + Scratch()).c_str()); }) == 0;
  (void)Cleaned;
  return Dir;
}

// An argument that names nothing outside the scratch folder: absolute paths
// and parent steps become a name inside it. A '/'-word that is not one of
// xcopy's switch names would be read as an absolute path, so it goes too.
std::string Contained(const std::string& A) {
  static const std::set<std::string> Switches = {
      "/S", "/E", "/T",  "/L", "/Q", "/F", "/H", "/A", "/M", "/D", "/U", "/R",  "/K", "/V",
      "/C", "/Y", "/-Y", "/I", "/N", "/Z", "/G", "/O", "/X", "/P", "/W", "/-I", "/J", "/EXCLUDE"};
  if (A.find("..") != std::string::npos) return Scratch() + "/out";
  if (A.empty() || A[0] != '/') return Scratch() + "/" + A;
  const std::size_t Colon = A.find(':');
  const std::string Switch = A.substr(0, Colon);
  std::string Name = Switch;
  for (char& C : Name) C = static_cast<char>(std::toupper(static_cast<unsigned char>(C)));
  if (!Switches.count(Name)) return Scratch() + "/out";
  if (Colon == std::string::npos) return A;
  std::string Rest = A.substr(Colon + 1);
  return Switch + ":" + Scratch() + "/" + (Rest.find('/') != std::string::npos ? "ex.txt" : Rest);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  std::vector<std::string> Args;
  std::string Text(reinterpret_cast<const char*>(Data), Size), Arg;
  for (char C : Text + "\n") {
    if (C != '\n') {
      Arg += C;
      continue;
    }
    if (Args.size() < 8) Args.push_back(Contained(Arg));
    Arg.clear();
  }
  Quiet Out;
  // A run with one path copies to the working directory: the scratch folder
  // for the run, the fuzzer's own again before it writes its corpus.
  char Cwd[4096];
  if (!getcwd(Cwd, sizeof Cwd) || chdir(Scratch().c_str()) != 0) std::abort();
  const int Code = zt::platform::RunXCopy(Args, Out);
  if (chdir(Cwd) != 0) std::abort();
  if (Code < 0 || Code > 5) __builtin_trap();
  std::system(("rm -rf " + Scratch() + "/out").c_str());
  return 0;
}
