// "Touch File(s)": the stamps on disk afterwards (two-second resolution),
// which files are touched or skipped, the log lines and results, and the
// date-time text properties.
#include <filesystem>

#include <gtest/gtest.h>

#include "FileActionTesting.h"
#include "files/Zttouchfile.h"
#include "platform/dates.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using package::TTouchFilesAction;

pf::TDateTime At(int Y, int Mo, int D, int H, int Mi, int S, int Ms = 0) {
  return pf::EncodeDate(Y, Mo, D) + pf::EncodeTime(H, Mi, S, Ms);
}

std::string Stamp(const std::string& Path) {
  int Age = pf::FileAge(Path);
  return Age == -1 ? "missing" : pf::FormatIsoDateTime(pf::FileDateToDateTime(Age));
}

void SetStamp(const std::string& Path, pf::TDateTime D) {
  ASSERT_EQ(pf::FileSetDate(Path, pf::DateTimeToFileDate(D)), 0) << Path;
}

class TouchFilesTest : public ::testing::Test {
 protected:
  TouchFilesTest() {
    Action.SetHost(&Host);
    Action.SetTitle("Touch File(s)");
    Action.SetDateTime(At(2021, 6, 15, 13, 45, 31, 500));
  }
  // A file with a known old stamp.
  std::string OldFile(const std::string& Name) {
    const std::string P = Dir / Name;
    WriteFile(P);
    SetStamp(P, At(2010, 1, 2, 8, 10, 20));
    return P;
  }
  bool Run(const std::string& Spec) {
    Action.SetFileSpec(Spec);
    return Action.Execute();
  }

  TempDir Dir;
  FakeHost Host;
  TTouchFilesAction Action;
};

