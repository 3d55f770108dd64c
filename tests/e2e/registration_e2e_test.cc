// The palette zt shows after loading the package, and how a registered but
// unbuilt action type behaves in a build.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// Splits a palette line into its columns (separated by two or more blanks).
Lines Columns(const std::string& Line) {
  Lines R;
  std::size_t I = 0;
  while (I < Line.size()) {
    std::size_t End = Line.find("  ", I);
    if (End == std::string::npos) End = Line.size();
    if (End > I) R.push_back(Line.substr(I, End - I));
    I = Line.find_first_not_of(' ', End);
    if (I == std::string::npos) break;
  }
  return R;
}

Lines SplitLines(const std::string& Text) {
  Lines R;
  std::istringstream In(Text);
  for (std::string L; std::getline(In, L);) R.push_back(L);
  return R;
}

const Lines kClasses = {
    "TFileExistsAction", "TCreateDirectoryAction", "TDeleteDirectoryAction", "TZTMoveDirectoryAction",
    "TDeleteFilesAction", "TCopyFilesAction", "TMoveFilesAction", "TSetFileAttributesAction", "TFileIterator",
    "TFolderIterator", "TReadIniFileAction", "TWriteIniFileAction", "TZTScriptAction", "TTouchFilesAction",
    "TRunProgramAction", "TRunDosCMDAction", "TConcatAction", "TDiskInfoAction", "TDateTimeAction",
    "TReadRegValueAction", "TSetRegValueAction", "TDeleteRegValueAction", "TRenameDirAction",
    "TZTCreateTextFileAction", "TZTWriteToTextFileAction", "TZTGetFileSizeAction", "TZTIfCOMClassRegistered",
    "TZTXCopyAction", "TZTRobocopyCopyAction", "TZTRobocopyJobAction", "TZTRobocopyMoveAction",
    "TZTRobocopyMirrorAction", "TZTReadTextFileAction", "TReadTextFileIterator", "TIniFileIterator",
    "TZTExtractFileVerInfoAction", "TZTListIterator", "TZTFileCRCAction", "TZTFileMD5Action", "TZTShellExecute",
    "TTextReplaceAction", "TZTVariablesSaveAction", "TZTVariablesLoadAction", "TZTTextFindAction",
    "TZTFileCompareAction", "TZTLogVariablesAction", "TZTCloseProcessAction", "TZTFileSetCopyMoveAction",
    "TZTReplaceVariablesAction", "TZTImagesAction", "TZTJPEGLosslessTransformAction"};

TEST(RegistrationEndToEnd, PaletteListsEveryTypeInRegistrationOrder) {
  TempDir Dir;
  ZtResult R = RunZtArgs(Dir.Path(), {"actions"});
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  const Lines Out = SplitLines(R.Stdout);
  ASSERT_EQ(Out.size(), kClasses.size()) << R.Stdout;
  for (std::size_t I = 0; I < Out.size(); ++I) {
    const Lines C = Columns(Out[I]);
    ASSERT_GE(C.size(), 4u) << Out[I];
    EXPECT_EQ(C[2], kClasses[I]) << Out[I];
  }
  EXPECT_EQ(Columns(Out[4]), (Lines{"Files & Directories", "Delete File(s)", "TDeleteFilesAction", "HDELETE_FILE"}));
  EXPECT_EQ(Columns(Out[18]), (Lines{"Misc", "Get Date/Time", "TDateTimeAction", "HDATETIME"}));
  EXPECT_EQ(Columns(Out[19])[1], "Read Registry Value");
  EXPECT_EQ(Columns(Out[22])[1], "Rename File or Directory");
  EXPECT_EQ(Columns(Out[49]), (Lines{"Misc", "Image Manipulation", "TZTImagesAction", "IMAGEACTION"}));
  EXPECT_EQ(Columns(Out[50]), (Lines{"Misc", "JPEG Lossless Transform", "TZTJPEGLosslessTransformAction", "IMAGEACTION"}));
}

TEST(RegistrationEndToEnd, DesignerPaletteAddsEditorsAndPagesUnderTheirAction) {
  TempDir Dir;
  ZtResult R = RunZtArgs(Dir.Path(), {"actions", "--designer"});
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  const Lines Out = SplitLines(R.Stdout);
  std::size_t At = 0;
  while (At < Out.size() && Out[At].find("TDeleteFilesAction") == std::string::npos) ++At;
  ASSERT_LT(At + 3, Out.size());
  EXPECT_NE(Out[At + 1].find("TFileNameEditEx"), std::string::npos) << Out[At + 1];
  EXPECT_NE(Out[At + 1].find("FileSpec"), std::string::npos) << Out[At + 1];
  EXPECT_NE(Out[At + 2].find("Target"), std::string::npos) << Out[At + 2];
  EXPECT_EQ(Out[At + 3], "    page TDeleteFilesFrame");
}

}  // namespace
}  // namespace zt::testing
