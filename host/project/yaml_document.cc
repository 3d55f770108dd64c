#include "host/project/yaml_document.h"

#include <yaml.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace zt::host {

const YamlNode* YamlNode::Find(std::string_view Key) const {
  for (const auto& [K, V] : Entries_)
    if (K->IsScalar() && K->Text_ == Key) return V;
  return nullptr;
}

bool YamlBoolean(std::string_view Text, bool& Value) {
  static const std::pair<std::string_view, std::string_view> kNames[] = {
      {"true", "false"}, {"yes", "no"}, {"on", "off"}, {"y", "n"}};
  if (Text.empty()) return false;
  auto Lower = [](char C) { return C >= 'a' && C <= 'z'; };
  auto Upper = [](char C) { return C >= 'A' && C <= 'Z'; };
  bool AllLower = std::all_of(Text.begin() + 1, Text.end(), Lower);
  bool OneCase = (Lower(Text[0]) || Upper(Text[0])) &&
                 (AllLower || (Upper(Text[0]) && std::all_of(Text.begin() + 1, Text.end(), Upper)));
  if (!OneCase) return false;
  std::string Folded(Text);
  for (char& C : Folded) C = static_cast<char>(C | 0x20);
  for (const auto& [Yes, No] : kNames) {
    if (Folded == Yes) return Value = true, true;
    if (Folded == No) return Value = false, true;
  }
  return false;
}

YamlDocument::YamlDocument() { Root_ = &Add(YamlNode::Kind::Null, 0); }

YamlNode& YamlDocument::Add(YamlNode::Kind Kind, int Line) {
  if (Used_ == Capacity_) {
    Capacity_ = Chunks_.empty() ? 4 : std::min<std::size_t>(2 * Capacity_, 1024);
    Chunks_.push_back(std::make_unique<YamlNode[]>(Capacity_));
    Used_ = 0;
  }
  YamlNode& N = Chunks_.back()[Used_++];
  N.Kind_ = Kind;
  N.Line_ = Line;
  return N;
}

// A document made in code has its root first.
void YamlDocument::SetScalar(std::string Text) {
  YamlNode& Root = First();
  Root.Kind_ = YamlNode::Kind::Scalar;
  Root.Text_ = std::move(Text);
}

void YamlDocument::SetList(std::vector<std::string> Items) {
  First().Kind_ = YamlNode::Kind::Sequence;
  for (std::string& Text : Items) {
    YamlNode& Item = Add(YamlNode::Kind::Scalar, 0);
    Item.Text_ = std::move(Text);
    First().Items_.push_back(&Item);
  }
}

namespace {

struct ParserDeleter {
  void operator()(yaml_parser_t* P) const {
    yaml_parser_delete(P);
    delete P;
  }
};
struct EventGuard {
  yaml_event_t Event;
  ~EventGuard() { yaml_event_delete(&Event); }
};

int LineOf(const yaml_mark_t& M) { return static_cast<int>(M.line) + 1; }

// What YAML 1.2's core schema reads as null, when plain and untagged.
bool IsNullText(std::string_view S) {
  return S.empty() || S == "~" || S == "null" || S == "Null" || S == "NULL";
}

struct Stop {};  // thrown once the problem that ends the reading is recorded

}  // namespace

// Turns libyaml's events into nodes. Everything a walk over the tree would
// have to guard against is refused here, while the tree is made: nesting
// deeper than kMaxYamlDepth, an alias inside the node it names, and aliases
// that repeat other aliases past kMaxYamlNodes nodes. Each node's size and
// depth as the aliases expand it are known when it closes, so an alias costs
// one addition however much it stands for.
class YamlDocument::Builder {
 public:
  Builder(YamlDocument& Doc, std::vector<YamlProblem>& Problems) : Doc_(Doc), Problems_(Problems) {}

