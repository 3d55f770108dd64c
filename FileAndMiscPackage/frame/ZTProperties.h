// Published properties: each action class describes its properties once
// (name, kind, type, stored, read-only, getter and setter), and the host uses
// that one description to load projects, print help, serve scripts and save.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "frame/ZTVariant.h"

namespace zt::frame {

class TZTAction;

enum class TZTPropertyKind {
  String,       // narrow string
  WideString,   // wide string (UTF-8 here as well)
  Boolean,
  Integer,
  Double,
  DateTime,     // TDateTime (double, days since 1899-12-30)
  Enumeration,  // value: ordinal; EnumNames gives the value names
  Set,          // value: bit mask (bit n = ordinal n); EnumNames names the bits
  StringList,   // value: the list's text, lines joined with CR LF
};

struct TZTPropInfo {
  std::string Name;
  TZTPropertyKind Kind = TZTPropertyKind::String;
  std::string TypeName;                // "WideString", "Boolean", "TFileExistsMode" ...
  std::vector<std::string> EnumNames;  // Enumeration and Set only
  // Integer only: names that stand for values (a root key's handle by its
  // name), compared exactly. A project may write a name or the number;
  // listings show the name.
  std::vector<std::pair<std::string, std::int64_t>> ValueNames;
  bool Stored = true;                  // false: never persisted in a project
  std::function<TZTVariant(const TZTAction&)> Get;
  std::function<void(TZTAction&, const TZTVariant&)> Set;  // empty: read-only
  bool ReadOnly() const { return !Set; }
};

// Collects the properties one class publishes, in declaration order, after
// those of its ancestors. Cls is the publishing class; getters and setters
// are its member functions (inherited ones included).
template <class Cls>
class TZTPublisher {
 public:
  explicit TZTPublisher(std::vector<TZTPropInfo>& Out) : Out_(Out) {}

  template <class G, class S = std::nullptr_t>
  TZTPropInfo& String(const char* Name, G Get, S Set = nullptr) {
    return Add(Name, TZTPropertyKind::String, "string", Get, Set);
  }
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& WideString(const char* Name, G Get, S Set = nullptr) {
    return Add(Name, TZTPropertyKind::WideString, "WideString", Get, Set);
  }
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& Boolean(const char* Name, G Get, S Set = nullptr) {
    return Add(Name, TZTPropertyKind::Boolean, "Boolean", Get, Set);
  }
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& Integer(const char* Name, G Get, S Set = nullptr) {
    return Add(Name, TZTPropertyKind::Integer, "Integer", Get, Set);
  }
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& DateTime(const char* Name, G Get, S Set = nullptr) {
    return Add(Name, TZTPropertyKind::DateTime, "TDateTime", Get, Set);
  }
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& Double(const char* Name, G Get, S Set = nullptr) {
    return Add(Name, TZTPropertyKind::Double, "Double", Get, Set);
  }
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& StringList(const char* Name, G Get, S Set = nullptr) {
    return Add(Name, TZTPropertyKind::StringList, "TStrings", Get, Set);
  }
  // Enumerations: the getter returns the enum type, Names lists its values.
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& Enumeration(const char* Name, const char* TypeName, std::vector<std::string> Names, G Get,
                           S Set = nullptr) {
    auto& P = Add(Name, TZTPropertyKind::Enumeration, TypeName, Get, Set);
    P.EnumNames = std::move(Names);
    return P;
  }
  // Sets: the getter returns an integer bit mask (bit n = value n).
  template <class G, class S = std::nullptr_t>
  TZTPropInfo& Set(const char* Name, const char* TypeName, std::vector<std::string> Names, G Get,
                   S Set = nullptr) {
    auto& P = Add(Name, TZTPropertyKind::Set, TypeName, Get, Set);
    P.EnumNames = std::move(Names);
    return P;
  }

 private:
  template <class G, class S>
  TZTPropInfo& Add(const char* Name, TZTPropertyKind Kind, const char* TypeName, G Get, S Set) {
    TZTPropInfo P;
    P.Name = Name;
    P.Kind = Kind;
    P.TypeName = TypeName;
    P.Get = [Get](const TZTAction& A) -> TZTVariant {
      const auto& Self = static_cast<const Cls&>(A);
      using R = std::decay_t<decltype((Self.*Get)())>;
      if constexpr (std::is_enum_v<R>) return TZTVariant(static_cast<std::int64_t>((Self.*Get)()));
      else return TZTVariant((Self.*Get)());
    };
    if constexpr (!std::is_same_v<S, std::nullptr_t>) {
      P.Set = [Set](TZTAction& A, const TZTVariant& V) {
        auto& Self = static_cast<Cls&>(A);
        using Arg = typename SetterArg<S>::Type;
        if constexpr (std::is_same_v<Arg, bool>) (Self.*Set)(V.AsBoolean());
        else if constexpr (std::is_enum_v<Arg>) (Self.*Set)(static_cast<Arg>(V.AsInteger()));
        else if constexpr (std::is_integral_v<Arg>) (Self.*Set)(static_cast<Arg>(V.AsInteger()));
        else if constexpr (std::is_floating_point_v<Arg>) (Self.*Set)(V.AsDouble());
        else (Self.*Set)(V.AsString());
      };
    }
    // Publishing an inherited name again redescribes that property in its
    // place (as a Delphi class republishes one, for example as not stored).
    for (TZTPropInfo& Existing : Out_)
      if (Existing.Name == P.Name) return Existing = std::move(P);
    Out_.push_back(std::move(P));
    return Out_.back();
  }

  template <class S>
  struct SetterArg;
  template <class C, class A>
  struct SetterArg<void (C::*)(A)> {
    using Type = std::decay_t<A>;
  };

  std::vector<TZTPropInfo>& Out_;
};

}  // namespace zt::frame
