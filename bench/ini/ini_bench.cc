// ini_bench make FILE KEYS          writes an INI file of KEYS keys, 1,000 per section
// ini_bench read FILE SECTION KEY N  reads the key N times
// ini_bench write FILE SECTION KEY N writes the key N times (two values in turn)
// read and write print the mean milliseconds per call.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/inifile.h"

namespace {

int Make(const std::string& File, long Keys) {
  std::ofstream Out(File, std::ios::binary);
  char Line[96];
  for (long K = 0; K < Keys; ++K) {
    if (K % 1000 == 0) {
      std::snprintf(Line, sizeof Line, "[section%05ld]\r\n", K / 1000);
      Out << Line;
    }
    std::snprintf(Line, sizeof Line, "key%07ld=value number %ld of the file\r\n", K, K);
    Out << Line;
  }
  return Out ? 0 : 1;
}

}  // namespace

int main(int Argc, char** Argv) {
  std::string Cmd = Argc > 1 ? Argv[1] : "";
  if (Cmd == "make" && Argc == 4) return Make(Argv[2], std::atol(Argv[3]));
  if ((Cmd != "read" && Cmd != "write") || Argc != 6) {
    std::fprintf(stderr, "usage: ini_bench make FILE KEYS | read|write FILE SECTION KEY N\n");
    return 2;
  }
  zt::platform::TIniFile Ini(Argv[2]);
  const std::string Section = Argv[3], Key = Argv[4];
  const int N = std::atoi(Argv[5]);
  std::size_t Sink = 0;
  auto Start = std::chrono::steady_clock::now();
  for (int I = 0; I < N; ++I) {
    if (Cmd == "read") Sink += Ini.ReadString(Section, Key, "").size();
    else Ini.WriteString(Section, Key, I % 2 ? "odd value" : "even value");
  }
  std::chrono::duration<double, std::milli> Ms = std::chrono::steady_clock::now() - Start;
  std::printf("%.3f\n", Ms.count() / N);
  return Sink == static_cast<std::size_t>(-1);
}