  void Run(std::string_view Text) {
    std::unique_ptr<yaml_parser_t, ParserDeleter> Parser(new yaml_parser_t);
    if (!yaml_parser_initialize(Parser.get())) Fail(0, "out of memory");
    yaml_parser_set_input_string(Parser.get(), reinterpret_cast<const unsigned char*>(Text.data()), Text.size());
    for (;;) {
      EventGuard E;
      if (!yaml_parser_parse(Parser.get(), &E.Event)) SyntaxError(*Parser, Text);
      switch (E.Event.type) {
        case YAML_DOCUMENT_END_EVENT:
        case YAML_STREAM_END_EVENT:
          return;  // the first document is the project
        case YAML_SCALAR_EVENT:
          OnScalar(E.Event);
          break;
        case YAML_ALIAS_EVENT:
          OnAlias(E.Event);
          break;
        case YAML_SEQUENCE_START_EVENT:
          Open(YamlNode::Kind::Sequence, E.Event.start_mark, E.Event.data.sequence_start.anchor);
          break;
        case YAML_MAPPING_START_EVENT:
          Open(YamlNode::Kind::Map, E.Event.start_mark, E.Event.data.mapping_start.anchor);
          break;
        case YAML_SEQUENCE_END_EVENT:
        case YAML_MAPPING_END_EVENT:
          Close();
          break;
        default:
          break;
      }
    }
  }

 private:
  struct Size {
    long Nodes = 1;  // itself and all it holds, every alias expanded
    int Depth = 0;   // maps and lists nested in it, itself included
  };
  struct Open_ {
    YamlNode* Node = nullptr;
    bool Anchored = false;
    Size Total;
    const YamlNode* Key = nullptr;  // a map's key waiting for its value
    bool Hashed = false;            // Keys holds the map's scalar keys (it has many)
    std::unordered_set<std::string_view> Keys;
  };

  [[noreturn]] void Fail(int Line, std::string Text) {
    Problems_.push_back({Line, std::move(Text)});
    throw Stop{};
  }

  [[noreturn]] void SyntaxError(const yaml_parser_t& P, std::string_view Text) {
    std::string What = P.problem ? P.problem : "out of memory";
    if (P.error == YAML_READER_ERROR) {
      std::size_t At = std::min(P.problem_offset, Text.size());
      Fail(1 + static_cast<int>(std::count(Text.begin(), Text.begin() + At, '\n')),
           "the file is not UTF-8 text (" + What + ")");
    }
    // The commonest slip has a plainer word than the scanner's.
    const std::size_t At = P.problem_mark.index;
    if (P.error == YAML_SCANNER_ERROR && At < Text.size() && Text[At] == '\t')
      Fail(LineOf(P.problem_mark), "a tab cannot indent YAML (indent with spaces)");
    if (P.context)
      What += " (" + std::string(P.context) + " that starts on line " + std::to_string(LineOf(P.context_mark)) + ")";
    Fail(P.error == YAML_MEMORY_ERROR ? 0 : LineOf(P.problem_mark), What);
  }

  void Anchor(const yaml_char_t* Name, const YamlNode* Node) {
    if (Name) Anchors_[reinterpret_cast<const char*>(Name)] = Node;
  }

  void OnScalar(const yaml_event_t& E) {
    const auto& S = E.data.scalar;
    YamlNode& N = Doc_.Add(YamlNode::Kind::Scalar, LineOf(E.start_mark));
    N.Text_.assign(reinterpret_cast<const char*>(S.value), S.length);
    N.Plain_ = S.plain_implicit;
    N.Block_ = S.style == YAML_LITERAL_SCALAR_STYLE || S.style == YAML_FOLDED_SCALAR_STYLE;
    if (N.Plain_ && IsNullText(N.Text_)) N.Kind_ = YamlNode::Kind::Null;
    Anchor(S.anchor, &N);
    Attach(N, Size{});
  }

  void OnAlias(const yaml_event_t& E) {
    const char* Name = reinterpret_cast<const char*>(E.data.alias.anchor);
    auto It = Anchors_.find(Name);
    if (It == Anchors_.end()) Fail(LineOf(E.start_mark), "the alias *" + std::string(Name) + " names no anchor");
    const YamlNode& N = *It->second;
    for (const Open_& O : Stack_)
      if (O.Node == &N)
        Fail(LineOf(E.start_mark),
             "an alias refers to a node that contains it (anchor on line " + std::to_string(N.Line_) + ")");
    auto S = Sizes_.find(&N);
    Size Of = S == Sizes_.end() ? Size{} : S->second;
    if (static_cast<int>(Stack_.size()) + Of.Depth > kMaxYamlDepth) TooDeep(LineOf(E.start_mark));
    Attach(N, Of, LineOf(E.start_mark));
  }

