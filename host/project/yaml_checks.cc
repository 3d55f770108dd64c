#include "host/project/yaml_checks.h"

#include <map>
#include <unordered_map>

namespace zt::host {

int LineOf(const YAML::Node& Node) { return Node.Mark().is_null() ? 0 : Node.Mark().line + 1; }

namespace {

class Walk {
 public:
  std::vector<YamlProblem> Problems;
  bool Fatal = false;

  // At: the line that names Node (its key, or its parent's line).
  void Visit(const YAML::Node& Node, int At) {
    if (Fatal) return;
    if (++Nodes_ > kMaxYamlNodes) return TooMany(At);
    if (!Node.IsMap() && !Node.IsSequence()) return;
    for (const YAML::Node& Open : Path_)
      if (Open.is(Node))
        return Stop(At, "an alias refers to a node that contains it (anchor on line " +
                            std::to_string(LineOf(Node)) + ")");
    if (static_cast<int>(Path_.size()) == kMaxYamlDepth)
      return Stop(At, "the project is nested more than " + std::to_string(kMaxYamlDepth) + " levels deep");
    // A node an alias brought back was checked on its first visit: count its
    // nodes again without walking them, so that aliases of aliases cost
    // linear time on the way to the limit.
    std::vector<Walked>& Same = Walked_[Node.Mark().pos];
    for (const Walked& W : Same)
      if (W.Node.is(Node)) {
        if ((Nodes_ += W.Count - 1) > kMaxYamlNodes) TooMany(At);
        return;
      }
    const long Before = Nodes_ - 1;
    Path_.push_back(Node);
    if (Node.IsMap()) {
      std::map<std::string, int> Seen;  // scalar key -> line of its first use
      for (const auto& Entry : Node) {
        int Line = LineOf(Entry.first);
        if (Entry.first.IsScalar()) {
          auto [It, First] = Seen.emplace(Entry.first.Scalar(), Line);
          if (!First)
            Problems.push_back({Line, "duplicate key \"" + It->first + "\" (first on line " +
                                          std::to_string(It->second) + ")"});
        }
        Visit(Entry.second, Line);
      }
    } else {
      for (const auto& Item : Node) Visit(Item, LineOf(Item) ? LineOf(Item) : At);
    }
    Path_.pop_back();
    if (!Fatal) Same.push_back({Node, Nodes_ - Before});  // the map keeps the list where it is
  }

 private:
  void TooMany(int At) {
    Stop(At, "the project has more than " + std::to_string(kMaxYamlNodes) +
                 " YAML nodes (counting every use of an alias)");
  }
  void Stop(int At, std::string Text) {
    Problems.push_back({At, std::move(Text)});
    Fatal = true;
  }

  struct Walked {
    YAML::Node Node;
    long Count;  // nodes in it, itself included
  };
  std::vector<YAML::Node> Path_;  // the maps and lists that contain the node being visited
  std::unordered_map<std::size_t, std::vector<Walked>> Walked_;  // by where a node starts
  long Nodes_ = 0;
};

}  // namespace

std::vector<YamlProblem> CheckYaml(const YAML::Node& Root, bool* Fatal) {
  Walk W;
  W.Visit(Root, 1);
  *Fatal = W.Fatal;
  return W.Problems;
}

}  // namespace zt::host
