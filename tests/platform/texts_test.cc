// Names and texts the layer splits and gives: paths, wildcards as
// FindFirstFile matches them, parameter texts split as a POSIX shell splits
// words, without expansion, with arguments quoted so that splitting gives them
// back; the Windows error codes it reports, the texts users read for them, the
// errno values they come from, and the last error of each thread.
#include <errno.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/command_line.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::platform {
namespace {

using Words = std::vector<std::string>;

TEST(Paths, SplitChangeAndTrimAsDelphiDoes) {
  // The plain cases are read in every end-to-end log that names a file; here the edges.
  EXPECT_EQ(ExtractFileExt("/src/app/main.cpp"), ".cpp");
  EXPECT_EQ(ExtractFilePath("main.cpp"), "");
  EXPECT_EQ(ExtractFileDir("/main.cpp"), "/");
  EXPECT_EQ(ExtractFileExt("/src/v1.2/Makefile"), "");
  EXPECT_EQ(ExtractFileExt("archive.tar.gz"), ".gz");
  EXPECT_EQ(ChangeFileExt("/a.b/c.txt", ".bak"), "/a.b/c.bak");
  EXPECT_EQ(ChangeFileExt("/a.b/c", ".bak"), "/a.b/c.bak");
  EXPECT_EQ(IncludeTrailingPathDelimiter("/out/"), "/out/");
  EXPECT_EQ(ExcludeTrailingPathDelimiter("/out"), "/out");
  // A backslash is the delimiter only after normalizing.
  EXPECT_FALSE(IsPathDelimiter('\\'));
  EXPECT_EQ(ExtractFileName("out\\a.txt"), "out\\a.txt");
  EXPECT_EQ(NormalizeDelimiters("out\\sub\\a.txt"), "out/sub/a.txt");
}

TEST(Wildcard, MatchesAsFindFirstFileDoes) {
  // clang-format off
  const struct {
    const char* Pattern;
    const char* Name;
    bool Matches;
  } Cases[] = {
      // "*" and "*.*" match every name, also names without a dot.
      {"*", "readme", true}, {"*.*", "readme", true}, {"*.*", "a.b.c", true},
      // "*.ext" needs that last extension.
      {"*.txt", "a.txt", true}, {"*.txt", "a.txt.bak", false}, {"*.txt", "a.b.txt", true},
      {"*.txt", "atxt", false}, {"*.txt", ".txt", true},
      // "?" may match nothing before a dot or at the end, one character elsewhere.
      {"a?.txt", "a.txt", true}, {"a?.txt", "ab.txt", true}, {"a?.txt", "abc.txt", false},
      {"??????.txt", "abcdef.txt", true}, {"??????.txt", "abcdefg.txt", false},
      {"a??", "a", true}, {"a??", "abc", true}, {"a??", "abcd", false}, {"a?c", "ac", false}, {"a?c", "abc", true},
      // "*." only names without an extension; "name." is "name".
      {"*.", "readme", true}, {"*.", "read.me", false}, {"abc.", "abc", true}, {"abc.", "abc.d", false},
      // "name.*" also matches the bare name.
      {"a.*", "a", true}, {"a.*", "a.x", true}, {"a.*", "ab", false},
      // Stars inside names, exact names, and letter case as the platform's names.
      {"b*d.log", "build.log", true}, {"b*d.log", "bd.log", true}, {"b*d.log", "build.txt", false},
      {"setup.exe", "setup.exe", true}, {"setup.exe", "setup.ex", false}, {"*.TXT", "a.txt", false},
      {"", "a", false},
  };
  // clang-format on
  for (const auto& C : Cases)
    EXPECT_EQ(MatchesWildcard(C.Name, C.Pattern), C.Matches) << "pattern " << C.Pattern << " name " << C.Name;
}

TEST(CommandLineTest, SplitsLikeAShellWithoutExpanding) {
  const std::vector<std::pair<std::string, Words>> Cases = {
      {"", {}},
      {"  \t\n ", {}},
      {"a  b\tc\nd", {"a", "b", "c", "d"}},
      {"'a b' \"c d\"", {"a b", "c d"}},
      {"x'a b'y\"c\"z", {"xa bycz"}},
      {"'' \"\"", {"", ""}},
      {"a\\ b \\'c \\\\", {"a b", "'c", "\\"}},
      {"\"a\\\"b\\\\c\\$d\\`e\\nf\"", {"a\"b\\c$d`e\\nf"}},
      {"'a\\b\"c'", {"a\\b\"c"}},
      {"a\\\nb", {"ab"}},
      {"$HOME ~ *.c `x` $(y)", {"$HOME", "~", "*.c", "`x`", "$(y)"}},
      {"'unterminated text", {"unterminated text"}},
      {"\"unterminated \\\" text", {"unterminated \" text"}},
      {"trailing\\", {"trailing\\"}},
  };
  for (const auto& [Text, Expected] : Cases) EXPECT_EQ(SplitCommandLine(Text), Expected) << Text;
}

TEST(CommandLineTest, QuotedArgumentsSplitBackUnchanged) {
  for (const std::string A : {"plain-word_1.txt", "", "a b", "it's", "\"q\"", "back\\slash", "$HOME",
                              "tab\there", "line\nend", "*"}) {
    EXPECT_EQ(SplitCommandLine(QuoteArgument(A)), Words{A}) << A;
    EXPECT_EQ(SplitCommandLine("x " + QuoteArgument(A) + " y"), (Words{"x", A, "y"})) << A;
  }
  EXPECT_EQ(QuoteArgument("/usr/bin/a-b_c.d"), "/usr/bin/a-b_c.d");
  EXPECT_EQ(QuoteArgument("out dir"), "'out dir'");
}

// Texts read in the end-to-end logs or the robocopy retries are not repeated here.
TEST(Errors, MessagesAreWindowsTextsWithoutTheFullStop) {
  // clang-format off
  const std::pair<DWORD, const char*> Texts[] = {
      {0, "The operation completed successfully"},
      {50, "The request is not supported"},
      {80, "The file exists"},
      {87, "The parameter is incorrect"},
      {123, "The filename, directory name, or volume label syntax is incorrect"},
      {206, "The filename or extension is too long"},
      {1223, "The operation was canceled by the user"},
      {1235, "The request was aborted"},
      {0xDEAD, "Unknown error (0xdead)"},
  };
  // clang-format on
  for (const auto& [Code, Text] : Texts) EXPECT_EQ(SysErrorMessage(Code), Text) << Code;
}

TEST(Errors, ErrnoMapsAsWineMapsIt) {
  // clang-format off
  const std::pair<int, DWORD> Map[] = {
      {ENOENT, ERROR_FILE_NOT_FOUND},      {ENOTDIR, ERROR_PATH_NOT_FOUND},  {EACCES, ERROR_ACCESS_DENIED},
      {EPERM, ERROR_ACCESS_DENIED},        {EROFS, ERROR_ACCESS_DENIED},     {EEXIST, ERROR_ALREADY_EXISTS},
      {ENOSPC, ERROR_DISK_FULL},           {EBUSY, ERROR_BUSY},              {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
      {EXDEV, ERROR_NOT_SAME_DEVICE},      {EINVAL, ERROR_INVALID_PARAMETER}, {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
      {EBADF, ERROR_INVALID_HANDLE},       {ENOMEM, ERROR_NOT_ENOUGH_MEMORY}, {EAGAIN, ERROR_SHARING_VIOLATION},
      {EIO, ERROR_NOT_READY},              {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
  };
  // clang-format on
  for (const auto& [Errno, Code] : Map) EXPECT_EQ(ErrnoToWindowsError(Errno), Code) << Errno;
}

TEST(Errors, LastErrorIsPerThread) {
  SetLastError(ERROR_ACCESS_DENIED);
  DWORD Seen = 1;
  std::thread([&] { Seen = GetLastError(); }).join();
  EXPECT_EQ(Seen, ERROR_SUCCESS);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

}  // namespace
}  // namespace zt::platform