TEST_F(TouchFilesTest, StampsEveryMatchWithTheDateTimeRoundedDownToAnEvenSecond) {
  const std::string A = OldFile("a.txt"), B = OldFile("b.txt"), C = OldFile("c.log");
  EXPECT_TRUE(Run(Dir / "*.txt"));
  EXPECT_EQ(Stamp(A), "2021-06-15T13:45:30");
  EXPECT_EQ(Stamp(B), "2021-06-15T13:45:30");
  EXPECT_EQ(Stamp(C), "2010-01-02T08:10:20");
  EXPECT_EQ(Action.GetFileCount(), 2);
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Processed : 2 File(s)"}}));
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(TouchFilesTest, TouchDateAloneKeepsTheTimeOfDay) {
  const std::string F = OldFile("f.txt");
  Action.SetTouchTime(false);
  EXPECT_TRUE(Run(F));
  EXPECT_EQ(Stamp(F), "2021-06-15T08:10:20");
}

TEST_F(TouchFilesTest, TouchTimeAloneKeepsTheDate) {
  const std::string F = OldFile("f.txt");
  Action.SetTouchDate(false);
  EXPECT_TRUE(Run(F));
  EXPECT_EQ(Stamp(F), "2010-01-02T13:45:30");
}

TEST_F(TouchFilesTest, ReadOnlyFileIsSkippedSilentlyWithoutTouchReadOnly) {
  const std::string F = OldFile("ro.txt");
  ASSERT_TRUE(pf::SetFileAttributesA(F, pf::FILE_ATTRIBUTE_READONLY));
  EXPECT_TRUE(Run(F));
  EXPECT_EQ(Stamp(F), "2010-01-02T08:10:20");
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Processed : 0 File(s)"}}));
}

TEST_F(TouchFilesTest, TouchReadOnlyTouchesAndRestoresTheReadOnlyBit) {
  const std::string F = OldFile("ro.txt");
  ASSERT_TRUE(pf::SetFileAttributesA(F, pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE));
  Action.SetTouchReadOnly(true);
  EXPECT_TRUE(Run(F));
  EXPECT_EQ(Stamp(F), "2021-06-15T13:45:30");
  EXPECT_EQ(pf::GetFileAttributesA(F), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(Action.GetFileCount(), 1);
}

TEST_F(TouchFilesTest, HiddenAndSystemFilesAreNeverTouched) {
  const std::string Dot = OldFile(".dot.txt"), Sys = OldFile("sys.txt"), Plain = OldFile("plain.txt");
  ASSERT_TRUE(pf::SetFileAttributesA(Sys, pf::FILE_ATTRIBUTE_SYSTEM));
  EXPECT_TRUE(Run(Dir / "*.txt"));
  EXPECT_EQ(Stamp(Dot), "2010-01-02T08:10:20");
  EXPECT_EQ(Stamp(Sys), "2010-01-02T08:10:20");
  EXPECT_EQ(Stamp(Plain), "2021-06-15T13:45:30");
  EXPECT_EQ(Action.GetFileCount(), 1);
}

TEST_F(TouchFilesTest, RecurseTouchesTheSamePatternInSubdirectories) {
  std::filesystem::create_directories(Dir / "sub/deeper");
  const std::string Top = OldFile("top.txt"), Mid = OldFile("sub/mid.txt"), Low = OldFile("sub/deeper/low.txt"),
                    Other = OldFile("sub/other.bin");
  Action.SetRecurse(true);
  EXPECT_TRUE(Run(Dir / "*.txt"));
  for (const auto& P : {Top, Mid, Low}) EXPECT_EQ(Stamp(P), "2021-06-15T13:45:30") << P;
  EXPECT_EQ(Stamp(Other), "2010-01-02T08:10:20");
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Processed : 3 File(s)"}}));
}

TEST_F(TouchFilesTest, NamesWithSpacesAndNonAsciiLettersAreTouched) {
  const std::string F = OldFile("año nuevo.txt");
  Host.Variables["D"] = Dir.Path();
  EXPECT_TRUE(Run(" %D%/año*.txt "));
  EXPECT_EQ(Stamp(F), "2021-06-15T13:45:30");
}

TEST_F(TouchFilesTest, FileThatCannotBeOpenedStopsItsDirectory) {
  const std::string F = OldFile("locked.txt");
  FaultyFilesEnv Faulty({F});
  EXPECT_FALSE(Run(Dir / "*.txt"));
  EXPECT_EQ(Host.StatusEntries,
            (std::vector<Lines>{{"Error touching File : " + F}, {"Processed : 0 File(s)"}}));
  EXPECT_EQ(Stamp(F), "2010-01-02T08:10:20");
}

TEST_F(TouchFilesTest, ReadOnlyBitComesBackWhenTheTouchFails) {
  const std::string F = OldFile("ro.txt");
  ASSERT_TRUE(pf::SetFileAttributesA(F, pf::FILE_ATTRIBUTE_READONLY));
  FaultyFilesEnv Faulty({F});
  Action.SetTouchReadOnly(true);
  EXPECT_FALSE(Run(F));
  EXPECT_EQ(pf::GetFileAttributesA(F), pf::FILE_ATTRIBUTE_READONLY);
}

TEST_F(TouchFilesTest, MissingFolderOrDirectoryNameTouchesNothing) {
  std::filesystem::create_directories(Dir / "folder");
  EXPECT_TRUE(Run(Dir / "missing/*.txt"));
  EXPECT_TRUE(Run(Dir / "folder"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Processed : 0 File(s)"}, {"Processed : 0 File(s)"}}));
}

TEST_F(TouchFilesTest, BlankSpecFails) {
  EXPECT_FALSE(Run("  "));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"File Spec is blank!"}}));
}

TEST_F(TouchFilesTest, NeitherDateNorTimeFails) {
  const std::string F = OldFile("f.txt");
  Action.SetTouchDate(false);
  Action.SetTouchTime(false);
  EXPECT_FALSE(Run(F));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{" Touch Date and TouchTime are not set, nothing to do"}}));
  EXPECT_EQ(Stamp(F), "2010-01-02T08:10:20");
}

