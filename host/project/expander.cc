#include "host/project/expander.h"

#include <cctype>
#include <cstring>

namespace zt::host {

UndefinedVariable::UndefinedVariable(const std::string& Name)
    : std::runtime_error("Variable \"" + Name + "\" is not defined"), Name_(Name) {}

namespace {

bool IsNameChar(char C) {
  return std::isalnum(static_cast<unsigned char>(C)) || C == '_' || C == '.' || C == '-';
}

bool NeedsExpansion(const std::string& Text) {
  return std::memchr(Text.data(), '%', Text.size()) || Text.find("$$(") != std::string::npos;
}

}  // namespace

Expander::Pieces Expander::Tokenize(const std::string& Text) {
  Pieces Out;
  std::string Literal;
  auto Flush = [&] {
    if (!Literal.empty()) Out.push_back({false, std::move(Literal)});
    Literal.clear();
  };
  for (std::size_t I = 0; I < Text.size();) {
    if (Text[I] == '%') {
      if (I + 1 < Text.size() && Text[I + 1] == '%') {
        Literal += '%';
        I += 2;
        continue;
      }
      std::size_t End = I + 1;
      while (End < Text.size() && IsNameChar(Text[End])) ++End;
      if (End > I + 1 && End < Text.size() && Text[End] == '%') {
        Flush();
        Out.push_back({true, Text.substr(I + 1, End - I - 1)});
        I = End + 1;
        continue;
      }
    } else if (Text.compare(I, 3, "$$(") == 0) {
      Literal += "$(";
      I += 3;
      continue;
    }
    Literal += Text[I++];
  }
  Flush();
  return Out;
}

std::shared_ptr<const Expander::Pieces> Expander::PiecesOf(const std::string& Text) {
  std::lock_guard<std::mutex> Lock(Mutex_);
  auto& Slot = Cache_[Text];
  if (!Slot) Slot = std::make_shared<const Pieces>(Tokenize(Text));
  return Slot;
}

std::string Expander::Expand(const std::string& Text, const Variables& Vars) {
  if (!NeedsExpansion(Text)) return Text;
  auto P = PiecesOf(Text);
  std::string Out;
  Out.reserve(Text.size());
  for (const Piece& Item : *P) {
    if (!Item.IsReference) {
      Out += Item.Text;
      continue;
    }
    auto Value = Vars.Lookup(Item.Text);
    if (!Value) throw UndefinedVariable(Item.Text);
    Out += Value->AsString();
  }
  return Out;
}

std::size_t Expander::CachedTexts() const {
  std::lock_guard<std::mutex> Lock(Mutex_);
  return Cache_.size();
}

}  // namespace zt::host
