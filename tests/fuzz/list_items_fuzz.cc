// The list iterator's splitting of a typed list: the first byte chooses the
// separator and the blank rule, the rest up to the first newline is the
// custom separator, and what follows is the list.
#include <cstdint>
#include <string>

#include "frame/ZTStrings.h"
#include "iterators/Ztlistiteratoractoin.h"
#include "support/FakeHost.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace zt;
  if (Size == 0) return 0;
  const auto Separator = static_cast<package::TZTListSeparator>(Data[0] % 3);
  const bool Skip = (Data[0] & 4) != 0;
  const std::string Rest(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  const std::size_t Newline = Rest.find('\n');
  const std::string Custom = Newline == std::string::npos ? "," : Rest.substr(0, Newline);
  const std::string List = Newline == std::string::npos ? Rest : Rest.substr(Newline + 1);

  testing::FakeHost Host;
  Host.Variables["V"] = "x";
  package::TZTListIterator It;
  It.SetHost(&Host);
  It.SetListOfItems(List);
  It.SetListSeparator(Separator);
  It.SetSeparatorChar(Custom);
  It.SetSkipBlankLines(Skip);
  try {
    if (!It.BeforeFirstIteration()) __builtin_trap();  // failures raise
  } catch (const frame::EIteratorException&) {
    return 0;  // an undefined variable
  }
  std::vector<std::string> Items;
  while (!It.NoMoreIterations()) {
    It.NextIteration();
    Items.push_back(It.GetCurrentValue().AsString());
    if (Skip && Items.back().empty()) __builtin_trap();
  }
  if (static_cast<int>(Items.size()) != It.GetItemCount()) __builtin_trap();
  // One item a line, as typed, when nothing is expanded or left out (the
  // list's final line break ends the text, so a last empty line is no item).
  if (Separator == package::lsCRLF && !Skip && List.find('%') == std::string::npos) {
    frame::TStrings Lines;
    Lines.SetText(List);
    std::vector<std::string> Expected = Lines.Lines();
    if (!Expected.empty() && Expected.back().empty()) Expected.pop_back();
    if (Items != Expected) __builtin_trap();
  }
  return 0;
}
