#include "host/project/yaml_checks.h"

#include <map>

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
    if (++Nodes_ > kMaxYamlNodes)
      return Stop(At, "the project has more than " + std::to_string(kMaxYamlNodes) +
                          " YAML nodes (counting every use of an alias)");
    if (!Node.IsMap() && !Node.IsSequence()) return;
    for (const YAML::Node& Open : Path_)
      if (Open.is(Node))
        return Stop(At, "an alias refers to a node that contains it (anchor on line " +
                            std::to_string(LineOf(Node)) + ")");
    if (static_cast<int>(Path_.size()) == kMaxYamlDepth)
      return Stop(At, "the project is nested more than " + std::to_string(kMaxYamlDepth) + " levels deep");
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
  }

 private:
  void Stop(int At, std::string Text) {
    Problems.push_back({At, std::move(Text)});
    Fatal = true;
  }

  std::vector<YAML::Node> Path_;  // the maps and lists that contain the node being visited
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
