#include "host/project/expander.h"

#include <strings.h>

#include <cstring>
#include <string_view>

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
// Larger expanded values are not kept for reuse within a pass (they are expanded again).
constexpr std::size_t kMaxKeptSize = std::size_t{1} << 20;

// Named after the outermost variable being expanded: the one the user wrote.
ExpansionError TooLarge(const std::vector<std::string>& Chain, const std::string& Name) {
  return ExpansionError("Variable \"" + (Chain.empty() ? Name : Chain.front()) + "\" expands to more than 256 MiB");
}

bool NeedsExpansion(const std::string& Text) {
  return std::memchr(Text.data(), '%', Text.size()) || Text.find("$$(") != std::string::npos;
}

}  // namespace

VariableCycle::VariableCycle(std::vector<std::string> Names)
    : ExpansionError("Variables refer to each other in a cycle: " + Joined(Names)),
      Names_(std::move(Names)) {}

template <class L, class R>
void Expander::Scan(const std::string& Text, L Literal, R Reference) {
  for (std::size_t I = 0; I < Text.size();) {
    if (Text[I] == '%') {
      if (I + 1 < Text.size() && Text[I + 1] == '%') {
        Literal(std::string_view("%"));
        I += 2;
        continue;
      }
      std::size_t End = I + 1;
      while (End < Text.size() && IsVariableNameChar(Text[End])) ++End;
      if (End > I + 1 && End < Text.size() && Text[End] == '%') {
        Reference(std::string_view(Text).substr(I + 1, End - I - 1));
        I = End + 1;
        continue;
      }
    } else if (Text.compare(I, 3, "$$(") == 0) {
      Literal(std::string_view("$("));
      I += 3;
      continue;
    }
    // Plain text up to the next '%' or '$' goes over in one piece.
    std::size_t Next = I + 1;
    while (Next < Text.size() && Text[Next] != '%' && Text[Next] != '$') ++Next;
    Literal(std::string_view(Text).substr(I, Next - I));
    I = Next;
  }
}

Expander::Pieces Expander::Tokenize(const std::string& Text) {
  Pieces Out;
  std::string Literal;
  Scan(
      Text, [&](std::string_view S) { Literal.append(S); },
      [&](std::string_view Name) {
        if (!Literal.empty()) Out.push_back({false, std::move(Literal)});
        Literal.clear();
        Out.push_back({true, std::string(Name)});
      });
  if (!Literal.empty()) Out.push_back({false, std::move(Literal)});
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
  // Scanned straight into Out: such a text is used once, so no pieces are kept.
  Scan(
      Text, [&](std::string_view S) { Out.append(S); },
      [&](std::string_view Name) { AppendReference(std::string(Name), P, Out); });
  Replaced = P.Replaced;
  return Out;
}

void Expander::Append(const std::string& Text, Pass& P, std::string& Out) {
  if (!NeedsExpansion(Text)) {
    Out += Text;
    return;
  }
  for (const Piece& Item : *PiecesOf(Text)) {
    if (Item.IsReference)
      AppendReference(Item.Text, P, Out);
    else
      Out += Item.Text;
  }
}

void Expander::AppendReference(const std::string& Name, Pass& P, std::string& Out) {
  std::vector<std::string>& Chain = P.Chain;
  const TZTVariant* Own = P.Vars.FindProject(Name);
  if (!Own) {
    auto Value = P.Vars.Lookup(Name);
    if (!Value && P.KeepUnknown) {
      Out.append("%").append(Name).append("%");
      return;
    }
    if (!Value) throw UndefinedVariable(Name, Chain.empty() ? "" : Chain.back());
    Out += Value->AsString();
  } else if (Own->Kind() != TZTVariant::TKind::String) {
    Out += Own->AsString();
  } else {
    for (std::size_t I = 0; I < Chain.size(); ++I)
      if (strcasecmp(Chain[I].c_str(), Name.c_str()) == 0) {
        std::vector<std::string> Cycle(Chain.begin() + static_cast<std::ptrdiff_t>(I), Chain.end());
        Cycle.push_back(Name);
        throw VariableCycle(std::move(Cycle));
      }
    if (Chain.size() == kMaxNesting)
      throw ExpansionError("Variable \"" + Name + "\" nests references more than " + std::to_string(kMaxNesting) +
                           " levels deep");
    // A value expanded before in this pass cannot hide a cycle: it would have raised then.
    if (auto Kept = P.Expanded.find(Own); Kept != P.Expanded.end()) {
      if (Out.size() + Kept->second.size() > kMaxExpandedSize) throw TooLarge(Chain, Name);
      Out += Kept->second;
    } else {
      std::size_t Start = Out.size();
      Chain.push_back(Name);
      Append(Own->AsString(), P, Out);
      Chain.pop_back();
      if (Out.size() > kMaxExpandedSize) throw TooLarge(Chain, Name);
      if (Out.size() - Start <= kMaxKeptSize) P.Expanded.emplace(Own, Out.substr(Start));
    }
  }
  if (Chain.empty()) ++P.Replaced;
}

std::size_t Expander::CachedTexts() const {
  std::lock_guard<std::mutex> Lock(Mutex_);
  return Cache_.size();
}

}  // namespace zt::host
