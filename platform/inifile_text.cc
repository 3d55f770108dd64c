#include "platform/inifile_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zt::platform::ini {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& Out, char32_t Cp) {
  if (Cp < 0x80) {
    Out += static_cast<char>(Cp);
  } else if (Cp < 0x800) {
    Out += static_cast<char>(0xC0 | (Cp >> 6));
    Out += static_cast<char>(0x80 | (Cp & 0x3F));
  } else if (Cp < 0x10000) {  // lone surrogates too, so UTF-16 round-trips
    Out += static_cast<char>(0xE0 | (Cp >> 12));
    Out += static_cast<char>(0x80 | ((Cp >> 6) & 0x3F));
    Out += static_cast<char>(0x80 | (Cp & 0x3F));
  } else {
    Out += static_cast<char>(0xF0 | (Cp >> 18));
    Out += static_cast<char>(0x80 | ((Cp >> 12) & 0x3F));
    Out += static_cast<char>(0x80 | ((Cp >> 6) & 0x3F));
    Out += static_cast<char>(0x80 | (Cp & 0x3F));
  }
}

// Decodes the UTF-8 sequence at S[I]; returns its length, or 0 when the
// bytes there are not a shortest-form sequence (surrogates are accepted).
std::size_t DecodeUtf8(std::string_view S, std::size_t I, char32_t& Cp) {
  auto B = static_cast<unsigned char>(S[I]);
  std::size_t Len;
  char32_t Min;
  if (B < 0x80) {
    Cp = B;
    return 1;
  } else if ((B & 0xE0) == 0xC0) {
    Len = 2, Min = 0x80, Cp = B & 0x1F;
  } else if ((B & 0xF0) == 0xE0) {
    Len = 3, Min = 0x800, Cp = B & 0x0F;
  } else if ((B & 0xF8) == 0xF0) {
    Len = 4, Min = 0x10000, Cp = B & 0x07;
  } else {
    return 0;
  }
  if (I + Len > S.size()) return 0;
  for (std::size_t K = 1; K < Len; ++K) {
    auto C = static_cast<unsigned char>(S[I + K]);
    if ((C & 0xC0) != 0x80) return 0;
    Cp = (Cp << 6) | (C & 0x3F);
  }
  if (Cp < Min || Cp > 0x10FFFF) return 0;
  return Len;
}

char16_t UnitAt(std::string_view B, std::size_t I, bool BigEndian) {
  auto Hi = static_cast<unsigned char>(B[BigEndian ? I : I + 1]);
  auto Lo = static_cast<unsigned char>(B[BigEndian ? I + 1 : I]);
  return static_cast<char16_t>((Hi << 8) | Lo);
}

void AppendUnit(std::string& Out, char32_t U, bool BigEndian) {
  char Hi = static_cast<char>((U >> 8) & 0xFF), Lo = static_cast<char>(U & 0xFF);
  Out += BigEndian ? Hi : Lo;
  Out += BigEndian ? Lo : Hi;
}

}  // namespace

TIniText Decode(std::string Bytes) {
  TIniText Doc;
  std::string_view B(Bytes);
  if (B.substr(0, 3) == "\xEF\xBB\xBF") {
    Doc.Encoding = TEncoding::Utf8Bom;
    Doc.Text.assign(B.substr(3));
    return Doc;
  }
  bool Le = B.substr(0, 2) == "\xFF\xFE", Be = B.substr(0, 2) == "\xFE\xFF";
  if (!Le && !Be) {
    Doc.Text = std::move(Bytes);
    return Doc;
  }
  Doc.Encoding = Le ? TEncoding::Utf16LE : TEncoding::Utf16BE;
  std::size_t Units = (B.size() - 2) / 2;
  if ((B.size() - 2) % 2) Doc.Tail.assign(1, B.back());
  Doc.Text.reserve(Units * 3 / 2);
  for (std::size_t K = 0; K < Units; ++K) {
    char32_t U = UnitAt(B, 2 + 2 * K, Be);
    if (U >= 0xD800 && U < 0xDC00 && K + 1 < Units) {
      char32_t L = UnitAt(B, 2 + 2 * (K + 1), Be);
      if (L >= 0xDC00 && L < 0xE000) {
        AppendUtf8(Doc.Text, 0x10000 + ((U - 0xD800) << 10) + (L - 0xDC00));
        ++K;
        continue;
      }
    }
    AppendUtf8(Doc.Text, U);
  }
  return Doc;
}

std::string Encode(const TIniText& Doc) {
  switch (Doc.Encoding) {
    case TEncoding::Ansi:
      return Doc.Text;
    case TEncoding::Utf8Bom:
      return "\xEF\xBB\xBF" + Doc.Text;
    case TEncoding::Utf16LE:
    case TEncoding::Utf16BE:
      break;
  }
  bool Be = Doc.Encoding == TEncoding::Utf16BE;
  std::string Out;
  Out.reserve(2 + Doc.Text.size() * 2 + Doc.Tail.size());
  AppendUnit(Out, 0xFEFF, Be);
  std::string_view S(Doc.Text);
  for (std::size_t I = 0; I < S.size();) {
    char32_t Cp;
    std::size_t Len = DecodeUtf8(S, I, Cp);
    if (Len == 0) Cp = kReplacement, Len = 1;
    if (Cp >= 0x10000) {
      AppendUnit(Out, 0xD800 + ((Cp - 0x10000) >> 10), Be);
      AppendUnit(Out, 0xDC00 + ((Cp - 0x10000) & 0x3FF), Be);
    } else {
      AppendUnit(Out, Cp, Be);
    }
    I += Len;
  }
  return Out + Doc.Tail;
}

