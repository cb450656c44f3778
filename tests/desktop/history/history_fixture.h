#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QTabBar>
#include <QTest>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "database/connection.h"
#include "database/identity.h"
#include "desktop/history/history_table.h"
#include "desktop/main_window/main_window_fixture.h"
#include "presenter/database_identity.h"
#include "support/small_history.h"

namespace vrx::testing {

// The window with the small history and its recipes open and the Batched/Fed tab shown.
class HistoryFixture : public MainWindowFixture {
 protected:
  HistoryFixture() {
    settings_.SetEnableBeeperOn(false);
    SmallHistory(folder_, "SMALL.TDB");
    SmallRecipes(folder_, "SMALL.RDB");
    MakeUsers(Transactions(), kUserTransDb);
    MakeUsers(Recipes(), kUserRecipeDb);
  }

  std::filesystem::path Transactions() const { return folder_ / "SMALL.TDB"; }
  std::filesystem::path Recipes() const { return folder_ / "SMALL.RDB"; }

  void MakeUsers(const std::filesystem::path& path, std::string_view type) {
    DatabaseIdentity identity(operator_, calendar_, settings_);
    identity.SetDatabaseType(path, type);
    identity.SetDatabaseUoM(path, "LB");
  }

  void OpenTransactions() {
    chooser_.Choose(Transactions());
    Choose(u"mnuFileOpenTransactionDB"_qs);
  }
  void OpenRecipes() {
    chooser_.Choose(Recipes());
    Choose(u"mnuFileOpenRecipeDB"_qs);
  }
  void ShowTab() {
    Show();
    OpenRecipes();
    OpenTransactions();
    RunEvents();
    operator_.boxes.clear();
  }
  void GoToTab(int tab) {
    QTest::mouseClick(Tabs().tabBar(), Qt::LeftButton, {}, Tabs().tabBar()->tabRect(tab).center());
  }

  // Runs events until the condition holds: a thread that reads has its own time.
  bool Until(const std::function<bool()>& condition) {
    constexpr std::chrono::seconds kLongest{60};  // of a busy machine
    const auto end = std::chrono::steady_clock::now() + kLongest;
    while (!condition() && std::chrono::steady_clock::now() < end) {
      pump_.Pump(Milliseconds{20});
      RunEvents();
      std::this_thread::yield();
    }
    return condition();
  }

  // Runs a statement of another program.
  void Alter(const std::filesystem::path& path, const std::string& statement) {
    SQLite::Database database = OpenDatabase(path, Access::kWrite);
    database.exec("PRAGMA synchronous=OFF");
    database.exec(statement);
  }

  // Selects an item of a list with the keys that an operator would press.
  void ChooseItem(const QString& list, int item) {
    auto& box = Find<QComboBox>(list);
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_Down);
    QAbstractItemView* const items = box.view();
    QTest::keyClick(items, Qt::Key_Home);
    for (int i = 0; i < item; ++i) {
      QTest::keyClick(items, Qt::Key_Down);
    }
    QTest::keyClick(items, Qt::Key_Return);
    RunEvents();
  }
  void ChooseGroup(int group) { ChooseItem(u"lstGroupBy"_qs, group); }
  void PickName(const QString& name) {
    const int item = Find<QComboBox>(u"cboColName"_qs).findText(name);
    if (item < 0) {
      throw std::logic_error("no name " + name.toStdString());
    }
    ChooseItem(u"cboColName"_qs, item);
  }

  void Click(const QString& button) {
    auto& found = Find<QAbstractButton>(button);
    QTest::mouseClick(&found, Qt::LeftButton, {}, {8, found.height() / 2});
    RunEvents();
  }
  void ExpandAll(bool on) {
    if (Find<QAbstractButton>(u"chkExpandAll"_qs).isChecked() != on) {
      Click(u"chkExpandAll"_qs);
    }
  }

  HistoryTableView& Grid() { return Find<HistoryTableView>(u"grdTRANS"_qs); }
  HistoryHeader& Header() { return Grid().Header(); }
  // On the current tab, because other pages have controls of the same name.
  bool Visible(const QString& control) {
    const auto* const found = Tabs().currentWidget()->findChild<QWidget*>(control);
    if (found == nullptr) {
      throw std::logic_error("no control " + control.toStdString());
    }
    return found->isVisible();
  }
  std::string LabelText(const QString& label) {
    return Tabs().currentWidget()->findChild<QLabel*>(label)->text().toStdString();
  }
  std::string GroupText() { return Find<QComboBox>(u"lstGroupBy"_qs).currentText().toStdString(); }

  // The lines of the table once all totals are read, in the format of ShownLines.
  std::vector<std::string> Lines() {
    constexpr std::int64_t kAllRecords = 1'000'000;
    Grid().Model().ReadSums(0, Grid().Model().rowCount() - 1, kAllRecords);
    std::vector<std::string> lines;
    for (int row = 0; row < Grid().Model().rowCount(); ++row) {
      const ShownRow& shown = Grid().Model().RowAt(row);
      const std::string depth = std::to_string(shown.depth);
      if (shown.kind == HistoryRowKind::kGroup) {
        lines.push_back("[" + depth + "] " + shown.caption);
      } else {
        lines.push_back((shown.kind == HistoryRowKind::kTotal ? "=" : "") + depth + ": " +
                        Cells(row));
      }
    }
    return lines;
  }
  std::string Cells(int row) {
    QStringList cells;
    for (const ShownColumn& shown : Header().Shown()) {
      cells << Grid().Model().index(row, shown.column - 1).data().toString();
    }
    return cells.join(u'|').toStdString();
  }
  std::vector<std::string> Captions() {
    std::vector<std::string> captions;
    for (const ShownColumn& shown : Header().Shown()) {
      captions.push_back(Grid()
                             .Model()
                             .headerData(shown.column - 1, Qt::Horizontal, Qt::DisplayRole)
                             .toString()
                             .toStdString());
    }
    return captions;
  }

  // The center of a row, and of the mark of a group row.
  QPoint RowPoint(int row) {
    return {Grid().viewport()->width() / 2,
            Grid().rowViewportPosition(row) + Grid().rowHeight(row) / 2};
  }
  QPoint MarkPoint(int row) {
    return HistoryRowPainter::MarkOf(Grid().Model().RowAt(row).depth,
                                     {0, Grid().rowViewportPosition(row),
                                      Grid().viewport()->width(), Grid().rowHeight(row)})
        .center();
  }
  void ClickRow(int row) {
    QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, RowPoint(row));
  }
  void ClickMark(int row) {
    QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, MarkPoint(row));
  }
  void Press(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&Grid(), static_cast<Qt::Key>(key), modifiers);
    RunEvents();
  }
  QPoint SectionPoint(int column) {
    return {Header().sectionViewportPosition(column - 1) + Header().sectionSize(column - 1) / 2,
            Header().height() / 2};
  }
  void ClickHeader(int column) {
    QTest::mouseClick(Header().viewport(), Qt::LeftButton, {}, SectionPoint(column));
    RunEvents();
  }
};

}  // namespace vrx::testing
