// versioninfo_bench make DIR N: writes N executables DIR/lib<i>.dll (PE32 and
// PE32+ in turn, a version resource with five strings, 64 KiB of code before
// it). versioninfo_bench read DIR N: reads their version information, best
// of three passes, and prints milliseconds per file.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "files/Peversioninfo.h"
#include "support/PEImage.h"

namespace {

std::string Name(const std::string& Dir, int I) { return Dir + "/lib" + std::to_string(I) + ".dll"; }

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: versioninfo_bench make|read DIR N\n");
    return 2;
  }
  const std::string Mode = argv[1], Dir = argv[2];
  const int N = std::atoi(argv[3]);
  if (Mode == "make") {
    for (int I = 0; I < N; ++I) {
      const auto W = static_cast<std::uint16_t>(I);
      const std::vector<zt::testing::TVersionTable> Tables = {
          {"040904B0",
           {{"CompanyName", "Example Corp."}, {"FileDescription", "Library " + std::to_string(I)},
            {"FileVersion", "1.2.3." + std::to_string(I)}, {"LegalCopyright", "\xC2\xA9 Example Corp."},
            {"ProductVersion", "1.2"}}}};
      std::string Image = zt::testing::PEImage(
          I % 2 == 1, {{0x0409, zt::testing::VersionResource({1, 2, 3, W}, {1, 2, 0, 0}, Tables, {0x040904B0})}});
      // Code before the resources, as in a real library: the reader seeks past it.
      Image.insert(0x200, std::string(64 * 1024, '\x90'));
      zt::testing::pe::Put32(Image, 0x58 + (I % 2 ? 240 : 224) + 20, 0x200 + 64 * 1024);
      std::ofstream(Name(Dir, I), std::ios::binary) << Image;
    }
    return 0;
  }
  double Best = 1e9;
  for (int Pass = 0; Pass < 3; ++Pass) {
    const auto Start = std::chrono::steady_clock::now();
    for (int I = 0; I < N; ++I) {
      zt::package::TPEVersionInfo Info;
      if (zt::package::ReadPEVersionInfoFile(Name(Dir, I), 0, Info) != zt::package::TPEVersionStatus::vsFound ||
          (Info.FileVersionLS & 0xFFFF) != static_cast<std::uint32_t>(I & 0xFFFF)) {
        std::fprintf(stderr, "wrong answer for %s\n", Name(Dir, I).c_str());
        return 1;
      }
    }
    Best = std::min(Best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - Start).count());
  }
  std::printf("%.4f\n", Best / N);
  return 0;
}
