// The captions and help texts of an action's properties, written once as a
// table and given to the host by GetPropertyAlias and GetPropertyHelp.
#pragma once

#include <span>
#include <string>

#include "frame/ZTStrings.h"

namespace zt::package {

struct TPropertyText {
  const char* Name;
  const char* Caption;  // null: the name split into words
  const char* Help;
};

// "FailIfMissing" -> "Fail If Missing": a blank before every capital that
// follows a small letter.
inline std::string SplitPropertyName(const std::string& Name) {
  std::string R;
  for (std::size_t I = 0; I < Name.size(); ++I) {
    if (I > 0 && Name[I] >= 'A' && Name[I] <= 'Z' && Name[I - 1] >= 'a' && Name[I - 1] <= 'z') R += ' ';
    R += Name[I];
  }
  return R;
}

// GetPropertyAlias: "[" + Section + "]", then "Name=Caption" per row.
inline void AddPropertyAliases(frame::TStrings& List, const std::string& Section,
                               std::span<const TPropertyText> Rows) {
  List.Add("[" + Section + "]");
  for (const TPropertyText& R : Rows)
    List.Add(std::string(R.Name) + "=" + (R.Caption ? std::string(R.Caption) : SplitPropertyName(R.Name)));
}

// GetPropertyHelp: "Name=Help" per row.
inline void AddPropertyHelp(frame::TStrings& List, std::span<const TPropertyText> Rows) {
  for (const TPropertyText& R : Rows) List.Add(std::string(R.Name) + "=" + R.Help);
}

}  // namespace zt::package
