// Every control of every window has a name for a screen reader.

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTabBar>
#include <QTextBrowser>
#include <filesystem>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "database/records.h"
#include "desktop/dialogs/about_and_splash.h"
#include "desktop/dialogs/conversion.h"
#include "desktop/main_window/main_window_fixture.h"
#include "desktop/next_modal.h"
#include "desktop/print/print_dialogs.h"
#include "support/fake_operating_system.h"
#include "widgets/layout.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;

// The toolkit's own, out of reach of the Tab key.
bool IsInCalendar(const QWidget& widget) {
  for (const QWidget* up = &widget; up != nullptr; up = up->parentWidget()) {
    if (qobject_cast<const QCalendarWidget*>(up) != nullptr) {
      return true;
    }
  }
  return false;
}

bool IsInScrollArea(const QWidget& widget) {
  for (const QWidget* up = &widget; up != nullptr; up = up->parentWidget()) {
    if (qobject_cast<const QScrollArea*>(up) != nullptr) {
      return true;
    }
  }
  return false;
}

// A part that a box or field has made for itself: it bears the name of the box.
bool IsPartOfAField(const QWidget& widget) {
  const QWidget* const parent = widget.parentWidget();
  return qobject_cast<const QComboBox*>(parent) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(parent) != nullptr ||
         qobject_cast<const QLineEdit*>(parent) != nullptr;
}

bool NeedsAName(const QWidget& widget) {
  return widget.focusPolicy() != Qt::NoFocus ||
         qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
         qobject_cast<const QProgressBar*>(&widget) != nullptr;
}

std::vector<std::string> NamelessIn(const QWidget& window) {
  std::vector<std::string> nameless;
  for (QWidget* const widget : window.findChildren<QWidget*>()) {
    if (!NeedsAName(*widget) || widget->window() != &window || IsInCalendar(*widget) ||
        IsPartOfAField(*widget) || widget->objectName().startsWith(u"qt_"_qs) ||
        widget->inherits("QTableCornerButton")) {
      continue;
    }
    QAccessibleInterface* const heard = QAccessible::queryAccessibleInterface(widget);
    if (heard == nullptr || heard->text(QAccessible::Name).isEmpty()) {
      nameless.push_back(std::string(widget->metaObject()->className()) + " " +
                         widget->objectName().toStdString());
    }
  }
  return nameless;
}

class AccessibleWindows : public MainWindowFixture {
 protected:
  void SetUp() override {
    settings_.SetEnableBeeperOn(false);
    SetHelpHandlers(Window(), system_, os_, operator_);
    Open(DatabaseKind::kRecipe);
    Open(DatabaseKind::kTransaction);
    SQLite::Database recipes((app_folder_->DefaultAppPath() / "YARD.RDB").string(),
                             SQLite::OPEN_READWRITE);
    WriteIngredient(recipes, {.id = 1, .name = "CORN", .description = "Corn"});
    for (int id = 1; id <= 2; ++id) {
      RecipeRecord recipe = ReadRecipe(recipes, id);
      recipe.description = "Finisher with hay";
      WriteRecipe(recipes, recipe);
    }
    Show();
  }

  void ChooseLargeLetters() {
    QFont font = QApplication::font();
    font.setPointSizeF(2 * font.pointSizeF());
    QApplication::setFont(font);
  }
  ~AccessibleWindows() override { QApplication::setFont(font_); }

  // What of a window is out of its screen, or of a caption out of its place.
  std::vector<std::string> CutOffInWindowOf(const QString& command) {
    std::vector<std::string> cut{"the window was not shown"};
    const NextModal modal([&](QWidget& form) {
      RunEvents();
      cut.clear();
      const QSize room = form.screen()->availableSize() - kFrameSize;
      if (form.width() > room.width() || form.height() > room.height()) {
        cut.push_back("the window");
      }
      for (auto* const button : form.findChildren<QPushButton*>()) {
        const QRect place(button->mapTo(&form, QPoint()), button->size());
        const int letters = button->fontMetrics().horizontalAdvance(button->text().remove(u'&'));
        if (button->isVisible() && !IsInScrollArea(*button) &&
            (button->width() < letters || !form.rect().contains(place))) {
          cut.push_back(button->text().toStdString());
        }
      }
      form.close();
    });
    Choose(command);
    return cut;
  }

