#include <QAbstractButton>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeDatabase>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <filesystem>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "desktop/app/qt_services.h"
#include "desktop/next_modal.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

class FileDialogs : public ::testing::Test {
 protected:
  FileDialogs() {
    dialog.start_folder = folder.Path().string();
    folder.Write("OLD.QXT", "old");
  }

  // Types the name and accepts the dialog. `then` checks the dialog afterwards.
  static std::function<void(QWidget&)> Type(const QString& name) {
    return [name](QWidget& widget) {
      auto& files = dynamic_cast<QFileDialog&>(widget);
      files.findChild<QLineEdit*>(u"fileNameEdit"_qs)->setText(name);
      QMetaObject::invokeMethod(&files, "accept", Qt::QueuedConnection);
    };
  }

  FileChoice Open(const QString& name) {
    const NextModal modal(Type(name));
    return chooser.ShowOpen(dialog);
  }
  FileChoice Save(const QString& name) {
    const NextModal modal(Type(name));
    return chooser.ShowSave(dialog);
  }

  // Saves under a name that exists; the question is answered, and the dialog given up if that did
  // not end it.
  FileChoice SaveOver(const QString& name, QMessageBox::StandardButton answer) {
    std::unique_ptr<NextModal> question;
    const NextModal modal([&](QWidget& widget) {
      auto& files = dynamic_cast<QFileDialog&>(widget);
      Type(name)(widget);
      QTimer::singleShot(0, &files, [&] {
        question = std::make_unique<NextModal>([&, answer](QWidget& top) {
          if (auto* const box = qobject_cast<QMessageBox*>(&top)) {
            asked = true;
            by_enter = box->standardButton(box->defaultButton());
            box->button(answer)->click();
            QTimer::singleShot(0, &files, &QDialog::reject);
          }
        });
      });
    });
    return chooser.ShowSave(dialog);
  }

  TempFolder folder;
  QtFileChooser chooser{[this] { return folder.Path().string(); }};
  FileDialog dialog{.title = "Import Transaction File",
                    .filter = "Transactions (*.QXT)|*.QXT|All Files (*.*)|*.*",
                    .default_extension = "QXT",
                    .flags = kOverwritePrompt | kHideReadOnly};
  bool asked = false;
  QMessageBox::StandardButton by_enter = QMessageBox::NoButton;
};

TEST_F(FileDialogs, BeginInTheFolderAskedForWhateverWasChosenBefore) {
  const TempFolder other;
  EXPECT_EQ(Save(QString::fromStdString((other / "NEW.QXT").string())).path, other / "NEW.QXT");
  QString begun;
  const NextModal modal([&](QWidget& widget) {
    auto& files = dynamic_cast<QFileDialog&>(widget);
    begun = files.directory().absolutePath();
    files.reject();
  });
  EXPECT_TRUE(chooser.ShowOpen(dialog).Cancelled());
  EXPECT_EQ(begun.toStdString(), folder.Path().string());
}

TEST_F(FileDialogs, GivesPathAndFileName) {
  const FileChoice choice = Open(u"OLD.QXT"_qs);
  EXPECT_EQ(choice.path, (folder / "OLD.QXT").string());
  EXPECT_EQ(choice.title, "OLD.QXT");
}

TEST_F(FileDialogs, CancelGivesNothing) {
  const NextModal modal([](QWidget& widget) { dynamic_cast<QDialog&>(widget).reject(); });
  const FileChoice choice = chooser.ShowOpen(dialog);
  EXPECT_TRUE(choice.Cancelled());
  EXPECT_EQ(choice.title, "");
}

TEST_F(FileDialogs, HasTitleFolderAndFilters) {
  QString title;
  QString directory;
  QStringList filters;
  const NextModal modal([&](QWidget& widget) {
    auto& files = dynamic_cast<QFileDialog&>(widget);
    title = files.windowTitle();
    directory = files.directory().absolutePath();
    filters = files.nameFilters();
    files.reject();
  });
  chooser.ShowOpen(dialog);
  EXPECT_EQ(title, u"Import Transaction File"_qs);
  EXPECT_EQ(directory.toStdString(), folder.Path().string());
  EXPECT_EQ(filters,
            (QStringList{u"Transactions (*.QXT) (*.[qQ][xX][tT])"_qs, u"All Files (*.*) (*)"_qs}));
}

TEST_F(FileDialogs, WithoutAFolderOfTheirOwnBeginInTheHomeAndThenWhereTheLastChoiceWas) {
  dialog.start_folder.clear();
  EXPECT_EQ(Save(u"NEW"_qs).path, (folder / "NEW.QXT").string());
  std::filesystem::create_directory(folder / "FAR");
  Save(QString::fromStdString((folder / "FAR/NEW.QXT").string()));
  EXPECT_EQ(Save(u"NEXT"_qs).path, (folder / "FAR/NEXT.QXT").string());
}

