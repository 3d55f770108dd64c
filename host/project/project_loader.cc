#include "host/project/project_loader.h"

#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <unordered_map>

#include "frame/ZTStrings.h"
#include "host/project/did_you_mean.h"
#include "host/project/property_values.h"
#include "host/project/variables.h"
#include "host/project/yaml_document.h"

namespace zt::host {

namespace {

const std::vector<std::string> kProjectKeys = {"name", "variables", "filesets", "options", "actions"};
const std::vector<std::string> kHostKeys = {"action",        "title",   "enabled",
                                            "ignoreFailure", "actions", "scripts"};
const std::vector<std::string> kFileSetKeys = {"base", "include", "exclude"};

std::string JoinedLines(const std::string& File, const std::vector<LoadError>& Errors) {
  std::string R;
  for (const auto& E : Errors) R += (R.empty() ? "" : "\n") + ErrorLine(File, E);
  return R;
}

// Only loops and flow-control actions run children. A type not built yet
// cannot say, so its children are kept (the run refuses the type anyway).
bool TakesChildren(const ActionNode& A) {
  return A.Action->GetIsFlowControlAction() || !A.Type->Class->IsAvailable();
}

class Loader {
 public:
  Loader(const std::string& Text, const std::string& FileName, const ActionRegistry& Registry)
      : Text_(Text), FileName_(FileName), Registry_(Registry) {}

  Project Load() {
    Project P;
    P.Registry = &Registry_;
    YamlDocument Doc;
    std::vector<YamlProblem> Problems;
    bool Complete = Doc.Read(Text_, Problems);
    for (auto& Problem : Problems) Errors_.push_back({Problem.Line, std::move(Problem.Text)});
    if (Complete) Try([&] { LoadRoot(Doc.Root(), P); });
    if (!Errors_.empty()) {
      std::stable_sort(Errors_.begin(), Errors_.end(),
                       [](const auto& A, const auto& B) { return A.Line < B.Line; });
      throw ProjectError(FileName_, std::move(Errors_));
    }
    return P;
  }

 private:
  struct Skip {};  // thrown after an error is recorded: the item at hand is left out

  void Report(const YamlNode& At, const std::string& What) { Errors_.push_back({At.Line(), What}); }
  [[noreturn]] void Fail(const YamlNode& At, const std::string& What) {
    Report(At, What);
    throw Skip{};
  }
  template <class Fn>
  void Try(Fn&& F) {
    try {
      F();
    } catch (const Skip&) {
    }
  }

  std::string Scalar(const YamlNode& Node, const std::string& What) {
    if (Node.IsNull()) return "";
    if (!Node.IsScalar()) Fail(Node, What + " must be a text");
    return Node.Scalar();
  }

  bool Boolean(const YamlNode& Node, const std::string& What) {
    bool B;
    if (!Node.IsScalar() || !YamlBoolean(Node.Scalar(), B))
      Fail(Node, What + " must be true or false");
    return B;
  }

  std::vector<std::string> TextList(const YamlNode& Node, const std::string& What) {
    std::vector<std::string> R;
    if (Node.IsScalar())
      R.push_back(Node.Scalar());
    else if (Node.IsSequence())
      for (const YamlNode* Item : Node.Items()) R.push_back(Scalar(*Item, What));
    else if (!Node.IsNull())
      Fail(Node, What + " must be a text or a list of texts");
    return R;
  }

  void LoadRoot(const YamlNode& Root, Project& P) {
    const char* kNoActions = "the project has no \"actions\" list (an empty project is \"actions: []\")";
    if (Root.IsNull()) {
      Errors_.push_back({1, kNoActions});
      return;
    }
    if (!Root.IsMap()) Fail(Root, "a project is a mapping with name, variables, filesets and actions");
    bool HasActions = false;
    for (const auto& Entry : Root.Entries()) {
      Try([&] {
        std::string Key = Entry.first->Scalar();
        const YamlNode& Value = *Entry.second;
        if (Key == "name")
          P.Name = Scalar(Value, "name");
        else if (Key == "variables")
          LoadVariables(Value, P);
        else if (Key == "filesets")
          LoadFileSets(Value, P);
        else if (Key == "options")
          LoadOptions(Value, P);
        else if (Key == "actions") {
          HasActions = true;
          if (Value.IsNull()) Fail(*Entry.first, kNoActions);
          if (!Value.IsSequence()) Fail(Value, "actions must be a list");
          LoadActions(Value, "", P.Actions);
        } else
          Fail(*Entry.first, "unknown key \"" + Key + "\"" + DidYouMean(Key, kProjectKeys));
      });
    }
    if (!HasActions) Errors_.push_back({std::max(Root.Line(), 1), kNoActions});
  }

