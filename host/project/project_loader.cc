#include "host/project/project_loader.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <yaml-cpp/yaml.h>

#include "frame/ZTStrings.h"
#include "host/project/did_you_mean.h"
#include "host/project/property_values.h"
#include "host/project/variables.h"

namespace zt::host {

namespace {

const std::vector<std::string> kProjectKeys = {"name", "variables", "filesets", "actions"};
const std::vector<std::string> kHostKeys = {"action", "title", "enabled", "ignoreFailure", "actions", "scripts"};
const std::vector<std::string> kFileSetKeys = {"base", "include", "exclude"};

int LineOf(const YAML::Node& Node) { return Node.Mark().is_null() ? 0 : Node.Mark().line + 1; }

class Loader {
 public:
  Loader(const std::string& FileName, const ActionRegistry& Registry) : FileName_(FileName), Registry_(Registry) {}

  Project Load(const YAML::Node& Root) {
    Project P;
    if (Root.IsNull()) return P;
    if (!Root.IsMap()) Fail(Root, "a project is a mapping with name, variables, filesets and actions");
    for (const auto& Entry : Root) {
      std::string Key = Entry.first.Scalar();
      const YAML::Node& Value = Entry.second;
      if (Key == "name") P.Name = Scalar(Value, "name");
      else if (Key == "variables") LoadVariables(Value, P);
      else if (Key == "filesets") LoadFileSets(Value, P);
      else if (Key == "actions") LoadActions(Value, "", P.Actions);
      else Fail(Entry.first, "unknown key \"" + Key + "\"" + DidYouMean(Key, kProjectKeys));
    }
    return P;
  }

 private:
  [[noreturn]] void Fail(const YAML::Node& At, const std::string& What) const {
    throw ProjectError(FileName_ + ":" + std::to_string(LineOf(At)) + ": " + What);
  }

  std::string Scalar(const YAML::Node& Node, const std::string& What) const {
    if (Node.IsNull()) return "";
    if (!Node.IsScalar()) Fail(Node, What + " must be a text");
    return Node.Scalar();
  }

  bool Boolean(const YAML::Node& Node, const std::string& What) const {
    bool B;
    if (!Node.IsScalar() || !YAML::convert<bool>::decode(Node, B)) Fail(Node, What + " must be true or false");
    return B;
  }

  std::vector<std::string> TextList(const YAML::Node& Node, const std::string& What) const {
    std::vector<std::string> R;
    if (Node.IsScalar()) R.push_back(Node.Scalar());
    else if (Node.IsSequence())
      for (const auto& Item : Node) R.push_back(Scalar(Item, What));
    else if (!Node.IsNull()) Fail(Node, What + " must be a text or a list of texts");
    return R;
  }

  void LoadVariables(const YAML::Node& Node, Project& P) const {
    if (Node.IsNull()) return;
    if (!Node.IsMap()) Fail(Node, "variables must be a mapping of name to value");
    for (const auto& V : Node) {
      const YAML::Node& Value = V.second;
      if (!Value.IsScalar() && !Value.IsNull()) Fail(Value, "variable \"" + V.first.Scalar() + "\" must be a text, Boolean or integer");
      std::string Text = Value.IsNull() ? "" : Value.Scalar();
      // A quoted value is always text; a plain one may be a Boolean or an integer.
      bool Quoted = Value.Tag() == "!";
      P.InitialVariables.emplace_back(V.first.Scalar(), Quoted ? frame::TZTVariant(Text) : TypedValueOf(Text));
    }
  }

  void LoadFileSets(const YAML::Node& Node, Project& P) const {
    if (Node.IsNull()) return;
    if (!Node.IsMap()) Fail(Node, "filesets must be a mapping of name to file set");
    for (const auto& S : Node) {
      FileSetDefinition F;
      F.Name = S.first.Scalar();
      F.Line = LineOf(S.first);
      if (!S.second.IsMap()) Fail(S.second, "file set \"" + F.Name + "\" must be a mapping with base, include and exclude");
      for (const auto& E : S.second) {
        std::string Key = E.first.Scalar();
        if (Key == "base") F.Base = Scalar(E.second, "base");
        else if (Key == "include") F.Include = TextList(E.second, "include");
        else if (Key == "exclude") F.Exclude = TextList(E.second, "exclude");
        else Fail(E.first, "unknown key \"" + Key + "\" in file set \"" + F.Name + "\"" + DidYouMean(Key, kFileSetKeys));
      }
      P.FileSets.push_back(std::move(F));
    }
  }

  void LoadActions(const YAML::Node& Node, const std::string& ParentId, std::vector<ActionNode>& Out) const {
    if (Node.IsNull()) return;
    if (!Node.IsSequence()) Fail(Node, "actions must be a list");
    for (const auto& Item : Node) {
      std::string Id = ParentId + (ParentId.empty() ? "" : ".") + std::to_string(Out.size() + 1);
      Out.push_back(LoadAction(Item, Id));
    }
  }