  void Open(YamlNode::Kind Kind, const yaml_mark_t& At, const yaml_char_t* AnchorName) {
    if (static_cast<int>(Stack_.size()) == kMaxYamlDepth) TooDeep(LineOf(At));
    YamlNode& N = Doc_.Add(Kind, LineOf(At));
    Anchor(AnchorName, &N);
    Open_& O = Stack_.emplace_back();
    O.Node = &N;
    O.Anchored = AnchorName != nullptr;
  }

  void Close() {
    Open_& O = Stack_.back();
    YamlNode& N = *O.Node;
    Size Of = O.Total;
    Of.Depth += 1;
    if (O.Anchored) Sizes_[&N] = Of;  // only a node an alias may name needs its size kept
    Stack_.pop_back();
    Attach(N, Of);
  }

  [[noreturn]] void TooDeep(int Line) {
    Fail(Line, "the project is nested more than " + std::to_string(kMaxYamlDepth) + " levels deep");
  }

  // Line: where the child is written (an alias's own line, not its anchor's).
  void Attach(const YamlNode& Child, const Size& Of, int Line = 0) {
    if (!Line) Line = Child.Line_;
    if (Stack_.empty()) {
      Doc_.Root_ = &Child;
      return;
    }
    Open_& Parent = Stack_.back();
    Size& Total = Parent.Total;
    Total.Nodes += Of.Nodes;
    Total.Depth = std::max(Total.Depth, Of.Depth);
    if (Total.Nodes > kMaxYamlNodes)
      Fail(Line, "the project has more than " + std::to_string(kMaxYamlNodes) +
                     " YAML nodes (counting every use of an alias)");
    if (Parent.Node->IsSequence()) {
      Parent.Node->Items_.push_back(&Child);
    } else if (!Parent.Key) {
      Parent.Key = &Child;
      if (Child.IsScalar()) CheckDuplicate(Parent, Child, Line);
    } else {
      Parent.Node->Entries_.emplace_back(Parent.Key, &Child);
      Parent.Key = nullptr;
    }
  }

  // A key written twice is reported, and the reading goes on.
  void CheckDuplicate(Open_& Map, const YamlNode& Key, int Line) {
    constexpr std::size_t kScanUpTo = 16;  // a set costs more than a scan of a few keys
    const auto& Entries = Map.Node->Entries_;
    auto SameKey = [&](const YamlNode::Entry& E) { return E.first->IsScalar() && E.first->Text_ == Key.Text_; };
    if (!Map.Hashed && Entries.size() >= kScanUpTo) {
      Map.Hashed = true;
      for (const auto& [K, V] : Entries)
        if (K->IsScalar()) Map.Keys.insert(K->Text_);
    }
    bool Seen = Map.Hashed ? !Map.Keys.insert(Key.Text_).second : std::any_of(Entries.begin(), Entries.end(), SameKey);
    if (!Seen) return;
    const YamlNode& First = *std::find_if(Entries.begin(), Entries.end(), SameKey)->first;
    Problems_.push_back(
        {Line, "duplicate key \"" + Key.Text_ + "\" (first on line " + std::to_string(First.Line_) + ")"});
  }

  YamlDocument& Doc_;
  std::vector<YamlProblem>& Problems_;
  std::vector<Open_> Stack_;
  std::unordered_map<std::string, const YamlNode*> Anchors_;
  std::unordered_map<const YamlNode*, Size> Sizes_;  // of anchored maps and lists
};

bool YamlDocument::Read(std::string_view Text, std::vector<YamlProblem>& Problems) {
  try {
    Builder(*this, Problems).Run(Text);
    return true;
  } catch (const Stop&) {
    return false;
  }
}

}  // namespace zt::host
