// "List Iterator": runs its child actions once for every item of a list
// typed into the action, one item a line or split at tabs or at a
// separator text.
#pragma once

#include <string>

#include "frame/ZTIterator.h"
#include "frame/ZTStrings.h"

namespace zt::package {

enum TZTListSeparator { lsCRLF, lsTab, lsCharacter };

class TZTListIterator : public frame::TZTBaseIterator {
  ZT_DECLARE_CLASS(TZTListIterator, frame::TZTBaseIterator)

 public:
  static std::string GetActionName() { return "List Iterator"; }
  static void Publish(frame::TZTPublisher<TZTListIterator>& P);

  frame::TZTVariant GetCurrentValue() override;
  bool BeforeFirstIteration() override;
  void ResetBuildStatus() override;

  std::string GetFormattedDescription() override;
  void GetHiddenProperties(frame::TStrings& List) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3140; }
  std::string GetQuickHelpFilename() override { return "Plugins\\ListIterator.html"; }

  // The list as text, every line ended by CR LF.
  std::string GetListOfItems() const { return FListOfItems.Text(); }
  void SetListOfItems(const std::string& Value) { FListOfItems.SetText(Value); }
  int GetItemCount() const { return FItems.Count(); }
  int GetItemIndex() const { return GetCurrentIteration() - 1; }
  bool GetSkipBlankLines() const { return FSkipBlankLines; }
  void SetSkipBlankLines(bool Value) { FSkipBlankLines = Value; }
  TZTListSeparator GetListSeparator() const { return FListSeparator; }
  void SetListSeparator(TZTListSeparator Value) { FListSeparator = Value; }
  const std::string& GetSeparatorChar() const { return FSeparatorChar; }
  void SetSeparatorChar(const std::string& Value) { FSeparatorChar = Value; }

 private:
  // Expands the list and splits it into FItems; false when an expansion
  // fails (the host has logged why).
  bool ExpandItemList();

  frame::TStrings FListOfItems;
  frame::TStrings FItems;
  bool FSkipBlankLines = true;
  TZTListSeparator FListSeparator = lsCRLF;
  std::string FSeparatorChar = ",";
};

}  // namespace zt::package