  ActionNode LoadAction(const YAML::Node& Node, const std::string& Id) const {
    if (!Node.IsMap()) Fail(Node, "an action must be a mapping with the key \"action\"");
    const YAML::Node TypeNode = Node["action"];
    if (!TypeNode) Fail(Node, "action without the key \"action\"");
    std::string TypeName = Scalar(TypeNode, "action");
    ActionNode A;
    A.Id = Id;
    A.Line = LineOf(Node);
    A.Type = Registry_.Find(TypeName);
    if (!A.Type) Fail(TypeNode, "unknown action \"" + TypeName + "\"" + DidYouMean(TypeName, Registry_.Names()));
    if (!A.Type->Class->Create) Fail(TypeNode, "action \"" + TypeName + "\" cannot be created");
    A.Action.reset(A.Type->Class->Create());
    A.Action->SetTitle(A.Type->DisplayName);

    std::vector<frame::TZTPropInfo> Props = A.Type->Class->Properties();
    frame::TStrings ReadOnly;
    A.Action->GetReadOnlyProperties(ReadOnly);
    for (const auto& Entry : Node) {
      std::string Key = Entry.first.Scalar();
      const YAML::Node& Value = Entry.second;
      if (Key == "action") continue;
      if (Key == "title") A.Action->SetTitle(Scalar(Value, "title"));
      else if (Key == "enabled") A.Enabled = Boolean(Value, "enabled");
      else if (Key == "ignoreFailure") A.IgnoreFailure = Boolean(Value, "ignoreFailure");
      else if (Key == "actions") LoadActions(Value, Id, A.Children);
      else if (Key == "scripts") LoadScripts(Value, A);
      else ApplyProperty(A, Props, ReadOnly, Entry.first, Value);
    }
    return A;
  }

  void LoadScripts(const YAML::Node& Node, ActionNode& A) const {
    if (Node.IsNull()) return;
    if (!Node.IsMap()) Fail(Node, "scripts must be a mapping of script name to source");
    for (const auto& S : Node) A.Scripts.emplace_back(S.first.Scalar(), Scalar(S.second, "script"));
  }

  void ApplyProperty(ActionNode& A, const std::vector<frame::TZTPropInfo>& Props, const frame::TStrings& ReadOnly,
                     const YAML::Node& KeyNode, const YAML::Node& Value) const {
    std::string Key = KeyNode.Scalar();
    const std::string& Type = A.Type->DisplayName;
    auto It = std::find_if(Props.begin(), Props.end(), [&](const auto& P) { return P.Name == Key; });
    if (It == Props.end()) {
      std::vector<std::string> Names = kHostKeys;
      for (const auto& P : Props) Names.push_back(P.Name);
      Fail(KeyNode, Type + ": unknown property \"" + Key + "\"" + DidYouMean(Key, Names));
    }
    if (It->ReadOnly() || ReadOnly.IndexOf(Key) >= 0) Fail(KeyNode, Type + ": property \"" + Key + "\" is read-only");
    try {
      It->Set(*A.Action, PropertyValueFromYaml(*It, Value));
    } catch (const BadPropertyValue& E) {
      Fail(Value, Type + ": property \"" + Key + "\" " + E.what());
    } catch (const std::exception& E) {
      Fail(Value, Type + ": property \"" + Key + "\": " + E.what());
    }
  }

  std::string FileName_;
  const ActionRegistry& Registry_;
};

}  // namespace

Project LoadProjectText(const std::string& Text, const std::string& FileName, const ActionRegistry& Registry) {
  YAML::Node Root;
  try {
    Root = YAML::Load(Text);
  } catch (const YAML::Exception& E) {
    throw ProjectError(FileName + ":" + std::to_string(E.mark.is_null() ? 0 : E.mark.line + 1) + ": " + E.msg);
  }
  try {
    return Loader(FileName, Registry).Load(Root);
  } catch (const YAML::Exception& E) {
    throw ProjectError(FileName + ":" + std::to_string(E.mark.is_null() ? 0 : E.mark.line + 1) + ": " + E.msg);
  }
}

Project LoadProject(const std::string& Path, const ActionRegistry& Registry) {
  std::ifstream In(Path, std::ios::binary);
  if (!In) throw ProjectError(Path + ": cannot open the project file");
  std::ostringstream Text;
  Text << In.rdbuf();
  Project P = LoadProjectText(Text.str(), Path, Registry);
  std::error_code Ec;
  P.File = std::filesystem::absolute(Path, Ec).lexically_normal().string();
  return P;
}

}  // namespace zt::host
