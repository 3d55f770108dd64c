// Runs a fuzz target over every file of the corpus folders it is given, so
// that each input that once found a fault is checked by the ordinary test
// run, without the fuzzing engine.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> Inputs;
  for (int I = 1; I < argc; ++I)
    for (const auto& E : fs::recursive_directory_iterator(argv[I]))
      if (E.is_regular_file()) Inputs.push_back(E.path());
  if (Inputs.empty()) {
    std::fprintf(stderr, "no corpus inputs found\n");
    return 1;
  }
  for (const fs::path& P : Inputs) {
    std::ifstream In(P, std::ios::binary);
    std::string Bytes((std::istreambuf_iterator<char>(In)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
  }
  std::printf("%zu inputs passed\n", Inputs.size());
  return 0;
}