TEST_F(FileDialogs, CellsOfTheListAreShownWhole) {
  bool listed = false;
  const NextModal modal([&](QWidget& widget) {
    auto& files = dynamic_cast<QFileDialog&>(widget);
    auto& list = *files.findChild<QTreeView*>(u"treeView"_qs);
    listed = QTest::qWaitFor([&] { return list.model()->rowCount(list.rootIndex()) == 1; });
    for (int column = 0; column < list.model()->columnCount(); ++column) {
      const QModelIndex cell = list.model()->index(0, column, list.rootIndex());
      EXPECT_GT(list.visualRect(cell).width(),
                list.fontMetrics().horizontalAdvance(cell.data().toString()))
          << column;
    }
    files.reject();
  });
  chooser.ShowOpen(dialog);
  EXPECT_TRUE(listed);
}

TEST_F(FileDialogs, FilterOfSeveralPatterns) {
  dialog.filter = "Databases|*.RDB; *.TDB";
  QStringList filters;
  const NextModal modal([&](QWidget& widget) {
    filters = dynamic_cast<QFileDialog&>(widget).nameFilters();
    dynamic_cast<QDialog&>(widget).reject();
  });
  chooser.ShowOpen(dialog);
  EXPECT_EQ(filters, QStringList{u"Databases (*.[rR][dD][bB] *.[tT][dD][bB])"_qs});
}

TEST_F(FileDialogs, NameWithoutAnExtensionGetsTheDefaultOne) {
  EXPECT_EQ(Save(u"NEW"_qs).title, "NEW.QXT");
  EXPECT_EQ(Open(u"OLD"_qs).title, "OLD.QXT");
}

TEST_F(FileDialogs, NameWithAnExtensionKeepsIt) { EXPECT_EQ(Save(u"NEW.TXT"_qs).title, "NEW.TXT"); }

TEST_F(FileDialogs, ExistingFileIsOverwrittenOnlyAfterAQuestion) {
  EXPECT_TRUE(SaveOver(u"OLD.QXT"_qs, QMessageBox::No).Cancelled());
  EXPECT_TRUE(asked);
  EXPECT_EQ(by_enter, QMessageBox::No);
  EXPECT_EQ(SaveOver(u"OLD.QXT"_qs, QMessageBox::Yes).title, "OLD.QXT");
}

TEST_F(FileDialogs, TheQuestionMindsTheDefaultExtension) {
  EXPECT_TRUE(SaveOver(u"OLD"_qs, QMessageBox::No).Cancelled());
  EXPECT_TRUE(asked);
}

TEST_F(FileDialogs, WithoutTheFlagNothingIsAsked) {
  dialog.flags = 0;
  EXPECT_EQ(Save(u"OLD.QXT"_qs).title, "OLD.QXT");
}

TEST_F(FileDialogs, FileThatMustExistIsNotChosenWhenItDoesNot) {
  dialog.flags = kFileMustExist;
  std::unique_ptr<NextModal> warning;
  const NextModal modal([&](QWidget& widget) {
    auto& files = dynamic_cast<QFileDialog&>(widget);
    Type(u"NONE.QXT"_qs)(widget);
    QTimer::singleShot(0, &files, [&] {
      warning = std::make_unique<NextModal>([&](QWidget& top) {
        asked = qobject_cast<QMessageBox*>(&top) != nullptr;
        top.close();
        QTimer::singleShot(0, &files, &QDialog::reject);
      });
    });
  });
  EXPECT_TRUE(chooser.ShowOpen(dialog).Cancelled());
  EXPECT_TRUE(asked);
}

TEST_F(FileDialogs, WithoutAStartFolderBeginsWhereItWasLast) {
  Open(u"OLD.QXT"_qs);
  dialog.start_folder.clear();
  EXPECT_EQ(Open(u"OLD.QXT"_qs).path, (folder / "OLD.QXT").string());
}

TEST_F(FileDialogs, GivesAFolder) {
  std::filesystem::create_directory(folder / "export");
  const NextModal modal([&](QWidget& widget) {
    auto& files = dynamic_cast<QFileDialog&>(widget);
    EXPECT_EQ(files.fileMode(), QFileDialog::Directory);
    EXPECT_EQ(files.windowTitle(), u"Select a folder"_qs);
    Type(QString::fromStdString((folder / "export").string()))(widget);
  });
  EXPECT_EQ(chooser.ShowFolder("Select a folder"), (folder / "export").string());
}

// The content would show it, but only that of stored files is read.
TEST(FileIcons, ReadsTheContentOfStoredFilesOnly) {
  const FileIcons icons;
  const TempFolder folder;
  const QString path = QString::fromStdString(folder.Write("version", "some text\n").string());
  const QString text = QMimeDatabase().mimeTypeForName(u"text/plain"_qs).comment();
  const QString unknown = QMimeDatabase().mimeTypeForName(u"application/octet-stream"_qs).comment();
  EXPECT_EQ(icons.type(QFileInfo(path)), text);
  EXPECT_EQ(icons.type(QFileInfo(u"/proc/version"_qs)), unknown);
  EXPECT_EQ(icons.type(QFileInfo(u"/proc/self/status"_qs)), unknown);
  EXPECT_FALSE(icons.icon(QFileInfo(u"/proc/version"_qs)).isNull());
}

}  // namespace
}  // namespace vrx::testing
