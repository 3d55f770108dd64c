// TRegExpr over PCRE2 and the line-break rules a loaded text follows; "Text
// Find / Replace" against an in-memory host: how a search string matches,
// what replaces a match, the count rules, a failing script, a stop, a full
// disk and hard links. The log through zt is in the end-to-end tests.
#include <gtest/gtest.h>

#include <filesystem>

#include "frame/ZTRegExpr.h"
#include "platform/env.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"
#include "text/LineBreaks.h"
#include "text/ZTTextFind.h"

namespace zt::package {
namespace {

using Lines = std::vector<std::string>;
TEST(RegExprTest, GroupsReportOneBasedPositionsOrMinusOneWhenUnused) {
  frame::TRegExpr R;
  R.SetExpression("(b)(x)?(c)");
  const std::string Text = "abc";
  ASSERT_TRUE(R.Exec(Text));
  EXPECT_EQ(R.SubExprMatchCount(), 3);
  EXPECT_EQ(R.GetMatchPos(0), 2);
  EXPECT_EQ(R.GetMatchLen(0), 2);
  EXPECT_EQ(R.GetMatchPos(2), -1);
  EXPECT_EQ(R.GetMatch(2), "");
  EXPECT_EQ(R.GetMatch(3), "c");
  EXPECT_FALSE(R.ExecNext());
}

TEST(RegExprTest, LinesEndAtCrLfCrOrLfAndModifiersChangeTheMatch) {
  const std::string Text = "ab\r\ncd\ref\ngh";
  frame::TRegExpr R;
  R.SetExpression("^\\w+$");  // m is on by default
  std::vector<std::string> Lines;
  for (bool F = R.Exec(Text); F; F = R.ExecNext()) Lines.push_back(R.GetMatch(0));
  EXPECT_EQ(Lines, (std::vector<std::string>{"ab", "cd", "ef", "gh"}));
  R.SetExpression("b.*");
  ASSERT_TRUE(R.Exec(Text));
  EXPECT_EQ(R.GetMatch(0), "b");
  R.SetModifier('s', true);
  ASSERT_TRUE(R.Exec(Text));
  EXPECT_EQ(R.GetMatchLen(0), static_cast<std::int64_t>(Text.size()) - 1);
  R.SetExpression("AB");
  EXPECT_FALSE(R.Exec(Text));
  R.SetModifier('i', true);
  EXPECT_TRUE(R.Exec(Text));
  EXPECT_THROW(R.SetModifier('q', true), frame::ERegExpr);
}

TEST(LineBreaksTest, TextsBecomeCrLfLines) {
  const std::pair<std::string, std::string> Cases[] = {
      {"", ""},
      {"a", "a\r\n"},
      {"a\r\n", "a\r\n"},
      {"\n", "\r\n"},
      {"a\nb", "a\r\nb\r\n"},
      {"a\r", "a\r\n"},
      {"a\rb\r\n", "a\r\nb\r\n"},
      {"a\r\r\n\n", "a\r\n\r\n\r\n"},
  };
  for (const auto& [In, Out] : Cases) {
    SCOPED_TRACE(In);
    EXPECT_EQ(ToCrLfLines(In), Out);
    EXPECT_EQ(HasCrLfLines(In), In == Out);
  }
  // Long enough for the vector path, with the odd break far in.
  std::string Long;
  for (int I = 0; I < 40; ++I) Long += "line of text\r\n";
  EXPECT_TRUE(HasCrLfLines(Long));
  Long[300] = '\n';
  EXPECT_FALSE(HasCrLfLines(Long));
}

enum : unsigned {
  kRegExpr = 1,
  kCaseSensitive = 2,
  kWholeWords = 4,
  kWholeLines = 8,
  kWildcards = 16,
  kSubstitute = 32
};

// What the host's script sees and answers, and a stop asked for at a progress call.
struct RecordingHost : testing::FakeHost {
  std::vector<std::string> Calls;
  bool ScriptResult = true;
  std::size_t StopAtProgress = 0;  // 0: never
  TZTTextFindAction* Action = nullptr;
  bool ExecuteScript(frame::TZTAction&, const std::string& Name, frame::TZTScriptParams& Params) override {
    std::string Seen = Name;
    for (frame::TZTScriptParam& P : Params) Seen += " " + P.Name + "=" + P.Value.AsString();
    Calls.push_back(Seen);
    return ScriptResult;
  }
  void SendProgress(frame::TZTAction& A, const std::string& T, int P) override {
    FakeHost::SendProgress(A, T, P);
    if (Progress.size() == StopAtProgress) Action->TerminateAction();
  }
};

class TextFindTest : public ::testing::Test {
 protected:
  TextFindTest() {
    Action.SetHost(&Host);
    Host.Action = &Action;
  }

