// TRegExpr over PCRE2 (8-bit code units, no UTF: byte semantics), compiled
// with JIT when the platform has it. Newlines are ANYCRLF, so "$" matches
// before CR LF and "." never matches CR or LF.
#define PCRE2_CODE_UNIT_WIDTH 8
#include "frame/ZTRegExpr.h"

#include <pcre2.h>

#include <limits>

namespace zt::frame {
namespace {

// Modifier letters and their bits in TImpl::Modifiers.
constexpr const char kModifierLetters[] = "ismxrg";
int ModifierBit(char Modifier) {
  char Lower = (Modifier >= 'A' && Modifier <= 'Z') ? static_cast<char>(Modifier - 'A' + 'a') : Modifier;
  for (int I = 0; kModifierLetters[I]; ++I)
    if (kModifierLetters[I] == Lower) return 1 << I;
  throw ERegExpr(std::string("Unknown modifier '") + Modifier + "'");
}

std::string ErrorText(int Code) {
  PCRE2_UCHAR Buffer[256];
  if (pcre2_get_error_message(Code, Buffer, sizeof Buffer) < 0) return "error " + std::to_string(Code);
  return reinterpret_cast<const char*>(Buffer);
}

// Deep patterns on long lines need more than PCRE2's default 32 KiB.
constexpr std::size_t kJitStackStart = 32 * 1024;
constexpr std::size_t kJitStackMax = 8 * 1024 * 1024;

}  // namespace

struct TRegExpr::TImpl {
  std::string Expression;
  int Modifiers = ModifierBit('m') | ModifierBit('g');
  bool Compiled = false;  // Code matches Expression and Modifiers
  pcre2_code* Code = nullptr;
  pcre2_match_data* Data = nullptr;
  pcre2_match_context* Context = nullptr;
  pcre2_jit_stack* JitStack = nullptr;
  bool Jit = false;
  std::uint32_t Groups = 0;
  std::string_view Input;
  bool Matched = false;

  ~TImpl() { Release(); }

  void Release() {
    pcre2_match_data_free(Data);
    pcre2_code_free(Code);
    Data = nullptr;
    Code = nullptr;
    Compiled = Matched = false;
  }

  void Compile() {
    Release();
    std::uint32_t Options = 0;
    if (Modifiers & ModifierBit('i')) Options |= PCRE2_CASELESS;
    if (Modifiers & ModifierBit('s')) Options |= PCRE2_DOTALL;
    if (Modifiers & ModifierBit('m')) Options |= PCRE2_MULTILINE;
    if (Modifiers & ModifierBit('x')) Options |= PCRE2_EXTENDED;
    if (!(Modifiers & ModifierBit('g'))) Options |= PCRE2_UNGREEDY;
    pcre2_compile_context* CompileContext = pcre2_compile_context_create(nullptr);
    pcre2_set_newline(CompileContext, PCRE2_NEWLINE_ANYCRLF);
    int Error = 0;
    PCRE2_SIZE Offset = 0;
    Code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(Expression.data()), Expression.size(), Options, &Error,
                         &Offset, CompileContext);
    pcre2_compile_context_free(CompileContext);
    if (!Code) throw ERegExpr(ErrorText(Error) + " at offset " + std::to_string(Offset));
    Jit = pcre2_jit_compile(Code, PCRE2_JIT_COMPLETE) == 0;
    if (Jit && !Context) {
      Context = pcre2_match_context_create(nullptr);
      JitStack = pcre2_jit_stack_create(kJitStackStart, kJitStackMax, nullptr);
      pcre2_jit_stack_assign(Context, nullptr, JitStack);
    }
    pcre2_pattern_info(Code, PCRE2_INFO_CAPTURECOUNT, &Groups);
    Data = pcre2_match_data_create_from_pattern(Code, nullptr);
    Compiled = true;
  }

  // Runs the engine on the input from byte Start.
  bool MatchAt(std::size_t Start) {
    // An empty view may have no data pointer; the engine wants one.
    auto Subject = reinterpret_cast<PCRE2_SPTR>(Input.data() ? Input.data() : "");
    int Rc = Jit ? pcre2_jit_match(Code, Subject, Input.size(), Start, 0, Data, Context)
                 : pcre2_match(Code, Subject, Input.size(), Start, 0, Data, Context);
    if (Rc == PCRE2_ERROR_NOMATCH) return false;
    if (Rc < 0) throw ERegExpr(ErrorText(Rc));
    return true;
  }

  // The next match, from the end of the current one; after an empty match
  // from one character further (a CR LF pair is one line break).
  bool Next() {
    PCRE2_SIZE* Ov = pcre2_get_ovector_pointer(Data);
    std::size_t Start = Ov[1];
    if (Ov[0] == Ov[1]) {
      const std::string_view S = Input;
      if (Start >= S.size()) return Matched = false;
      Start += (S[Start] == '\r' && Start + 1 < S.size() && S[Start + 1] == '\n') ? 2 : 1;
    }
    return Matched = MatchAt(Start);
  }
};

