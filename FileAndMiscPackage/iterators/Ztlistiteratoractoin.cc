#include "iterators/Ztlistiteratoractoin.h"

#include <exception>
#include <stdexcept>

namespace zt::package {

ZT_IMPLEMENT_CLASS(TZTListIterator, &TZTListIterator::Publish)

namespace {

// Stands for a line break inside an item while the list is split at
// another separator.
constexpr const char* kEscapedLineBreak = "<@@--!!ZTESCAPED!!--@@>";

// Delphi's StringReplace with rfReplaceAll: one pass from the left, the
// scan going on after each replacement. An empty From changes nothing.
std::string ReplaceAll(const std::string& S, const std::string& From, const std::string& To) {
  if (From.empty()) return S;
  std::string R;
  R.reserve(S.size());
  std::size_t Start = 0;
  for (std::size_t At; (At = S.find(From, Start)) != std::string::npos; Start = At + From.size())
    R.append(S, Start, At - Start).append(To);
  return R.append(S, Start, std::string::npos);
}

bool StartsWithLineBreak(const std::string& S) { return S.compare(0, 2, "\r\n") == 0; }
bool EndsWithLineBreak(const std::string& S) {
  return S.size() >= 2 && S.compare(S.size() - 2, 2, "\r\n") == 0;
}

}  // namespace

void TZTListIterator::Publish(frame::TZTPublisher<TZTListIterator>& P) {
  using A = TZTListIterator;
  P.StringList("ListOfItems", &A::GetListOfItems, &A::SetListOfItems);
  P.Integer("ItemCount", &A::GetItemCount);
  P.Integer("ItemIndex", &A::GetItemIndex);
  P.Boolean("SkipBlankLines", &A::GetSkipBlankLines, &A::SetSkipBlankLines);
  P.Enumeration("ListSeparator", "TZTListSeparator", {"lsCRLF", "lsTab", "lsCharacter"}, &A::GetListSeparator,
                &A::SetListSeparator);
  P.String("SeparatorChar", &A::GetSeparatorChar, &A::SetSeparatorChar);
}

bool TZTListIterator::BeforeFirstIteration() {
  SendMessage("Setting items...");
  FItems.Clear();
  try {
    if (!ExpandItemList()) throw std::runtime_error("Failed to expand list of items.");
  } catch (const std::exception& E) {
    throw frame::EIteratorException(std::string("Error while searching for items : ") + E.what());
  }
  if (FSkipBlankLines) {
    frame::TStrings Kept;
    for (const std::string& Item : FItems.Lines())
      if (!Item.empty()) Kept.Add(Item);
    FItems = std::move(Kept);
  }
  SendMessage("Found " + std::to_string(FItems.Count()) + " Items");
  SetIterationCount(FItems.Count());
  return true;
}

bool TZTListIterator::ExpandItemList() {
  std::string Text;
  if (!TryExpandExpression("Item List", FListOfItems.Text(), false, Text)) return false;
  if (EndsWithLineBreak(Text)) Text.resize(Text.size() - 2);
  if (FListSeparator != lsCRLF) {
    Text = ReplaceAll(Text, "\r\n", kEscapedLineBreak);
    if (FListSeparator == lsTab) {
      Text = ReplaceAll(Text, "\t", "\r\n");
    } else {
      std::string Separator;
      if (!TryExpandExpression("Custom Separator", FSeparatorChar, true, Separator)) return false;
      Text = ReplaceAll(Text, Separator, "\r\n");
    }
  }
  if (FSkipBlankLines) {
    Text = ReplaceAll(Text, "\r\n\r\n", "\r\n");
    if (StartsWithLineBreak(Text)) Text.erase(0, 2);
    if (EndsWithLineBreak(Text)) Text.resize(Text.size() - 2);
  }
  FItems.SetText(Text);
  if (FListSeparator != lsCRLF)
    for (int I = 0; I < FItems.Count(); ++I) FItems[I] = ReplaceAll(FItems[I], kEscapedLineBreak, "\r\n");
  return true;
}

frame::TZTVariant TZTListIterator::GetCurrentValue() { return FItems[GetCurrentIteration() - 1]; }

void TZTListIterator::ResetBuildStatus() {
  inherited::ResetBuildStatus();
  Reset();
}

std::string TZTListIterator::GetFormattedDescription() {
  // The first items as written, enough to tell one list from another.
  std::string Items;
  for (const std::string& Item : FListOfItems.Lines()) {
    if (!Items.empty()) Items += ", ";
    Items += Item;
    if (Items.size() > 60) return GetActionName() + " [ " + Items.substr(0, 60) + "... ]";
  }
  return GetActionName() + " [ " + Items + " ]";
}

void TZTListIterator::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("ItemIndex");
  List.Add("ItemCount");
}

void TZTListIterator::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[List]");
  List.Add("ListOfItems=Item List");
  List.Add("SkipBlankLines=Skip Blank Lines");
  List.Add("ListSeparator=List Separator");
  List.Add("SeparatorChar=Custom Separator");
}

void TZTListIterator::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("ListOfItems=The items; may include project variables");
  List.Add("SkipBlankLines=Leave out empty items");
  List.Add(
      "ListSeparator=lsCRLF: one item a line; lsTab: items separated by tabs; lsCharacter: by the custom "
      "separator");
  List.Add("SeparatorChar=The text that separates items when List Separator is lsCharacter");
}

}  // namespace zt::package