  // options: {OptionsClass: {Property: value}}; each value of its
  // property's type (a Boolean, an integer, a text, or an enumeration name).
  void LoadOptions(const YamlNode& Node, Project& P) {
    if (Node.IsNull()) return;
    if (!Node.IsMap()) Fail(Node, "options must be a mapping of options class to settings");
    for (const auto& C : Node.Entries()) {
      Try([&] {
        const std::string ClassName = C.first->Scalar();
        const RegisteredOptions* O = Registry_.FindOptions(ClassName);
        if (!O) {
          std::vector<std::string> Names;
          for (const auto& R : Registry_.Options()) Names.push_back(R.ClassName);
          Fail(*C.first, "unknown options \"" + ClassName + "\"" + DidYouMean(ClassName, Names));
        }
        if (C.second->IsNull()) return;
        if (!C.second->IsMap()) Fail(*C.second, O->ClassName + " must be a mapping of property to value");
        for (const auto& V : C.second->Entries()) {
          Try([&] {
            const std::string Name = V.first->Scalar();
            const frame::TZTOptionProperty* Prop = O->Find(Name);
            if (!Prop) {
              std::vector<std::string> Names;
              for (const auto& R : O->Properties) Names.push_back(R.Name);
              Fail(*V.first, O->ClassName + ": unknown property \"" + Name + "\"" + DidYouMean(Name, Names));
            }
            P.Options[O->ClassName][Prop->Name] = OptionValue(*Prop, *V.second, O->ClassName);
          });
        }
      });
    }
  }

  frame::TZTVariant OptionValue(const frame::TZTOptionProperty& Prop, const YamlNode& Node,
                                const std::string& ClassName) {
    const std::string What = ClassName + "." + Prop.Name;
    const std::string Text = Scalar(Node, What);
    if (!Prop.EnumNames.empty()) {
      for (const std::string& E : Prop.EnumNames)
        if (strcasecmp(E.c_str(), Text.c_str()) == 0) return E;
      Fail(Node, What + ": unknown value \"" + Text + "\"" + DidYouMean(Text, Prop.EnumNames));
    }
    try {
      switch (Prop.Default.Kind()) {
        case frame::TZTVariant::TKind::Boolean: return frame::TZTVariant(Text).AsBoolean();
        case frame::TZTVariant::TKind::Integer: return frame::TZTVariant(Text).AsInteger();
        default: return Text;
      }
    } catch (const std::exception&) {
      Fail(Node, What + " must be " + (Prop.Default.Kind() == frame::TZTVariant::TKind::Boolean ? "true or false"
                                                                                              : "an integer"));
    }
    return {};
  }

  void LoadVariables(const YamlNode& Node, Project& P) {
    if (Node.IsNull()) return;
    if (!Node.IsMap()) Fail(Node, "variables must be a mapping of name to value");
    std::map<std::string, int> Lines;  // lower-case name -> line of its definition
    for (const auto& V : Node.Entries()) {
      Try([&] {
        std::string Name = V.first->Scalar();
        const YamlNode& Value = *V.second;
        if (!IsVariableName(Name))
          Fail(*V.first, "variable name \"" + Name + "\" is not valid (letters, digits, _, . and -)");
        auto [It, First] = Lines.emplace(LowerCase(Name), V.first->Line());
        if (!First && It->second != V.first->Line())  // the same spelling twice is a duplicate key already
          Report(*V.first, "variable \"" + Name + "\" is defined on line " + std::to_string(It->second) +
                              " already (names ignore letter case)");
        if (!Value.IsScalar() && !Value.IsNull())
          Fail(Value, "variable \"" + Name + "\" must be a text, Boolean or integer");
        std::string Text = Value.IsNull() ? "" : Value.Scalar();
        // A quoted value is always text; a plain one may be a Boolean or an integer.
        bool Quoted = !Value.Plain();
        P.InitialVariables.emplace_back(Name, Quoted ? frame::TZTVariant(Text) : TypedValueOf(Text));
      });
    }
  }

