#include "host/project/property_values.h"

#include <cerrno>
#include <cstdlib>

#include "frame/ZTStrings.h"
#include "host/project/did_you_mean.h"
#include "platform/dates.h"

namespace zt::host {

using frame::TZTPropertyKind;
using frame::TZTVariant;

namespace {

std::string Shown(const YamlNode& Node) {
  if (Node.IsScalar()) return "\"" + Node.Scalar() + "\"";
  if (Node.IsSequence()) return "a list";
  if (Node.IsMap()) return "a mapping";
  return "nothing";
}

[[noreturn]] void Expected(const std::string& What, const YamlNode& Node) {
  throw BadPropertyValue("expects " + What + ", got " + Shown(Node));
}

std::string ScalarText(const YamlNode& Node, const char* What) {
  if (Node.IsNull()) return "";
  if (!Node.IsScalar()) Expected(What, Node);
  return Node.Scalar();
}

std::int64_t IntegerOf(const YamlNode& Node, const char* What) {
  if (!Node.IsScalar()) Expected(What, Node);
  std::int64_t R;
  if (!frame::detail::TryStrToInt64(Node.Scalar(), R)) Expected(What, Node);
  return R;
}

std::string NameList(const std::vector<std::string>& Names) {
  std::string R;
  for (std::size_t I = 0; I < Names.size(); ++I) R += (I ? ", " : "") + Names[I];
  return R;
}

int EnumOrdinal(const frame::TZTPropInfo& Prop, const std::string& Name) {
  for (std::size_t I = 0; I < Prop.EnumNames.size(); ++I)
    if (Prop.EnumNames[I] == Name) return static_cast<int>(I);
  return -1;
}

TZTVariant EnumerationValue(const frame::TZTPropInfo& Prop, const YamlNode& Node) {
  std::string What = "one of " + NameList(Prop.EnumNames) + " or an ordinal 0.." +
                     std::to_string(Prop.EnumNames.size() - 1);
  if (!Node.IsScalar()) Expected(What, Node);
  int Ordinal = EnumOrdinal(Prop, Node.Scalar());
  if (Ordinal >= 0) return Ordinal;
  std::int64_t N;
  if (frame::detail::TryStrToInt64(Node.Scalar(), N) && N >= 0 &&
      N < static_cast<std::int64_t>(Prop.EnumNames.size()))
    return N;
  throw BadPropertyValue("expects " + What + ", got " + Shown(Node) + DidYouMean(Node.Scalar(), Prop.EnumNames));
}

std::vector<std::string> ValueNameList(const frame::TZTPropInfo& Prop) {
  std::vector<std::string> Names;
  for (const auto& [Name, Value] : Prop.ValueNames) Names.push_back(Name);
  return Names;
}

TZTVariant NamedIntegerValue(const frame::TZTPropInfo& Prop, const YamlNode& Node) {
  if (Node.IsScalar())
    for (const auto& [Name, Value] : Prop.ValueNames)
      if (Node.Scalar() == Name) return Value;
  std::int64_t N;
  if (Node.IsScalar() && frame::detail::TryStrToInt64(Node.Scalar(), N)) return N;
  throw BadPropertyValue("expects an integer or one of " + NameList(ValueNameList(Prop)) + ", got " + Shown(Node) +
                         (Node.IsScalar() ? DidYouMean(Node.Scalar(), ValueNameList(Prop)) : ""));
}

TZTVariant SetValue(const frame::TZTPropInfo& Prop, const YamlNode& Node) {
  std::string What = "a list of " + NameList(Prop.EnumNames);
  if (Node.IsNull()) return std::int64_t{0};
  if (!Node.IsSequence()) Expected(What, Node);
  std::int64_t Mask = 0;
  for (const YamlNode* ItemNode : Node.Items()) {
    const YamlNode& Item = *ItemNode;
    int Ordinal = Item.IsScalar() ? EnumOrdinal(Prop, Item.Scalar()) : -1;
    if (Ordinal < 0 || Ordinal > 62) {
      std::string Hint = Item.IsScalar() ? DidYouMean(Item.Scalar(), Prop.EnumNames) : "";
      throw BadPropertyValue("expects " + What + ", got " + Shown(Item) + Hint);
    }
    Mask |= std::int64_t{1} << Ordinal;
  }
  return Mask;
}

TZTVariant StringListValue(const YamlNode& Node) {
  frame::TStrings Lines;
  if (Node.IsSequence()) {
    for (const YamlNode* ItemNode : Node.Items()) {
      const YamlNode& Item = *ItemNode;
      if (!Item.IsScalar() && !Item.IsNull()) Expected("a list of texts or a multi-line text", Item);
      Lines.Add(Item.IsNull() ? "" : Item.Scalar());
    }
  } else {
    Lines.SetText(ScalarText(Node, "a list of texts or a multi-line text"));
  }
  return Lines.Text();
}

}  // namespace

const frame::TZTPropInfo& FindProperty(const std::vector<frame::TZTPropInfo>& Props, const std::string& Name,
                                       const std::vector<std::string>& OtherNames) {
  for (const auto& P : Props)
    if (P.Name == Name) return P;
  std::vector<std::string> Names = OtherNames;
  for (const auto& P : Props) Names.push_back(P.Name);
  throw BadPropertyValue("unknown property \"" + Name + "\"" + DidYouMean(Name, Names));
}

void CheckWritable(const frame::TZTPropInfo& Prop, const frame::TStrings& ReadOnly) {
  if (Prop.ReadOnly() || ReadOnly.IndexOf(Prop.Name) >= 0)
    throw BadPropertyValue("property \"" + Prop.Name + "\" is read-only");
}

void SetPropertyFromYaml(frame::TZTAction& Action, const frame::TZTPropInfo& Prop, const YamlNode& Node) {
  TZTVariant Value;
  try {
    Value = PropertyValueFromYaml(Prop, Node);
  } catch (const BadPropertyValue& E) {
    throw BadPropertyValue("property \"" + Prop.Name + "\" " + E.what());
  }
  try {
    Prop.Set(Action, Value);
  } catch (const std::exception& E) {
    throw BadPropertyValue("property \"" + Prop.Name + "\": " + E.what());
  }
}

TZTVariant PropertyValueFromYaml(const frame::TZTPropInfo& Prop, const YamlNode& Node) {
  switch (Prop.Kind) {
    case TZTPropertyKind::String:
    case TZTPropertyKind::WideString:
      return ScalarText(Node, "a text");
    case TZTPropertyKind::Boolean: {
      bool B;
      if (!Node.IsScalar() || !YamlBoolean(Node.Scalar(), B)) Expected("a Boolean (true or false)", Node);
      return B;
    }
    case TZTPropertyKind::Integer:
      return Prop.ValueNames.empty() ? IntegerOf(Node, "an integer") : NamedIntegerValue(Prop, Node);
    case TZTPropertyKind::Double: {
      std::string S = ScalarText(Node, "a number");
      char* End = nullptr;
      errno = 0;
      double D = std::strtod(S.c_str(), &End);
      if (S.empty() || *End || errno) Expected("a number", Node);
      return D;
    }
    case TZTPropertyKind::DateTime: {
      double D;
      if (!Node.IsScalar() || !platform::TryParseIsoDateTime(Node.Scalar(), D))
        Expected("a date-time as YYYY-MM-DDTHH:MM:SS", Node);
      return D;
    }
    case TZTPropertyKind::Enumeration:
      return EnumerationValue(Prop, Node);
    case TZTPropertyKind::Set:
      return SetValue(Prop, Node);
    case TZTPropertyKind::StringList:
      return StringListValue(Node);
  }
  return {};
}

std::string PropertyValueText(const frame::TZTPropInfo& Prop, const TZTVariant& Value) {
  switch (Prop.Kind) {
    case TZTPropertyKind::Boolean:
      return Value.AsBoolean() ? "true" : "false";
    case TZTPropertyKind::DateTime:
      return platform::FormatIsoDateTime(Value.AsDouble());
    case TZTPropertyKind::Enumeration: {
      std::int64_t N = Value.AsInteger();
      return N >= 0 && N < static_cast<std::int64_t>(Prop.EnumNames.size()) ? Prop.EnumNames[N] : std::to_string(N);
    }
    case TZTPropertyKind::Set: {
      std::vector<std::string> Names;
      std::int64_t Mask = Value.AsInteger();
      for (std::size_t I = 0; I < Prop.EnumNames.size() && I < 63; ++I)
        if (Mask & (std::int64_t{1} << I)) Names.push_back(Prop.EnumNames[I]);
      return "[" + NameList(Names) + "]";
    }
    case TZTPropertyKind::Integer:
      for (const auto& [Name, Named] : Prop.ValueNames)
        if (Value.AsInteger() == Named) return Name;
      return Value.AsString();
    case TZTPropertyKind::StringList: {
      frame::TStrings Lines;
      Lines.SetText(Value.AsString());
      return "[" + NameList(Lines.Lines()) + "]";
    }
    default:
      return Value.AsString();
  }
}

std::string PropertyTypeText(const frame::TZTPropInfo& Prop) {
  switch (Prop.Kind) {
    case TZTPropertyKind::Enumeration:
      return Prop.TypeName + " (" + NameList(Prop.EnumNames) + ")";
    case TZTPropertyKind::Set:
      return Prop.TypeName + " (set of " + NameList(Prop.EnumNames) + ")";
    case TZTPropertyKind::Integer:
      if (Prop.ValueNames.empty()) return Prop.TypeName;
      return Prop.TypeName + " (a number or " + NameList(ValueNameList(Prop)) + ")";
    default:
      return Prop.TypeName;
  }
}

}  // namespace zt::host
