// POSIX shell quoting, without any expansion: the parameter texts of process
// actions mean the same words they would mean typed at a shell prompt.
#include <cstring>

#include "platform/command_line.h"

namespace zt::platform {

const char* CommandInterpreterSwitch() { return "-c"; }

namespace {

bool IsBlank(char C) { return C == ' ' || C == '\t' || C == '\n' || C == '\r'; }

// Characters a word may hold without quoting.
bool IsPlain(char C) {
  return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z') || (C >= '0' && C <= '9') ||
         std::strchr("_@%+=:,./-", C) != nullptr;
}

}  // namespace

std::vector<std::string> SplitCommandLine(const std::string& Text) {
  std::vector<std::string> Words;
  std::string Word;
  bool InWord = false;  // a word has started (also an empty '' or "")
  const std::size_t N = Text.size();
  for (std::size_t I = 0; I < N; ++I) {
    const char C = Text[I];
    if (IsBlank(C)) {
      if (InWord) Words.push_back(std::move(Word));
      Word.clear();
      InWord = false;
    } else if (C == '\'') {
      InWord = true;
      std::size_t End = Text.find('\'', I + 1);
      if (End == std::string::npos) End = N;
      Word.append(Text, I + 1, End - I - 1);
      I = End;
    } else if (C == '"') {
      InWord = true;
      for (++I; I < N && Text[I] != '"'; ++I) {
        if (Text[I] == '\\' && I + 1 < N && std::strchr("$`\"\\\n", Text[I + 1]) != nullptr) {
          ++I;
          if (Text[I] == '\n') continue;  // an escaped line end joins the lines
        }
        Word += Text[I];
      }
    } else if (C == '\\' && I + 1 < N) {
      ++I;
      if (Text[I] == '\n') continue;
      InWord = true;
      Word += Text[I];
    } else {
      InWord = true;
      Word += C;
    }
  }
  if (InWord) Words.push_back(std::move(Word));
  return Words;
}

std::string QuoteArgument(const std::string& Argument) {
  bool Plain = !Argument.empty();
  for (char C : Argument) Plain = Plain && IsPlain(C);
  if (Plain) return Argument;
  std::string R = "'";
  for (char C : Argument) {
    if (C == '\'') R += "'\\''";
    else R += C;
  }
  return R + "'";
}

}  // namespace zt::platform