TRegExpr::TRegExpr() : Impl_(std::make_unique<TImpl>()) {}

TRegExpr::~TRegExpr() {
  Impl_->Release();
  pcre2_match_context_free(Impl_->Context);
  pcre2_jit_stack_free(Impl_->JitStack);
}

void TRegExpr::SetModifier(char Modifier, bool On) {
  int Bit = ModifierBit(Modifier);
  int New = On ? (Impl_->Modifiers | Bit) : (Impl_->Modifiers & ~Bit);
  if (New != Impl_->Modifiers) Impl_->Compiled = false;
  Impl_->Modifiers = New;
}

bool TRegExpr::GetModifier(char Modifier) const { return (Impl_->Modifiers & ModifierBit(Modifier)) != 0; }

void TRegExpr::SetExpression(const std::string& Expression) {
  if (Expression != Impl_->Expression) Impl_->Compiled = false;
  Impl_->Expression = Expression;
}

const std::string& TRegExpr::GetExpression() const { return Impl_->Expression; }

bool TRegExpr::Exec(std::string_view Input) {
  if (!Impl_->Compiled) Impl_->Compile();
  Impl_->Input = Input;
  Impl_->Matched = false;
  return Impl_->Matched = Impl_->MatchAt(0);
}

bool TRegExpr::ExecNext() {
  if (!Impl_->Matched) return false;
  return Impl_->Next();
}

int TRegExpr::SubExprMatchCount() const {
  if (!Impl_->Compiled) Impl_->Compile();
  return static_cast<int>(Impl_->Groups);
}

std::int64_t TRegExpr::GetMatchPos(int Index) const {
  if (!Impl_->Matched || Index < 0 || static_cast<std::uint32_t>(Index) > Impl_->Groups) return -1;
  PCRE2_SIZE* Ov = pcre2_get_ovector_pointer(Impl_->Data);
  if (Ov[2 * Index] == PCRE2_UNSET) return -1;
  return static_cast<std::int64_t>(Ov[2 * Index]) + 1;
}

std::int64_t TRegExpr::GetMatchLen(int Index) const {
  if (GetMatchPos(Index) < 0) return 0;
  PCRE2_SIZE* Ov = pcre2_get_ovector_pointer(Impl_->Data);
  return static_cast<std::int64_t>(Ov[2 * Index + 1] - Ov[2 * Index]);
}

std::string TRegExpr::GetMatch(int Index) const {
  std::int64_t Pos = GetMatchPos(Index);
  if (Pos < 0) return {};
  return std::string(
      Impl_->Input.substr(static_cast<std::size_t>(Pos - 1), static_cast<std::size_t>(GetMatchLen(Index))));
}

std::string TRegExpr::Substitute(const std::string& Template) const {
  if (!Impl_->Matched) throw ERegExpr("There is no match to substitute");
  std::string Result;
  Result.reserve(Template.size());
  const std::size_t End = Template.size();
  for (std::size_t I = 0; I < End;) {
    const char C = Template[I];
    if (C == '\\' && I + 1 < End) {
      Result += Template[I + 1];
      I += 2;
      continue;
    }
    if (C == '$' && I + 1 < End) {
      // "$&", "$n", "${&}" or "${n}"; anything else leaves the "$" literal.
      std::size_t J = I + 1;
      const bool Braced = Template[J] == '{';
      if (Braced) ++J;
      std::int64_t Group = -1;
      if (J < End && Template[J] == '&') {
        Group = 0;
        ++J;
      } else {
        for (; J < End && Template[J] >= '0' && Template[J] <= '9'; ++J)
          Group = std::min<std::int64_t>((Group < 0 ? 0 : Group * 10) + (Template[J] - '0'),
                                         std::numeric_limits<int>::max());
      }
      if (Group >= 0 && Braced) {
        if (J < End && Template[J] == '}')
          ++J;
        else
          Group = -1;
      }
      if (Group >= 0) {
        if (Group > static_cast<std::int64_t>(Impl_->Groups))
          throw ERegExpr("No group " + std::to_string(Group) + " in the expression (it has " +
                         std::to_string(Impl_->Groups) + ")");
        std::int64_t Pos = GetMatchPos(static_cast<int>(Group));
        if (Pos > 0)
          Result.append(Impl_->Input.substr(static_cast<std::size_t>(Pos - 1),
                                            static_cast<std::size_t>(GetMatchLen(static_cast<int>(Group)))));
        I = J;
        continue;
      }
    }
    Result += C;
    ++I;
  }
  return Result;
}

}  // namespace zt::frame
