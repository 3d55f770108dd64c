// Reading loops back from a zt JSON log: the passes of a loop action and
// the final value of a variable.
#pragma once

#include <string>
#include <vector>

#include "ZtRunner.h"

namespace zt::testing {

// The `iteration` events of loop Id as "index/count=value" ("index/count"
// when the event has no value), in order.
inline std::vector<std::string> Passes(const ZtResult& R, const std::string& Id) {
  std::vector<std::string> P;
  for (const auto& E : R.Events)
    if (E.value("event", "") == "iteration" && E.value("id", "") == Id) {
      std::string S = std::to_string(E["index"].get<int>()) + "/" + std::to_string(E["count"].get<int>());
      if (E.contains("value")) S += "=" + E["value"].get<std::string>();
      P.push_back(S);
    }
  return P;
}

// The value of variable Name in the build's final `variables` event.
inline nlohmann::json FinalValue(const ZtResult& R, const std::string& Name) {
  for (const auto& E : R.Events)
    if (E.value("event", "") == "variables") return E["values"].value(Name, nlohmann::json());
  return nullptr;
}

}  // namespace zt::testing