bool IsBlank(char C) { return C == ' ' || C == '\t' || C == '\v' || C == '\f'; }

std::string_view TrimBlanks(std::string_view S) {
  std::size_t B = 0;
  while (B < S.size() && IsBlank(S[B])) ++B;
  return TrimTrailingBlanks(S.substr(B));
}

std::string_view TrimTrailingBlanks(std::string_view S) {
  std::size_t E = S.size();
  while (E > 0 && IsBlank(S[E - 1])) --E;
  return S.substr(0, E);
}

bool SameName(std::string_view A, std::string_view B) {
  if (A.size() != B.size()) return false;
  for (std::size_t I = 0; I < A.size(); ++I) {
    char X = A[I], Y = B[I];
    if (X >= 'A' && X <= 'Z') X = static_cast<char>(X - 'A' + 'a');
    if (Y >= 'A' && Y <= 'Z') Y = static_cast<char>(Y - 'A' + 'a');
    if (X != Y) return false;
  }
  return true;
}

std::string_view Unquote(std::string_view V) {
  if (V.size() >= 2 && (V.front() == '"' || V.front() == '\'') && V.back() == V.front())
    return V.substr(1, V.size() - 2);
  return V;
}

std::string_view LimitUtf16Units(std::string_view S, std::size_t MaxUnits) {
  if (S.size() <= MaxUnits) return S;  // never more units than bytes
  std::size_t Units = 0;
  for (std::size_t I = 0; I < S.size();) {
    char32_t Cp;
    std::size_t Len = DecodeUtf8(S, I, Cp);
    std::size_t Need = Len == 0 ? 1 : (Cp >= 0x10000 ? 2 : 1);
    if (Units + Need > MaxUnits) return S.substr(0, I);
    Units += Need;
    I += Len == 0 ? 1 : Len;
  }
  return S;
}

bool TLineScanner::Next(TIniLine& L) {
  const std::size_t N = Text_.size();
  if (Pos_ >= N) return false;
  // The next CR and LF are found with memchr and remembered until passed, so
  // the text is searched once whatever its line ends are.
  auto Find = [&](char C, std::size_t& At) {
    if (At != kUnknown && At >= Pos_) return;
    const void* P = std::memchr(Text_.data() + Pos_, C, N - Pos_);
    At = P ? static_cast<std::size_t>(static_cast<const char*>(P) - Text_.data()) : N;
  };
  Find('\r', NextCR_);
  Find('\n', NextLF_);
  std::size_t B = Pos_, E = std::min(NextCR_, NextLF_);
  Pos_ = E;
  if (Pos_ < N) Pos_ += (Text_[Pos_] == '\r' && Pos_ + 1 < N && Text_[Pos_ + 1] == '\n') ? 2 : 1;
  L = TIniLine{};
  L.Begin = B, L.End = E, L.Next = Pos_;
  if (HeadersOnly_) {
    std::size_t F = B;
    while (F < E && IsBlank(Text_[F])) ++F;
    if (F == E || Text_[F] != '[') {
      L.Kind = TLineKind::Other;
      return true;
    }
  }
  std::string_view S = TrimBlanks(Text_.substr(B, E - B));
  if (S.empty()) {
    L.Kind = TLineKind::Blank;
  } else if (S.front() == ';') {
    L.Kind = TLineKind::Comment;
  } else if (S.front() == '[') {
    // The name ends at the first ']'; text after it, or a missing ']', is ignored.
    L.Kind = TLineKind::Section;
    std::string_view Rest = S.substr(1);
    L.Name = TrimBlanks(Rest.substr(0, Rest.find(']')));
  } else if (std::size_t Eq = S.find('='); Eq != std::string_view::npos) {
    L.Kind = TLineKind::Key;
    L.Name = TrimBlanks(S.substr(0, Eq));
    L.Value = TrimBlanks(S.substr(Eq + 1));
  } else {
    L.Kind = TLineKind::Other;
  }
  return true;
}

TIniLocation Locate(std::string_view Text, std::string_view Section, std::string_view Key, bool StopAtKey) {
  TIniLocation R;
  if (Section.empty()) return R;  // a nameless section is never looked up
  TLineScanner Scanner(Text);
  Scanner.SetHeadersOnly(true);
  TIniLine L;
  bool Inside = false;
  while (Scanner.Next(L)) {
    if (L.Kind == TLineKind::Section) {
      if (Inside) {
        R.SectionEnd = L.Begin;
        return R;
      }
      if (SameName(L.Name, Section)) {
        Scanner.SetHeadersOnly(false);
        Inside = R.SectionFound = true;
        R.SectionBegin = L.Begin;
        R.AppendAt = L.Next;
      }
      continue;
    }
    if (!Inside) continue;
    if (L.Kind != TLineKind::Blank) R.AppendAt = L.Next;
    if (L.Kind == TLineKind::Key && !R.KeyFound && SameName(L.Name, Key)) {
      R.KeyFound = true;
      R.Key = L;
      if (StopAtKey) return R;
    }
  }
  if (Inside) R.SectionEnd = Text.size();
  return R;
}

}  // namespace zt::platform::ini