  // Replaces the matches of Search in the variable TEXT by Replacement and
  // counts them into N.
  bool Replace(const std::string& Search, unsigned Flags, const std::string& Text,
               const std::string& Replacement) {
    Action.SetSearchString(Search);
    Action.SetMatchRegExpr(Flags & kRegExpr);
    Action.SetCaseSensitive(Flags & kCaseSensitive);
    Action.SetWholeWords(Flags & kWholeWords);
    Action.SetWholeLinesOnly(Flags & kWholeLines);
    Action.SetMatchWildcards(Flags & kWildcards);
    Action.SetSubstitute(Flags & kSubstitute);
    Action.SetUseVariable(true);
    Action.SetZTVariable("TEXT");
    Action.SetReplacementMode(trOriginalFile);
    Action.SetReplacementText(Replacement);
    Action.SetTextFindBehaviour(tfPutIntoVar);
    Action.SetPutCountIntoVar("N");
    Host.Variables["TEXT"] = Text;
    return Action.Execute();
  }
  // Replaces Search by Replacement in the file File.
  bool ReplaceInFile(const std::string& File, const std::string& Search, const std::string& Replacement) {
    Action.SetSourcePath(File);
    Action.SetSearchString(Search);
    Action.SetReplacementText(Replacement);
    Action.SetReplacementMode(trOriginalFile);
    return Action.Execute();
  }
  std::string Text() { return Host.Variables["TEXT"].AsString(); }