  // Opens the window of a command, and closes it.
  std::vector<std::string> NamelessInWindowOf(const QString& command, const QString& name) {
    std::vector<std::string> nameless{"the window was not shown"};
    const NextModal modal([&](QWidget& form) {
      EXPECT_EQ(form.objectName(), name);
      nameless = NamelessIn(form);
      form.close();
    });
    Choose(command);
    return nameless;
  }

  FakeOperatingSystem os_;

 private:
  QFont font_ = QApplication::font();
};

TEST_F(AccessibleWindows, TheMainWindowNamesEveryControlOfEveryTab) {
  EXPECT_THAT(NamelessIn(Window()), IsEmpty());
}

TEST_F(AccessibleWindows, TheBoxesNameEveryControl) {
  EXPECT_THAT(NamelessInWindowOf(u"mnuToolsSetup"_qs, u"SETUP"_qs), IsEmpty());
  EXPECT_THAT(NamelessInWindowOf(u"mnuHelpAbout"_qs, u"ABOUT"_qs), IsEmpty());
  EXPECT_THAT(NamelessInWindowOf(u"mnuFilePrintSetup"_qs, u"dlgPrintDialog"_qs), IsEmpty());
}

TEST_F(AccessibleWindows, TheBoxesOfLongWorkNameEveryControl) {
  EXPECT_THAT(NamelessIn(ConversionProgress(&Window())), IsEmpty());
  EXPECT_THAT(NamelessIn(PrintProgress(&Window())), IsEmpty());
  std::vector<std::string> nameless{"the report was not shown"};
  const NextModal modal([&](QWidget& report) {
    nameless = NamelessIn(report);
    report.close();
  });
  QtConversionDisplay(Window(), chooser_, operator_).ShowReport("one\ntwo\n", "NEW.TXT");
  EXPECT_THAT(nameless, IsEmpty());
}

TEST_F(AccessibleWindows, TheBoxesOfRecipesNameEveryControl) {
  Window().ChooseTab(kTabRecipes);
  RunEvents();
  EXPECT_THAT(NamelessInWindowOf(u"mnuEditCopyRecipe"_qs, u"dlgCopyRecipe"_qs), IsEmpty());
  EXPECT_THAT(NamelessInWindowOf(u"mnuEditCompareRecipes"_qs, u"dlgCompareRecipes"_qs), IsEmpty());
  Window().ChooseTab(kTabIngredients);
  RunEvents();
  EXPECT_THAT(NamelessInWindowOf(u"mnuFilePrintPreview"_qs, u"dlgPrintPreview"_qs), IsEmpty());
  EXPECT_THAT(NamelessInWindowOf(u"mnuFileReport"_qs, u"dlgPeriodReport"_qs), IsEmpty());
}

TEST_F(AccessibleWindows, FitTheScreenWithLettersOfTwiceTheirSize) {
  ChooseLargeLetters();
  Window().ChooseTab(kTabRecipes);
  RunEvents();
  for (const QString& command :
       {u"mnuToolsSetup"_qs, u"mnuHelpAbout"_qs, u"mnuFilePrintSetup"_qs, u"mnuEditCopyRecipe"_qs,
        u"mnuEditCompareRecipes"_qs, u"mnuFileReport"_qs}) {
    EXPECT_THAT(CutOffInWindowOf(command), IsEmpty()) << command.toStdString();
  }
  Window().ChooseTab(kTabIngredients);
  RunEvents();
  EXPECT_THAT(CutOffInWindowOf(u"mnuFilePrintPreview"_qs), IsEmpty());
}

