#include "desktop/central/central_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "central/administration.h"
#include "central/releases.h"
#include "desktop/main_window/main_window_fixture.h"
#include "desktop/next_modal.h"
#include "support/central_server.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// A central database with the yard North, and the window with a file of twenty rows.
class CentralDialogTest : public MainWindowFixture {
 protected:
  static constexpr const char* kLogin = "desk_north";

  const std::string& Database() {
    if (database_.empty()) {
      database_ = CentralServer::Get().MakeCentralDatabase();
      CentralConnection chief(CentralServer::Get().Connection(database_));
      AddYard(chief, "North", "America/Chicago", kLogin);
    }
    return database_;
  }
  std::string Connection() { return CentralServer::Get().Connection(Database(), kLogin); }
  void Set(const CentralSettings& settings) {
    std::string cause;
    ASSERT_TRUE(WriteCentralSettings(*ini_, {}, settings, cause)) << cause;
  }
  void OpenRows() {
    file_ = MakeUserFile("Y2026.TDB", DatabaseKind::kTransaction);
    Alter(file_,
          "WITH RECURSIVE r (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM r WHERE n < 20) INSERT "
          "INTO Transactions ([Transaction], Recipe, Type, Ingredient, Target, ActualBatch, Date) "
          "SELECT n, 'STEERS', 'BATCH', 'CORN', 100, 99.5, '2026-01-02' FROM r");
    chooser_.Choose(file_);
    Main();
    Choose(u"mnuFileOpenTransactionDB"_qs);
  }

  // Acts on the form and closes it.
  void InForm(const std::function<void(QWidget&)>& act) {
    const NextModal next([&](QWidget& form) {
      act(form);
      Click(form, "cmdCentralClose");
    });
    Choose(u"mnuToolsCentral"_qs);
    EXPECT_TRUE(next.Seen());
  }
  template <typename Control>
  static Control& In(const QWidget& form, const char* name) {
    auto* const control = form.findChild<Control*>(QLatin1String(name));
    if (control == nullptr) {
      throw std::logic_error(std::string("the form has no ") + name);
    }
    return *control;
  }
  static std::string TextIn(const QWidget& form, const char* name) {
    return In<QLabel>(form, name).text().toStdString();
  }
  static void Click(const QWidget& form, const char* name) {
    QTest::mouseClick(&In<QAbstractButton>(form, name), Qt::LeftButton);
  }
  static void Type(const QWidget& form, const char* name, const std::string& text) {
    auto& field = In<QLineEdit>(form, name);
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, QString::fromStdString(text));
  }
  // Runs the clock of the program and its events.
  bool WaitFor(const std::function<bool()>& condition) {
    for (int turn = 0; turn < 10000; ++turn) {
      if (condition()) {
        return true;
      }
      pump_.Pump(Milliseconds{50});
      QApplication::processEvents();
      std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }
    return false;
  }
  bool WaitForText(const QWidget& form, const char* name, const std::string& begin) {
    return WaitFor([&] { return TextIn(form, name).starts_with(begin); });
  }
  QToolButton& Sign() { return Find<QToolButton>(u"cmdCentralSign"_qs); }
  std::string SignText() { return Sign().text().toStdString(); }

  std::string database_;
  fs::path file_;
};

TEST_F(CentralDialogTest, WithoutAConnectionThereIsOnlyTheMenuEntry) {
  OpenRows();
  Show();
  EXPECT_TRUE(On(u"mnuToolsCentral"_qs));
  EXPECT_FALSE(Sign().isVisible());
  InForm([this](QWidget& form) {
    EXPECT_EQ(TextIn(form, "lblCentralFile"), "Y2026.TDB");
    EXPECT_EQ(TextIn(form, "lblCentralPush"), "No connection is set.");
    EXPECT_FALSE(In<QPushButton>(form, "cmdCentralTest").isEnabled());
    EXPECT_FALSE(In<QPushButton>(form, "cmdCentralPush").isEnabled());
    EXPECT_FALSE(In<QPushButton>(form, "cmdCentralStop").isEnabled());
    EXPECT_FALSE(In<QPushButton>(form, "cmdCentralRestore").isEnabled());
    EXPECT_FALSE(In<QCheckBox>(form, "chkCentralAutomatic").isChecked());
  });
  EXPECT_EQ(ReadCentralSettings(*ini_), CentralSettings());
}