  RecordingHost Host;
  TZTTextFindAction Action;
  testing::TempDir Dir;
};

TEST_F(TextFindTest, SearchOptionsDecideWhatMatches) {
  struct Case {
    const char* Search;
    unsigned Flags;
    const char* Text;
    int Count;
    const char* Replaced;
  } Cases[] = {
      {"(1+1)=[2]^$|{x}", 0, "(1+1)=[2]^$|{x}", 1, "#"},
      {"a?c", 0, "abc a?c", 1, "abc #"},
      {"HELLO", 0, "hello Hello", 2, "# #"},
      {"HELLO", kCaseSensitive, "hello HELLO", 1, "hello #"},
      {"hello", kRegExpr, "HELLO hello", 1, "HELLO #"},
      {"cat", kWholeWords, "cat concat cat.", 2, "# concat #."},
      {"cat", kWholeLines, "cat\r\ncat dog\r\ncat", 2, "#\r\ncat dog\r\n#"},
      {"a*b", kWildcards, "aXXb\r\na\r\nb", 1, "#\r\na\r\nb"},
      {"c*t", kWildcards | kWholeWords, "cat coat c t", 2, "# # c t"},
      {"a\\*b", kWildcards, "a\\*b aXb", 1, "# aXb"},
      {"x\ny", 0, "x\r\ny x\ny", 2, "# #"},  // a line break written as LF
      {"^", kRegExpr, "a\r\nb\r\n", 2, "#a\r\n#b\r\n"},
      {"x*", kRegExpr, "ab", 3, "#a#b#"},
  };
  for (const Case& C : Cases) {
    SCOPED_TRACE(C.Search);
    ASSERT_TRUE(Replace(C.Search, C.Flags, C.Text, "#"));
    EXPECT_EQ(Host.Variables["N"], frame::TZTVariant(C.Count));
    EXPECT_EQ(Text(), C.Replaced);
  }
}

TEST_F(TextFindTest, SubstituteFillsInGroupsOfTheMatch) {
  struct Case {
    const char* Search;
    unsigned Flags;
    const char* Template;
    const char* Text;
    const char* Replaced;
  } Cases[] = {
      {"x", kSubstitute, "$0${0}$&", "x", "$0${0}$&"},  // plain: the whole match stays literal
      {"x", kRegExpr | kSubstitute, "[$0|$&|${0}]", "x", "[x|x|x]"},
      {"k=*;", kWildcards | kSubstitute, "k=<$1>;", "k=v1;", "k=<v1>;"},
      {"(a)(b)?", kRegExpr | kSubstitute, "${1}-$2-\\$1-$", "a", "a--$1-$"},
      {"(\\w+)", kRegExpr, "$1", "word", "$1"},  // without Substitute the text is literal
  };
  for (const Case& C : Cases) {
    SCOPED_TRACE(C.Template);
    ASSERT_TRUE(Replace(C.Search, C.Flags, C.Text, C.Template));
    EXPECT_EQ(Text(), C.Replaced);
  }
  Host.Variables["V"] = "1.2";
  Action.SetExpandVarsWhenReplacing(false);  // variables expand unless told not to
  ASSERT_TRUE(Replace("x", 0, "x", "v%V%"));
  EXPECT_EQ(Text(), "v%V%");
}

TEST_F(TextFindTest, FailuresLogAnErrorLineAndTheReason) {
  struct Case {
    const char* Search;
    unsigned Flags;
    const char* Template;
    const char* Reason;
  } Cases[] = {
      {"%NOPE%", 0, "", "Could not expand search string : Variable \"NOPE\" is not defined"},
      {"x", 0, "%NOPE%", "Could not expand replacement string: Variable \"NOPE\" is not defined"},
      {"x*", kWildcards | kSubstitute, "$2",
       "Could not substitute wildcard reference: No group 2 in the expression (it has 1)"},
      {"(x)", kRegExpr | kSubstitute, "${3}",
       "Could not substitute regexp reference: No group 3 in the expression (it has 1)"},
  };
  for (const Case& C : Cases) {
    SCOPED_TRACE(C.Reason);
    Host.Messages.clear();
    EXPECT_FALSE(Replace(C.Search, C.Flags, "x", C.Template));
    EXPECT_EQ(Host.Messages, (Lines{"An error occured:", C.Reason}));
    EXPECT_EQ(Text(), "x");
  }
}

TEST_F(TextFindTest, CountRulesFailOrStoreTheCount) {
  struct Case {
    TTextFindBehaviour Behaviour;
    int Limit;
    const char* Text;
    bool Result;
    Lines Messages;
  } Cases[] = {
      {tfDontFail, 1, "y", true, {"No matches were found."}},
      {tfFailOnLess, 2, "x x", true, {"Found 2 matches."}},
      {tfFailOnMore, 1, "x x", false, {"Found 2 matches.", "Failing due to too many matches."}},
      {tfFailOnMore, 1, "x", true, {"Found 1 match."}},
  };
  for (const Case& C : Cases) {
    SCOPED_TRACE(C.Text);
    Host.Messages.clear();
    Action.SetSearchString("x");
    Action.SetUseVariable(true);
    Action.SetZTVariable("TEXT");
    Action.SetTextFindBehaviour(C.Behaviour);
    Action.SetFailMatchCount(C.Limit);
    Action.SetFailOnMoreMatchCount(C.Limit);
    Host.Variables["TEXT"] = C.Text;
    EXPECT_EQ(Action.Execute(), C.Result);
    EXPECT_EQ(Host.Messages, C.Messages);
  }
  ASSERT_TRUE(Replace("x", 0, "x x x", "y"));
  EXPECT_EQ(Host.Messages.back(), "Writing replaced data to variable TEXT...");
}

TEST_F(TextFindTest, AFailingOnFindTextScriptFailsTheActionAndKeepsTheText) {
  Host.Scripts["OnFindText"] = "return false";
  Host.ScriptResult = false;
  EXPECT_FALSE(Replace("ab", 0, "ab ab", "X"));
  EXPECT_EQ(Host.Calls, (Lines{"OnFindText Action= Count=1 FoundText=ab ReplaceText=X Offset=0"}));
  EXPECT_EQ(Host.Messages, (Lines{"An error occured:", "OnFindText failed."}));
  EXPECT_EQ(Text(), "ab ab");
}

TEST_F(TextFindTest, StoppedReplaceLeavesTheFileAsItWas) {
  const std::string File = Dir.Write("a.txt", "x\r\nx\r\nx\r\n");
  Host.StopAtProgress = 2;
  EXPECT_FALSE(ReplaceInFile(File, "x", "y"));
  EXPECT_EQ(Host.Messages, (Lines{"An error occured:", "Terminated."}));
  EXPECT_EQ(Dir.Read("a.txt"), "x\r\nx\r\nx\r\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Dir.Path()), {}), 1);
}

// Writing fails the way a full disk fails.
struct FullDisk : platform::EnvWrapper {
  FullDisk() : EnvWrapper(platform::Env::Platform()) {}
  bool WriteFileAtomically(const std::string&, const std::string&) override {
    platform::SetLastError(platform::ERROR_DISK_FULL);
    return false;
  }
};

TEST_F(TextFindTest, FailedWriteNamesTheFileAndKeepsIt) {
  const std::string File = Dir.Write("a.txt", "x\r\n");
  FullDisk Env;
  platform::ScopedEnv Use(&Env);
  EXPECT_FALSE(ReplaceInFile(File, "x", ""));
  EXPECT_EQ(Host.Messages,
            (Lines{"Found 1 match.", "Writing replaced data to file " + File, "An error occured:",
                   "Cannot create file \"" + File + "\". There is not enough space on the disk"}));
  EXPECT_EQ(Dir.Read("a.txt"), "x\r\n");
}

TEST_F(TextFindTest, LargeFileWithTwoNamesIsReplacedUnderBoth) {
  std::string Text;
  while (Text.size() < (2 << 20)) Text += "version=1\r\n";
  const std::string File = Dir.Write("big.txt", Text);
  std::filesystem::create_hard_link(File, Dir / "link.txt");
  ASSERT_TRUE(ReplaceInFile(File, "=1", "=2")) << Host.Messages.back();
  const std::string Replaced = Dir.Read("link.txt");
  EXPECT_EQ(Replaced.size(), Text.size());
  EXPECT_EQ(Replaced.find("=1"), std::string::npos);
  EXPECT_EQ(Dir.Read("big.txt"), Replaced);
}

TEST(TextFindDescriptionTest, NamesSearchReplacementAndSource) {
  TZTTextFindAction A;
  A.SetSearchString("Version=1\r\nsecond line");
  A.SetSourcePath("/src/app.rc");
  EXPECT_EQ(A.GetFormattedDescription(), "Text Find [ Version=1 ]  in [ app.rc ]");
  A.SetSearchString("Version=1.0");
  A.SetReplacementText("%V%");
  A.SetReplacementMode(trDestinationFile);
  A.SetUseFileSet(true);
  A.SetFileSetName("Sources");
  EXPECT_EQ(A.GetFormattedDescription(),
            "Text Replace [ Version=1.0... ] with [ %V% ]  in FileSet [ Sources ]");
  A.SetUseVariable(true);
  A.SetZTVariable("V");
  EXPECT_EQ(A.GetFormattedDescription(), "Text Replace [ Version=1.0... ] with [ %V% ]  in [ V ]");
}

}  // namespace
}  // namespace zt::package