  void LoadFileSets(const YamlNode& Node, Project& P) {
    if (Node.IsNull()) return;
    if (!Node.IsMap()) Fail(Node, "filesets must be a mapping of name to file set");
    for (const auto& S : Node.Entries()) {
      Try([&] {
        FileSetDefinition F;
        F.Name = S.first->Scalar();
        F.Line = S.first->Line();
        if (!S.second->IsMap())
          Fail(*S.second, "file set \"" + F.Name + "\" must be a mapping with base, include and exclude");
        for (const auto& E : S.second->Entries()) {
          Try([&] {
            std::string Key = E.first->Scalar();
            if (Key == "base")
              F.Base = Scalar(*E.second, "base");
            else if (Key == "include")
              F.Include = TextList(*E.second, "include");
            else if (Key == "exclude")
              F.Exclude = TextList(*E.second, "exclude");
            else
              Fail(*E.first, "unknown key \"" + Key + "\" in file set \"" + F.Name + "\"" +
                                DidYouMean(Key, kFileSetKeys));
          });
        }
        P.FileSets.push_back(std::move(F));
      });
    }
  }

  void LoadActions(const YamlNode& Node, const std::string& ParentId, std::vector<ActionNode>& Out) {
    if (Node.IsNull()) return;
    if (!Node.IsSequence()) Fail(Node, "actions must be a list");
    int Index = 0;
    for (const YamlNode* Item : Node.Items()) {
      std::string Id = ParentId + (ParentId.empty() ? "" : ".") + std::to_string(++Index);
      Try([&] { Out.push_back(LoadAction(*Item, Id)); });
    }
  }

  ActionNode LoadAction(const YamlNode& Node, const std::string& Id) {
    if (!Node.IsMap()) Fail(Node, "an action must be a mapping with the key \"action\"");
    const YamlNode* TypeNode = Node.Find("action");
    if (!TypeNode) Fail(Node, "action without the key \"action\"");
    std::string TypeName = Scalar(*TypeNode, "action");
    ActionNode A;
    A.Id = Id;
    A.Line = Node.Line();
    const TypeFacts& Facts = FactsOf(TypeName);
    A.Type = Facts.Type;
    if (!A.Type) {
      Report(*TypeNode, "unknown action \"" + TypeName + "\"" + Registry_.DidYouMean(TypeName));
      if (const YamlNode* Children = Node.Find("actions")) Try([&] { LoadActions(*Children, Id, A.Children); });
      throw Skip{};
    }
    if (!A.Type->Class->Create) Fail(*TypeNode, "action \"" + TypeName + "\" cannot be created");
    A.Action.reset(A.Type->Class->Create());
    A.Action->SetTitle(A.Type->DisplayName);

    const std::vector<frame::TZTPropInfo>& Props = Facts.Props;
    frame::TStrings ReadOnly;
    A.Action->GetReadOnlyProperties(ReadOnly);
    for (const auto& Entry : Node.Entries()) {
      Try([&] {
        std::string Key = Entry.first->Scalar();
        const YamlNode& Value = *Entry.second;
        if (Key == "action") return;
        if (Key == "title")
          A.Action->SetTitle(Scalar(Value, "title"));
        else if (Key == "enabled")
          A.Enabled = Boolean(Value, "enabled");
        else if (Key == "ignoreFailure")
          A.IgnoreFailure = Boolean(Value, "ignoreFailure");
        else if (Key == "actions")
          LoadChildren(A, *Entry.first, Value);
        else if (Key == "scripts")
          LoadScripts(Value, A);
        else if (A.Type->Class->IsAvailable())  // a type not built yet is refused as a whole, not per setting
          ApplyProperty(A, Props, ReadOnly, *Entry.first, Value);
      });
    }
    return A;
  }

  void LoadChildren(ActionNode& A, const YamlNode& KeyNode, const YamlNode& Value) {
    if (Value.IsSequence() && !Value.Items().empty() && !TakesChildren(A))
      Report(KeyNode,
             A.Type->DisplayName + " takes no child actions (only loops and flow-control actions do)");
    LoadActions(Value, A.Id, A.Children);
  }

  // Names are those the action owns (AddScript) and the host's events.
  void LoadScripts(const YamlNode& Node, ActionNode& A) {
    if (Node.IsNull()) return;
    if (!Node.IsMap()) Fail(Node, "scripts must be a mapping of script name to source");
    std::vector<std::string> Names = A.Action->GetScriptNames();
    Names.insert(Names.end(), kEventScripts.begin(), kEventScripts.end());
    for (const auto& S : Node.Entries())
      Try([&] {
        std::string Name = S.first->Scalar();
        if (std::find(Names.begin(), Names.end(), Name) == Names.end())
          Fail(*S.first, A.Type->DisplayName + ": unknown script \"" + Name + "\"" + DidYouMean(Name, Names));
        A.Scripts.push_back({Name, Scalar(*S.second, "script"), FirstSourceLine(*S.second)});
      });
  }