TEST_F(AccessibleWindows, TheManualsWindowNamesEveryControlAndShowsTheChapter) {
  fs::create_directory(program_ / "manual");
  folder_.Write("program/manual/09-history.html", "<h1>History</h1><p>Records.</p>");
  folder_.Write("program/manual/05-pens.html", "<h1>Pens</h1>");
  Window().ChooseTab(kTabBatchedFed);
  Choose(u"mnuHelpChapter"_qs);
  auto* const viewer = Window().findChild<QDialog*>(u"MANUAL"_qs);
  ASSERT_NE(viewer, nullptr);
  EXPECT_THAT(NamelessIn(*viewer), IsEmpty());
  auto& text = *viewer->findChild<QTextBrowser*>();
  EXPECT_EQ(text.toPlainText(), u"History\nRecords."_qs);
  Window().ChooseTab(kTabPens);
  Choose(u"mnuHelpChapter"_qs);
  EXPECT_EQ(Window().findChildren<QDialog*>(u"MANUAL"_qs).size(), 1);
  EXPECT_EQ(text.toPlainText(), u"Pens"_qs);
  viewer->findChild<QAbstractButton*>(u"cmdManualBack"_qs)->click();
  EXPECT_EQ(text.toPlainText(), u"History\nRecords."_qs);
  viewer->close();
}

// A field alone says nothing: a label or the name that a reader hears is with each.
TEST_F(AccessibleWindows, TheWalkFindsWhatHasNoName) {
  QWidget window;
  auto* const nameless = new QLineEdit(&window);
  nameless->setObjectName(u"txtNameless"_qs);
  auto* const named = new QComboBox(&window);
  named->setAccessibleName(u"Named"_qs);
  auto* const bar = new QProgressBar(&window);
  bar->setObjectName(u"prgNameless"_qs);
  EXPECT_THAT(NamelessIn(window),
              ::testing::ElementsAre("QLineEdit txtNameless", "QProgressBar prgNameless"));
}

class DisabledControls : public MainWindowFixture {
 protected:
  DisabledControls() { settings_.SetEnableBeeperOn(false); }

  QString Tip(const QString& name) { return Find<QWidget>(name).toolTip(); }
};

TEST_F(DisabledControls, ATabThatIsOffSaysWhatItNeeds) {
  Show();
  for (const int tab : {kTabIngredients, kTabRecipes, kTabPens}) {
    EXPECT_EQ(Tabs().tabToolTip(tab), u"Open a recipe database to use this tab"_qs);
  }
  for (const int tab : {kTabBatchedFed, kTabExport, kTabInsight}) {
    EXPECT_EQ(Tabs().tabToolTip(tab), u"Open a transaction database to use this tab"_qs);
  }
  Open(DatabaseKind::kRecipe);
  EXPECT_EQ(Tabs().tabToolTip(kTabRecipes), QString());
  Choose(u"mnuFileCloseRecipeDB"_qs);
  EXPECT_NE(Tabs().tabToolTip(kTabRecipes), QString());
}

TEST_F(DisabledControls, EveryInputThatIsOffSaysWhatItNeeds) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  Show();
  int off = 0;
  for (int tab = 0; tab < kTabCount; ++tab) {
    Window().ChooseTab(tab);
    RunEvents();
    for (QWidget* const widget : Window().findChildren<QWidget*>()) {
      const bool input = qobject_cast<QLineEdit*>(widget) != nullptr ||
                         qobject_cast<QComboBox*>(widget) != nullptr ||
                         widget->objectName().startsWith(u"cmdImport"_qs) ||
                         widget->objectName() == u"cmdPrintText"_qs;
      if (input && widget->isVisible() && !widget->isEnabled() && !IsPartOfAField(*widget)) {
        ++off;
        EXPECT_NE(widget->toolTip(), QString())
            << Tabs().tabText(tab).toStdString() << " " << widget->objectName().toStdString();
      }
    }
  }
  EXPECT_GE(off, 3);
}

}  // namespace
}  // namespace vrx::testing
