// The substitution template of TRegExpr on a fixed match: any template
// either gives a text or raises ERegExpr, and one without "$" or "\" comes
// back as it is.
#include <cstdint>
#include <string>

#include "frame/ZTRegExpr.h"
#include "text/ZTTextFindExpression.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  static const std::string Text = "xabcc";
  static zt::frame::TRegExpr* R = [] {
    auto* E = new zt::frame::TRegExpr;
    E->SetExpression("(a)(x)?(b)(c*)");
    E->Exec(Text);
    return E;
  }();
  const std::string Template(reinterpret_cast<const char*>(Data), Size);
  for (const std::string& T : {Template, zt::package::EscapeWholeMatchReferences(Template)}) {
    try {
      const std::string Out = R->Substitute(T);
      if (T.find_first_of("$\\") == std::string::npos && Out != T) __builtin_trap();
    } catch (const zt::frame::ERegExpr&) {
      if (T.find('$') == std::string::npos) __builtin_trap();
    }
  }
  return 0;
}
