#include <gtest/gtest.h>

#include "adapters/document_opener.h"
#include "adapters/linux_machine.h"
#include "adapters/viewer_site.h"

namespace vrx::testing {
namespace {

class DocumentViewers : public ::testing::Test {
 protected:
  DocumentViewers() { document = site.folder.Write("Readme.TXT", "text").string(); }

  int Find() { return FindDocumentCall(QString::fromStdString(document), call); }
  std::string Program() const { return call.program.toStdString(); }

  ViewerSite site;
  std::string document;
  ProgramCall call;
};

TEST_F(DocumentViewers, NothingGoesWithTheKind) { EXPECT_EQ(Find(), 31); }

TEST_F(DocumentViewers, NoSuchFile) {
  document += ".missing";
  EXPECT_EQ(Find(), 2);
}

TEST_F(DocumentViewers, TakesWhatIsInstalledForTheKind) {
  const auto program = site.MakeProgram("reader");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(Program(), program.string());
  EXPECT_EQ(call.arguments, QStringList{QString::fromStdString(document)});
}

TEST_F(DocumentViewers, TakesWhatTheUserPrefers) {
  site.MakeProgram("reader");
  const auto editor = site.MakeProgram("editor");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.MakeEntry("editor.desktop", "Exec=editor %U\n");
  site.Cache("text/plain=reader.desktop;editor.desktop;\n");
  site.Prefer("[Default Applications]\ntext/plain=editor.desktop\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(Program(), editor.string());
}

TEST_F(DocumentViewers, TakesWhatTheRunningDesktopPrefersAheadOfTheCommonChoice) {
  site.MakeProgram("reader");
  const auto editor = site.MakeProgram("editor");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.MakeEntry("editor.desktop", "Exec=editor %f\n");
  site.Prefer("[Default Applications]\ntext/plain=reader.desktop\n");
  site.folder.Write("config/gnome-mimeapps.list",
                    "[Default Applications]\ntext/plain=editor.desktop\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(Program(), editor.string());
}

TEST_F(DocumentViewers, LeavesOutWhatTheUserRemoved) {
  site.MakeProgram("reader");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.Cache("text/plain=reader.desktop;\n");
  site.Prefer("[Removed Associations]\ntext/plain=reader.desktop\n");
  EXPECT_EQ(Find(), 31);
}

TEST_F(DocumentViewers, TakesAProgramForAMoreGeneralKind) {
  document = site.folder.Write("list.csv", "a,b\n").string();
  site.MakeProgram("reader");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(Find(), 32);
}

TEST_F(DocumentViewers, ProgramThatIsNotThereIsABadOne) {
  site.MakeEntry("gone.desktop", "Exec=gone %f\n");
  site.Cache("text/plain=gone.desktop;absent.desktop;\n");
  EXPECT_EQ(Find(), 11);
}

TEST_F(DocumentViewers, GoesOnToTheNextProgramWhenOneIsGone) {
  const auto program = site.MakeProgram("reader");
  site.MakeEntry("gone.desktop", "Exec=gone %f\n");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.Cache("text/plain=gone.desktop;reader.desktop;\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(Program(), program.string());
}

TEST_F(DocumentViewers, ProgramsOfATerminalHaveNoWindow) {
  site.MakeProgram("reader");
  site.MakeEntry("reader.desktop", "Exec=reader %f\nTerminal=true\n");
  site.Cache("text/plain=reader.desktop;\n");
  EXPECT_EQ(Find(), 11);
}

TEST_F(DocumentViewers, DashOfAnEntrysNameMayBeAFolder) {
  site.MakeProgram("reader");
  std::filesystem::create_directory(site.folder / "data/applications/maker");
  site.MakeEntry("maker/reader.desktop", "Exec=reader %f\n");
  site.Cache("text/plain=maker-reader.desktop;\n");
  EXPECT_GT(Find(), 32);
}

TEST_F(DocumentViewers, CommandKeepsQuotedWordsAndDropsFieldCodes) {
  site.MakeProgram("reader");
  site.MakeEntry("reader.desktop",
                 "Exec=reader --title \"two words\" --price 5%% %i \"a\\\\\\\\b\" %f %k\n");
  site.Cache("text/plain=reader.desktop;\n");
  ASSERT_GT(Find(), 32);
  const QStringList expected = {"--title", "two words", "--price",
                                "5%",      "a\\b",      QString::fromStdString(document)};
  EXPECT_EQ(call.arguments, expected);
}

TEST_F(DocumentViewers, OnlyTheEntrysOwnGroupCounts) {
  site.MakeProgram("reader");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n\n[Desktop Action new]\nExec=gone\n");
  site.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(Find(), 32);
}

TEST_F(DocumentViewers, SystemInfoGivesTheToldCodes) {
  const LinuxSystemInfo system;
  const std::string directory = site.folder.Path().string();
  std::string viewer = "before";
  EXPECT_EQ(system.FindExecutable("Readme.TXT", directory + "/none", viewer), 3);
  EXPECT_EQ(system.FindExecutable("Missing.TXT", directory, viewer), 2);
  EXPECT_EQ(system.FindExecutable("Readme.TXT", directory, viewer), 31);
  EXPECT_EQ(viewer, "");
  const auto program = site.MakeProgram("reader");
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(system.FindExecutable("Readme.TXT", directory, viewer), 32);
  EXPECT_EQ(viewer, program.string());
}

}  // namespace
}  // namespace vrx::testing
