#include <QStringList>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "adapters/desktop_folders.h"

namespace vrx::testing {
namespace {

class DocumentOpeners : public ::testing::Test {
 protected:
  DocumentOpeners() { desktop.folder.Write(document, "text"); }

  // The code. Program and arguments are those of this call.
  int Find() {
    QStringList lines = desktop.Ask("call", document);
    const int code = lines.takeFirst().toInt();
    program = lines.takeFirst().toStdString();
    arguments = lines;
    return code;
  }
  QString DocumentPath() const {
    return QString::fromStdString((desktop.folder / document).string());
  }

  DesktopFolders desktop;
  std::string document = "Readme.TXT";
  std::string program;
  QStringList arguments;
};

TEST_F(DocumentOpeners, NothingGoesWithTheKind) { EXPECT_EQ(Find(), 31); }

TEST_F(DocumentOpeners, NoSuchFile) {
  document += ".missing";
  EXPECT_EQ(Find(), 2);
}

TEST_F(DocumentOpeners, TakesWhatIsInstalledForTheKind) {
  const auto reader = desktop.MakeOpener("reader");
  desktop.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(program, reader.string());
  EXPECT_EQ(arguments, QStringList{DocumentPath()});
}

TEST_F(DocumentOpeners, TakesWhatTheUserPrefers) {
  desktop.MakeOpener("reader");
  const auto editor = desktop.MakeProgram("editor");
  desktop.MakeEntry("editor.desktop", "Exec=editor %U\n");
  desktop.Cache("text/plain=reader.desktop;editor.desktop;\n");
  desktop.Prefer("[Default Applications]\ntext/plain=editor.desktop\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(program, editor.string());
}

TEST_F(DocumentOpeners, TakesWhatTheRunningDesktopPrefersBeforeTheCommonChoice) {
  desktop.MakeOpener("reader");
  const auto editor = desktop.MakeOpener("editor");
  desktop.Prefer("[Default Applications]\ntext/plain=reader.desktop\n");
  desktop.folder.Write("config/gnome-mimeapps.list",
                       "[Default Applications]\ntext/plain=editor.desktop\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(program, editor.string());
}

TEST_F(DocumentOpeners, LeavesOutWhatTheUserRemoved) {
  desktop.MakeOpener("reader");
  desktop.Cache("text/plain=reader.desktop;\n");
  desktop.Prefer("[Removed Associations]\ntext/plain=reader.desktop\n");
  EXPECT_EQ(Find(), 31);
}

TEST_F(DocumentOpeners, TakesAProgramForAMoreGeneralKind) {
  document = "list.csv";
  desktop.folder.Write(document, "a,b\n");
  desktop.MakeOpener("reader");
  desktop.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(Find(), 32);
}

TEST_F(DocumentOpeners, ProgramThatIsNotThereIsNoAssociation) {
  desktop.MakeEntry("gone.desktop", "Exec=gone %f\n");
  desktop.Cache("text/plain=gone.desktop;absent.desktop;\n");
  EXPECT_EQ(Find(), 31);
}

TEST_F(DocumentOpeners, NeedsNoDatabaseOfTheDesktop) {
  std::filesystem::remove_all(desktop.folder / "data");
  std::filesystem::remove_all(desktop.folder / "config");
  EXPECT_EQ(Find(), 31);
}

TEST_F(DocumentOpeners, TakesWhatTheUserPrefersWithoutACache) {
  desktop.MakeOpener("reader");
  desktop.Prefer("[Default Applications]\ntext/plain=reader.desktop\n");
  EXPECT_GT(Find(), 32);
}

TEST_F(DocumentOpeners, ContentOfAnyKindHasNoProgram) {
  document = "content";
  desktop.folder.Write(document, std::string("\0\1\2\3", 4));
  desktop.MakeOpener("reader");
  desktop.Cache("application/octet-stream=reader.desktop;\n");
  EXPECT_EQ(Find(), 31);
}

TEST_F(DocumentOpeners, GoesOnToTheNextProgramWhenOneIsGone) {
  const auto reader = desktop.MakeOpener("reader");
  desktop.MakeEntry("gone.desktop", "Exec=gone %f\n");
  desktop.Cache("text/plain=gone.desktop;reader.desktop;\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(program, reader.string());
}

TEST_F(DocumentOpeners, ProgramsOfATerminalHaveNoWindow) {
  desktop.MakeOpener("reader", "Terminal=true\n");
  desktop.Cache("text/plain=reader.desktop;\n");
  EXPECT_EQ(Find(), 11);
}

TEST_F(DocumentOpeners, GoesOnToTheNextProgramWhenOneNeedsATerminal) {
  desktop.MakeOpener("reader", "Terminal=true\n");
  const auto editor = desktop.MakeOpener("editor");
  desktop.Cache("text/plain=reader.desktop;editor.desktop;\n");
  EXPECT_GT(Find(), 32);
  EXPECT_EQ(program, editor.string());
}

TEST_F(DocumentOpeners, DashOfAnEntrysNameMayBeAFolder) {
  desktop.MakeProgram("reader");
  std::filesystem::create_directory(desktop.folder / "data/applications/maker");
  desktop.MakeEntry("maker/reader.desktop", "Exec=reader %f\n");
  desktop.Cache("text/plain=maker-reader.desktop;\n");
  EXPECT_GT(Find(), 32);
}

TEST_F(DocumentOpeners, CommandKeepsQuotedWordsAndDropsFieldCodes) {
  desktop.MakeProgram("reader");
  desktop.MakeEntry("reader.desktop",
                    "Exec=reader --title \"two words\" --price 5%% %i \"a\\\\\\\\b\" %f %k\n");
  desktop.Cache("text/plain=reader.desktop;\n");
  ASSERT_GT(Find(), 32);
  const QStringList expected = {"--title", "two words", "--price", "5%", "a\\b", DocumentPath()};
  EXPECT_EQ(arguments, expected);
}

TEST_F(DocumentOpeners, OnlyTheEntrysOwnGroupCounts) {
  desktop.MakeOpener("reader", "\n[Desktop Action new]\nExec=gone\n");
  desktop.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(Find(), 32);
}

TEST_F(DocumentOpeners, SystemInfoGivesTheCodesOfTheDesign) {
  EXPECT_EQ(desktop.Ask("find", "Readme.TXT", "/none"), (QStringList{"3", ""}));
  EXPECT_EQ(desktop.Ask("find", "Missing.TXT"), (QStringList{"2", ""}));
  EXPECT_EQ(desktop.Ask("find"), (QStringList{"31", ""}));
  const auto reader = desktop.MakeOpener("reader");
  desktop.Cache("text/plain=reader.desktop;\n");
  EXPECT_EQ(desktop.Ask("find"), (QStringList{"33", QString::fromStdString(reader.string())}));
}

}  // namespace
}  // namespace vrx::testing