TEST_F(CentralDialogTest, AClerkSetsTheConnectionPushesAndSeesTheProof) {
  OpenRows();
  Show();
  InForm([this](QWidget& form) {
    Type(form, "txtCentralConnection", Connection());
    QTest::keyClick(&In<QLineEdit>(form, "txtCentralConnection"), Qt::Key_Return);
    ASSERT_TRUE(WaitForText(form, "lblCentralConnection", "Connected"));
    EXPECT_THAT(
        TextIn(form, "lblCentralConnection"),
        AllOf(HasSubstr(" as desk_north."), EndsWith("Protection: a socket of this machine.")));
    // The only yard of the login.
    EXPECT_EQ(In<QLineEdit>(form, "txtCentralYard").text(), u"North"_qs);
    ASSERT_TRUE(WaitForText(form, "lblCentralWaiting", "20 of 20 rows"));
    EXPECT_EQ(SignText(), "Central: 20 rows waiting");
    EXPECT_EQ(TextIn(form, "lblCentralProof"), "");
    Click(form, "cmdCentralPush");
    ASSERT_TRUE(WaitForText(form, "lblCentralProof", "Rows 1 to 20"));
    EXPECT_THAT(
        TextIn(form, "lblCentralProof"),
        StartsWith("Rows 1 to 20: the file and the central database have the same 20 rows, "
                   "the same sums (called 2000, loaded 1990, fed 0) and the same digest ("));
    EXPECT_EQ(TextIn(form, "lblCentralPush"), "20 rows were pushed.");
    EXPECT_EQ(TextIn(form, "lblCentralWaiting"), "0 of 20 rows");
    EXPECT_THAT(TextIn(form, "lblCentralLast"), HasSubstr(":"));
  });
  EXPECT_EQ(SignText(), "Central: up to date");
  EXPECT_TRUE(Sign().isVisible());
  EXPECT_THAT(Sign().toolTip().toStdString(),
              HasSubstr("All rows of Y2026.TDB are in the central database."));
  EXPECT_EQ(ReadCentralSettings(*ini_),
            (CentralSettings{.connection = Connection(), .yard = "North"}));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(CentralDialogTest, TheWordsOfTheServerAreShownWhenTheTestFails) {
  OpenRows();
  Show();
  InForm([this](QWidget& form) {
    Type(form, "txtCentralConnection",
         CentralServer::Get().Connection(Database(), "nobody_of_this_name"));
    Click(form, "cmdCentralTest");
    ASSERT_TRUE(WaitForText(form, "lblCentralConnection", "Not connected:"));
    EXPECT_THAT(TextIn(form, "lblCentralConnection"),
                HasSubstr("role \"nobody_of_this_name\" does not exist"));
    const QPalette& colors = In<QLabel>(form, "lblCentralConnection").palette();
    EXPECT_NE(colors.color(QPalette::WindowText), form.palette().color(QPalette::WindowText));
  });
}

TEST_F(CentralDialogTest, TheTlsModeInForceIsShownWhenAnotherHostIsNotReached) {
  OpenRows();
  Show();
  InForm([this](QWidget& form) {
    Type(form, "txtCentralConnection", "hostaddr=192.0.2.1 connect_timeout=1 dbname=x user=y");
    Click(form, "cmdCentralTest");
    ASSERT_TRUE(WaitForText(form, "lblCentralConnection", "Not connected:"));
    EXPECT_THAT(TextIn(form, "lblCentralConnection"), EndsWith("TLS mode: verify-full."));
  });
}

TEST_F(CentralDialogTest, APasswordIsRefusedAndNotKept) {
  OpenRows();
  Show();
  InForm([](QWidget& form) {
    Type(form, "txtCentralConnection", "host=db.example password=secret");
    QTest::keyClick(&In<QLineEdit>(form, "txtCentralConnection"), Qt::Key_Return);
    EXPECT_THAT(TextIn(form, "lblCentralConnection"),
                StartsWith("a password does not belong into the connection"));
    Click(form, "cmdCentralTest");
    EXPECT_THAT(TextIn(form, "lblCentralConnection"), StartsWith("a password does not belong"));
  });
  EXPECT_EQ(ReadCentralSettings(*ini_), CentralSettings());
}

TEST_F(CentralDialogTest, AYardThatIsTypedBesideARefusedConnectionIsKept) {
  OpenRows();
  Show();
  InForm([](QWidget& form) {
    Type(form, "txtCentralConnection", "host=db.example password=secret");
    Type(form, "txtCentralYard", "South");
    QTest::keyClick(&In<QLineEdit>(form, "txtCentralYard"), Qt::Key_Return);
    EXPECT_EQ(In<QLineEdit>(form, "txtCentralYard").text(), u"South"_qs);
  });
  EXPECT_EQ(ReadCentralSettings(*ini_).yard, "South");
}

TEST_F(CentralDialogTest, ACopyOfWhatIsThereBecomesANewFile) {
  Set({.connection = Connection(), .yard = "North"});
  OpenRows();
  Show();
  const fs::path copy = folder_ / "COPY.TDB";
  chooser_.Choose(copy);
  InForm([&](QWidget& form) {
    Click(form, "cmdCentralPush");
    ASSERT_TRUE(WaitForText(form, "lblCentralPush", "20 rows were pushed."));
    In<QTabWidget>(form, "tabCentral").setCurrentIndex(1);
    auto& sources = In<QTableWidget>(form, "grdCentralSources");
    ASSERT_TRUE(WaitFor([&] { return sources.rowCount() == 1; }));
    EXPECT_EQ(sources.item(0, 0)->text(), u"Y2026.TDB"_qs);
    EXPECT_EQ(sources.item(0, 1)->text(), u"20"_qs);
    Click(form, "cmdCentralRestore");
    ASSERT_TRUE(WaitFor([&] { return !TextIn(form, "lblCentralRestore").empty(); }));
    EXPECT_EQ(TextIn(form, "lblCentralRestore"),
              "COPY.TDB has 20 rows now. Count, sums and digest are those of the central database. "
              "Open it with File, Open.");
  });
  EXPECT_EQ(Ask(copy, "SELECT count(*) FROM Transactions"), std::vector<std::string>{"20"});
}

TEST_F(CentralDialogTest, ARestoredFileGoesOnAsANewSourceByAWord) {
  Set({.connection = Connection(), .yard = "North"});
  OpenRows();
  Show();
  const fs::path copy = folder_ / "COPY.TDB";
  chooser_.Choose(copy);
  InForm([&](QWidget& form) {
    Click(form, "cmdCentralPush");
    ASSERT_TRUE(WaitForText(form, "lblCentralPush", "20 rows were pushed."));
    ASSERT_TRUE(
        WaitFor([&] { return In<QTableWidget>(form, "grdCentralSources").rowCount() == 1; }));
    In<QTabWidget>(form, "tabCentral").setCurrentIndex(1);
    Click(form, "cmdCentralRestore");
    ASSERT_TRUE(WaitFor([&] { return fs::exists(copy); }));
    ASSERT_TRUE(WaitForText(form, "lblCentralRestore", "COPY.TDB"));
  });
  Alter(copy, "INSERT INTO Transactions ([Transaction], Recipe, Type) VALUES (21, 'S', 'BATCH')");
  chooser_.Choose(copy);
  Choose(u"mnuFileOpenTransactionDB"_qs);
  InForm([&](QWidget& form) {
    EXPECT_FALSE(In<QPushButton>(form, "cmdCentralPushCopy").isVisible());
    Click(form, "cmdCentralPush");
    ASSERT_TRUE(WaitForText(form, "lblCentralPush", "Nothing was pushed: this file is a copy"));
    operator_.answers = {Answer::kYes};
    Click(form, "cmdCentralPushCopy");
    ASSERT_TRUE(WaitForText(form, "lblCentralPush", "1 row was pushed."));
  });
  EXPECT_TRUE(WaitFor([&] { return SignText() == "Central: up to date"; }));
}

TEST_F(CentralDialogTest, AReleaseShowsItsDifferencesAndBecomesANewFile) {
  Set({.connection = Connection(), .yard = "North"});
  Open(DatabaseKind::kRecipe);
  const fs::path office = MakeUserFile("OFFICE.RDB", DatabaseKind::kRecipe);
  Alter(office, "UPDATE Ingredient SET Name = 'BARLEY', Description = 'Barley' WHERE ID = 1");
  CentralConnection chief(CentralServer::Get().Connection(Database()));
  if (chief.Query("SELECT FROM pg_roles WHERE rolname = 'desk_nutritionist'").Count() == 0) {
    chief.Query("CREATE ROLE desk_nutritionist LOGIN IN ROLE vrx_nutritionist");
  }
  CentralConnection server(CentralServer::Get().Connection(Database(), "desk_nutritionist"));
  Publish(server, {.file = office, .note = "Barley comes"});
  Show();
  chooser_.Choose(folder_ / "NEW.RDB");
  InForm([this](QWidget& form) {
    In<QTabWidget>(form, "tabCentral").setCurrentIndex(2);
    EXPECT_FALSE(In<QPushButton>(form, "cmdCentralFetch").isEnabled());
    auto& differences = In<QTableWidget>(form, "grdCentralDifferences");
    ASSERT_TRUE(WaitFor([&] { return differences.rowCount() > 0; }));
    EXPECT_EQ(In<QTableWidget>(form, "grdCentralReleases").item(0, 2)->text(), u"Barley comes"_qs);
    EXPECT_EQ(TextIn(form, "lblCentralRelease"), "Differences from YARD.RDB: 2.");
    EXPECT_EQ(differences.item(0, 0)->text(), u"Ingredient 1: BARLEY"_qs);
    EXPECT_EQ(differences.item(0, 4)->text(), u"BARLEY"_qs);
    Click(form, "cmdCentralFetch");
    ASSERT_TRUE(WaitForText(form, "lblCentralRelease", "NEW.RDB has the recipes of release 1"));
    EXPECT_TRUE(WaitFor([&] {
      return !In<QTableWidget>(form, "grdCentralReleases").item(0, 3)->text().isEmpty();
    }));
  });
  EXPECT_TRUE(fs::exists(folder_ / "NEW.RDB"));
}

TEST_F(CentralDialogTest, TheSignOpensTheForm) {
  Set({.connection = Connection(), .yard = "North"});
  OpenRows();
  Show();
  ASSERT_TRUE(WaitFor([&] { return SignText() == "Central: 20 rows waiting"; }));
  const NextModal next([](QWidget& form) {
    EXPECT_EQ(form.objectName(), u"dlgCentral"_qs);
    Click(form, "cmdCentralClose");
  });
  Sign().click();
  EXPECT_TRUE(next.Seen());
}

TEST_F(CentralDialogTest, TheSignIsGoneWithTheFile) {
  Set({.connection = Connection(), .yard = "North"});
  OpenRows();
  Show();
  ASSERT_TRUE(WaitFor([&] { return SignText() == "Central: 20 rows waiting"; }));
  Choose(u"mnuFileCloseTransactionDB"_qs);
  EXPECT_FALSE(Sign().isVisible());
}

TEST_F(CentralDialogTest, AutomaticPushIsOffUntilItIsTurnedOn) {
  Set({.connection = Connection(), .yard = "North"});
  OpenRows();
  Show();
  InForm([](QWidget& form) {
    auto& automatic = In<QCheckBox>(form, "chkCentralAutomatic");
    EXPECT_FALSE(automatic.isChecked());
    QTest::keyClick(&automatic, Qt::Key_Space);
  });
  EXPECT_TRUE(ReadCentralSettings(*ini_).automatic);
}

}  // namespace
}  // namespace vrx::testing
