#include "host/project/expander.h"

#include <cstring>

namespace zt::host {

UndefinedVariable::UndefinedVariable(const std::string& Name, const std::string& UsedIn)
    : ExpansionError("Variable \"" + Name + "\" is not defined" +
                     (UsedIn.empty() ? "" : " (used in the value of \"" + UsedIn + "\")")),
      Name_(Name) {}

namespace {

std::string Joined(const std::vector<std::string>& Names) {
  std::string R;
  for (const auto& N : Names) R += (R.empty() ? "" : " -> ") + N;
  return R;
}

// Deeper than any real project; keeps a long chain of values from exhausting the stack.
constexpr std::size_t kMaxNesting = 100;
// Values that repeat each other double at every level; stop before memory runs out.
constexpr std::size_t kMaxExpandedSize = std::size_t{256} << 20;

bool NeedsExpansion(const std::string& Text) {
  return std::memchr(Text.data(), '%', Text.size()) || Text.find("$$(") != std::string::npos;
}

}  // namespace

VariableCycle::VariableCycle(std::vector<std::string> Names)
    : ExpansionError("Variables refer to each other in a cycle: " + Joined(Names)),
      Names_(std::move(Names)) {}

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
      while (End < Text.size() && IsVariableNameChar(Text[End])) ++End;
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
  std::string Out;
  Out.reserve(Text.size());
  Pass P(Vars, /*Keep=*/false);
  Append(Text, P, Out);
  return Out;
}

std::string Expander::ExpandCounting(const std::string& Text, const Variables& Vars, bool FailOnUnknown,
                                     int& Replaced) {
  Replaced = 0;
  if (!NeedsExpansion(Text)) return Text;
  std::string Out;
  Out.reserve(Text.size());
  Pass P(Vars, /*Keep=*/!FailOnUnknown);
  AppendPieces(Tokenize(Text), P, Out);
  Replaced = P.Replaced;
  return Out;
}

void Expander::Append(const std::string& Text, Pass& P, std::string& Out) {
  if (!NeedsExpansion(Text)) {
    Out += Text;
    return;
  }
  AppendPieces(*PiecesOf(Text), P, Out);
}

void Expander::AppendPieces(const Pieces& Items, Pass& P, std::string& Out) {
  std::vector<std::string>& Chain = P.Chain;
  for (const Piece& Item : Items) {
    if (!Item.IsReference) {
      Out += Item.Text;
      continue;
    }
    const TZTVariant* Own = P.Vars.FindProject(Item.Text);
    if (!Own) {
      auto Value = P.Vars.Lookup(Item.Text);
      if (Value) {
        Out += Value->AsString();
      } else if (P.KeepUnknown) {
        Out += '%' + Item.Text + '%';
        continue;
      } else {
        throw UndefinedVariable(Item.Text, Chain.empty() ? "" : Chain.back());
      }
    } else if (Own->Kind() != TZTVariant::TKind::String) {
      Out += Own->AsString();
    } else {
      for (std::size_t I = 0; I < Chain.size(); ++I)
        if (LowerCase(Chain[I]) == LowerCase(Item.Text)) {
          std::vector<std::string> Cycle(Chain.begin() + static_cast<std::ptrdiff_t>(I), Chain.end());
          Cycle.push_back(Item.Text);
          throw VariableCycle(std::move(Cycle));
        }
      if (Chain.size() == kMaxNesting)
        throw ExpansionError("Variable \"" + Item.Text + "\" nests references more than " +
                             std::to_string(kMaxNesting) + " levels deep");
      Chain.push_back(Item.Text);
      Append(Own->AsString(), P, Out);
      Chain.pop_back();
      if (Out.size() > kMaxExpandedSize)
        throw ExpansionError("Variable \"" + Item.Text + "\" expands to more than 256 MiB");
    }
    if (Chain.empty()) ++P.Replaced;
  }
}

std::size_t Expander::CachedTexts() const {
  std::lock_guard<std::mutex> Lock(Mutex_);
  return Cache_.size();
}

}  // namespace zt::host