  // A block scalar (`|`, `>`) starts on the line after its indicator; any
  // other scalar on the line of its node.
  static int FirstSourceLine(const YamlNode& Node) { return Node.Line() ? Node.Line() + (Node.Block() ? 1 : 0) : 0; }

  void ApplyProperty(ActionNode& A, const std::vector<frame::TZTPropInfo>& Props,
                     const frame::TStrings& ReadOnly, const YamlNode& KeyNode, const YamlNode& Value) {
    const std::string& Type = A.Type->DisplayName;
    const frame::TZTPropInfo* Prop = nullptr;
    try {
      Prop = &FindProperty(Props, KeyNode.Scalar(), kHostKeys);
      CheckWritable(*Prop, ReadOnly);
    } catch (const BadPropertyValue& E) {
      Fail(KeyNode, Type + ": " + E.what());
    }
    try {
      SetPropertyFromYaml(*A.Action, *Prop, Value);
    } catch (const BadPropertyValue& E) {
      Fail(Value, Type + ": " + E.what());
    }
  }

  const std::string& Text_;
  std::string FileName_;
  const ActionRegistry& Registry_;
  std::vector<LoadError> Errors_;

  // A project repeats a few types many times: each name is looked up, and
  // its class's property list made, once per load.
  struct TypeFacts {
    const RegisteredAction* Type = nullptr;
    std::vector<frame::TZTPropInfo> Props;
  };
  const TypeFacts& FactsOf(const std::string& TypeName) {
    auto [It, New] = Types_.try_emplace(TypeName);
    if (New && (It->second.Type = Registry_.Find(TypeName))) It->second.Props = It->second.Type->Class->Properties();
    return It->second;
  }
  std::unordered_map<std::string, TypeFacts> Types_;
};

void CollectUnavailable(const std::vector<ActionNode>& Nodes, std::vector<LoadError>& Out) {
  for (const auto& N : Nodes) {
    if (!N.Enabled) continue;
    if (!N.Type->Class->IsAvailable()) Out.push_back({N.Line, N.Type->DisplayName + " is not available yet"});
    CollectUnavailable(N.Children, Out);
  }
}

}  // namespace

ProjectError::ProjectError(const std::string& File, std::vector<LoadError> Errors)
    : std::runtime_error(JoinedLines(File, Errors)), File_(File), Errors_(std::move(Errors)) {}

std::string ErrorLine(const std::string& File, const LoadError& E) {
  return File + (E.Line ? ":" + std::to_string(E.Line) : "") + ": " + E.Text;
}

Project LoadProjectText(const std::string& Text, const std::string& FileName,
                        const ActionRegistry& Registry) {
  Project P = Loader(Text, FileName, Registry).Load();
  P.FileName = FileName;
  return P;
}

Project LoadProject(const std::string& Path, const ActionRegistry& Registry) {
  std::error_code Ec;
  if (std::filesystem::is_directory(Path, Ec))
    throw ProjectError(Path, {{0, "is a folder, not a project file"}});
  std::ifstream In(Path, std::ios::binary);
  if (!In)
    throw ProjectError(Path, {{0, std::string("cannot open the project file: ") + std::strerror(errno)}});
  std::string Text;
  // The size is a hint: a pipe has none, and a file may change while it is read.
  if (auto Size = std::filesystem::file_size(Path, Ec); !Ec && Size < (std::uintmax_t{1} << 30)) Text.reserve(Size);
  char Block[1 << 16];
  while (In.read(Block, sizeof Block) || In.gcount() > 0) Text.append(Block, static_cast<std::size_t>(In.gcount()));
  if (In.bad()) throw ProjectError(Path, {{0, "cannot read the project file"}});
  Project P = LoadProjectText(Text, Path, Registry);
  P.File = std::filesystem::absolute(Path, Ec).lexically_normal().string();
  return P;
}

std::vector<LoadError> UnavailableActions(const Project& P) {
  std::vector<LoadError> R;
  CollectUnavailable(P.Actions, R);
  return R;
}

}  // namespace zt::host
