// A program that is killed right after a field lost its focus has that field in its file. Each test
// runs the whole program in a process of its own, which ends by SIGKILL.

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "base/application.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/records.h"
#include "database/schema.h"
#include "desktop/app/program.h"
#include "desktop/app/qt_services.h"
#include "desktop/main_window/main_window.h"
#include "desktop/main_window/status_bar.h"
#include "desktop/recipes/recipe_grid.h"
#include "presenter/database_identity.h"
#include "support/environment.h"
#include "support/fixed_calendar.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"
#include "widgets/fields.h"
#include "widgets/qt_text.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFileOfParent = "VRX_TEST_KILLED_FILE";

class RecordsKilled : public ::testing::Test {
 protected:
  RecordsKilled() {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    fs::create_directories(data_);
    fs::create_directory(folder_ / "config");
    fs::create_directory(folder_ / "run");
    fs::permissions(folder_ / "run", fs::perms::owner_all);
    system_.common_app_data_folder = (folder_ / "data").string();
    system_.program_directory = VRX_BIN_DIR;
    folder_.Write(
        "data/Brantock/VRX-2260/VRX-2260.INI",
        "[Comments]\r\nTitle=x\r\n[Options]\r\nEnableBeeper=NO\r\nAutoloadRecipeDB=YES\r\n");
    // The process that is killed works on the file of the one that waits for it.
    // NOLINTNEXTLINE(concurrency-mt-unsafe): before any thread asks
    if (const char* const given = std::getenv(kFileOfParent); given != nullptr) {
      file_ = given;
    } else {
      file_ = MakeFile();
      ::setenv(kFileOfParent, file_.c_str(), 1);
    }
  }
  ~RecordsKilled() override { ::unsetenv(kFileOfParent); }

  fs::path MakeFile() {
    fs::path path = data_ / "YARD.RDB";
    fs::copy_file(fs::path(VRX_BIN_DIR) / kRecipeTemplateName, path);
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
    RecordingOperator op;
    const FixedCalendar calendar;
    const PrivateINI settings;
    DatabaseIdentity identity(op, calendar, settings);
    EXPECT_TRUE(identity.SetDatabaseType(path, kUserRecipeDb));
    EXPECT_TRUE(identity.SetDatabaseUoM(path, "LB"));
    SQLite::Database database = OpenDatabase(path, Access::kWrite);
    WriteIngredient(database, {1, "CORN", "Corn Rolled", 88, false});
    RecipeRecord recipe = ReadRecipe(database, 1);
    recipe.batch_type = "W";
    WriteRecipe(database, recipe);
    return path;
  }

  static MainWindow* Window() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const window = qobject_cast<MainWindow*>(widget);
          window != nullptr && window->isVisible()) {
        return window;
      }
    }
    return nullptr;
  }
  static bool IsOpen(const MainWindow& window) {
    return window.findChild<DatabaseStatusBar*>(QStringLiteral("sbRecipe"))->Panel(kPanelName) ==
           QStringLiteral("YARD.RDB");
  }

  // Runs the program until its database is open and the tab is shown; then acts, and kills it.
  void RunAndKill(int tab, const std::function<void(MainWindow&)>& act) {
    QtUserSettings().SaveSetting("MRU_RecipePathName", file_.string());
    QtUserSettings().SaveSetting("MRU_RecipeFileName", "YARD.RDB");
    vrx::Program program(system_);
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      if (MainWindow* const window = Window(); window != nullptr && IsOpen(*window)) {
        poll.stop();
        window->activateWindow();
        window->Tabs().SelectTab(tab);
        act(*window);
        std::raise(SIGKILL);
      }
    });
    poll.start(std::chrono::milliseconds{10});
    program.Run();
  }

  static void Type(std::string_view text) {
    for (const QChar character : ToQString(text)) {
      QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key_unknown,
                          QString(character), Qt::NoModifier);
    }
  }
  static void Fill(MainWindow& window, const char* box, std::string_view text) {
    auto& edit = *window.findChild<FilteredEdit*>(QLatin1String(box));
    edit.setFocus();
    edit.selectAll();
    Type(text);
    QTest::keyClick(&edit, Qt::Key_Tab);
  }
  SQLite::Database File() { return OpenDatabase(file_, Access::kWrite); }

  TempFolder folder_;
  fs::path data_ = folder_ / "data/Brantock/VRX-2260";
  Environment config_home_{"XDG_CONFIG_HOME", (folder_ / "config").string()};
  Environment runtime_{"XDG_RUNTIME_DIR", (folder_ / "run").string()};
  FixedSystemInfo system_;
  fs::path file_;
};

TEST_F(RecordsKilled, KeepAFieldOfAnIngredientThatWasLeft) {
  EXPECT_EXIT(RunAndKill(kTabIngredients,
                         [](MainWindow& window) {
                           Fill(window, "txtIngName", "MAIZE");
                           Fill(window, "txtIngDryMatter", "75");
                         }),
              ::testing::KilledBySignal(SIGKILL), "");
  SQLite::Database file = File();
  EXPECT_EQ(ReadIngredient(file, 1).name, "MAIZE");
  EXPECT_EQ(ReadIngredient(file, 1).dry_matter_percent, 75);
}

TEST_F(RecordsKilled, KeepAFieldOfARecipeThatWasLeft) {
  EXPECT_EXIT(RunAndKill(kTabRecipes,
                         [](MainWindow& window) { Fill(window, "txtRecDesc", "Steers Finisher"); }),
              ::testing::KilledBySignal(SIGKILL), "");
  SQLite::Database file = File();
  EXPECT_EQ(ReadRecipe(file, 1).description, "Steers Finisher");
  EXPECT_EQ(ReadRecipe(file, 2).description, "");
}

TEST_F(RecordsKilled, KeepALineWhoseLastCellWasLeft) {
  EXPECT_EXIT(RunAndKill(kTabRecipes,
                         [](MainWindow& window) {
                           window.findChild<RecipeGrid*>(QStringLiteral("grdREC"))->setFocus();
                           Type("CORN");
                           QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
                           Type("1200");
                           QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
                         }),
              ::testing::KilledBySignal(SIGKILL), "");
  SQLite::Database file = File();
  const std::vector<RecipeLineRecord> lines = ReadRecipeLines(file, 1);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].target, "1200");
  EXPECT_EQ(lines[0].dry_matter, "1364");
  EXPECT_EQ(lines[0].ration_percent, "100.000");
  EXPECT_EQ(ReadRecipe(file, 1).description, "REC001") << "the first line puts it in use";
}

TEST_F(RecordsKilled, KeepAFieldOfAPenThatWasLeft) {
  EXPECT_EXIT(RunAndKill(kTabPens, [](MainWindow& window) { Fill(window, "txtPenFeed", "00120"); }),
              ::testing::KilledBySignal(SIGKILL), "");
  SQLite::Database file = File();
  EXPECT_EQ(ReadPen(file, 1).feed_amount, "120");
}

}  // namespace
}  // namespace vrx::testing