TEST_F(TouchFilesTest, UseNowTakesTheClockAtRunTime) {
  const std::string F = OldFile("f.txt");
  Action.SetUseNow(true);
  const pf::TDateTime Before = pf::Now();
  EXPECT_TRUE(Run(F));
  EXPECT_GE(Action.GetDateTime(), Before);
  EXPECT_LE(Action.GetDateTime(), pf::Now());
  EXPECT_EQ(pf::FileAge(F), pf::DateTimeToFileDate(Action.GetDateTime()));
}

TEST(TouchFilesProperties, DateTimeAsStringUsesOneFixedFormatAndReadsItBack) {
  TTouchFilesAction A;
  A.SetDateTime(At(2024, 3, 5, 7, 8, 9, 400));
  EXPECT_EQ(A.GetDateTimeAsString(), "03/05/2024 07:08:09");
  A.SetDateTime(pf::EncodeDate(2024, 12, 31));
  EXPECT_EQ(A.GetDateTimeAsString(), "12/31/2024");

  A.SetDateTimeAsString(" 3/5/2024 17:08 ");
  EXPECT_EQ(pf::FormatIsoDateTime(A.GetDateTime()), "2024-03-05T17:08:00");
  A.SetDateTimeAsString("02/29/2024");
  EXPECT_EQ(pf::FormatIsoDateTime(A.GetDateTime()), "2024-02-29T00:00:00");
}

TEST(TouchFilesProperties, UnreadableDateTimeTextIsRejectedAndChangesNothing) {
  TTouchFilesAction A;
  A.SetDateTime(At(2020, 1, 1, 1, 1, 2));
  for (const char* Bad : {"", "yesterday", "13/01/2024", "02/30/2023", "1/1/24", "01/01/2024 25:00", "01/01/2024x"}) {
    try {
      A.SetDateTimeAsString(Bad);
      ADD_FAILURE() << "accepted \"" << Bad << "\"";
    } catch (const std::invalid_argument& E) {
      EXPECT_EQ(std::string(E.what()), "'" + std::string(Bad) + "' is not a valid date and time");
    }
  }
  EXPECT_EQ(A.GetDateTimeAsString(), "01/01/2020 01:01:02");
}

TEST(TouchFilesProperties, DefaultsAndPublishedProperties) {
  const pf::TDateTime Before = pf::Now();
  TTouchFilesAction A;
  EXPECT_GE(A.GetDateTime(), Before);
  EXPECT_LE(A.GetDateTime(), pf::Now());
  EXPECT_TRUE(A.GetTouchDate());
  EXPECT_TRUE(A.GetTouchTime());
  EXPECT_FALSE(A.GetTouchReadOnly());
  EXPECT_FALSE(A.GetRecurse());
  EXPECT_FALSE(A.GetUseNow());
  A.SetDateTimeString("anything");  // the date editor's handle: reads one text, ignores writes
  EXPECT_EQ(A.GetDateTimeString(), "Edit...");

  EXPECT_EQ(PropertyNames(TTouchFilesAction::ClassType()),
            (Lines{"DateTime", "FileSpec", "TouchDate", "TouchTime", "TouchReadOnly", "Recurse", "DateTimeString",
                   "FileCount", "UseNow", "DateTimeAsString"}));
  Lines NotStored, ReadOnly;
  for (const auto& P : TTouchFilesAction::ClassType().Properties()) {
    if (!P.Stored) NotStored.push_back(P.Name);
    if (P.ReadOnly()) ReadOnly.push_back(P.Name);
  }
  EXPECT_EQ(NotStored, (Lines{"DateTimeString", "FileCount", "DateTimeAsString"}));
  EXPECT_EQ(ReadOnly, (Lines{"FileCount"}));
}

TEST(TouchFilesProperties, HiddenPropertiesAndValidation) {
  TTouchFilesAction A;
  frame::TStrings Hidden;
  A.GetHiddenProperties(Hidden);
  EXPECT_EQ(Hidden.Lines(), (Lines{"DateTime", "FileCount", "DateTimeAsString"}));
  ValidationErrors E;
  EXPECT_FALSE(A.Validate(E));
  EXPECT_EQ(E.Errors, (Lines{"File Spec: File spec has not been set"}));
}

}  // namespace
}  // namespace zt::testing
