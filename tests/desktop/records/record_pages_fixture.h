#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <string>
#include <string_view>
#include <vector>

#include "database/records.h"
#include "desktop/main_window/main_window_fixture.h"
#include "desktop/records/record_list.h"
#include "widgets/fields.h"

namespace vrx::testing {

inline constexpr int kCorn = 4;
inline constexpr int kHay = 7;

// The whole window with a recipe database open: CORN and HAY, and the recipes 1 by weight, 2 by
// percentage and 3 per head, each with a line of both.
class RecordPagesFixture : public MainWindowFixture {
 protected:
  RecordPagesFixture();

  // Opens the database and selects a tab like the operator.
  void Enter(int tab);

  // Showing a recipe recomputes it: makes the stored figures stale again and clears `Modified`.
  void MakeStale();

  SQLite::Database& Database() {
    return *Main().Databases().Bound(DatabaseKind::kRecipe).connection;
  }
  std::string Modified();
  RecipeLineRecord Line(int recipe, std::size_t line = 0) {
    return ReadRecipeLines(Database(), recipe).at(line);
  }

  FilteredEdit& Box(const char* name) { return Find<FilteredEdit>(QLatin1String(name)); }
  QComboBox& List(const char* name) { return Find<QComboBox>(QLatin1String(name)); }
  QCheckBox& Check(const char* name) { return Find<QCheckBox>(QLatin1String(name)); }
  RecordListGrid& Grid(const char* name) { return Find<RecordListGrid>(QLatin1String(name)); }
  std::string Shown(const char* box) { return Box(box).Text(); }
  std::string Item(const char* list, int index) { return List(list).itemText(index).toStdString(); }

  // Focuses a box, overwrites its text and presses the Tab key.
  void Fill(const char* box, std::string_view text);
  void TypeOver(const char* box, std::string_view text);
  static void Type(std::string_view text);
  static void PressKey(Qt::Key key);
  void Press(const char* button);
  void Tick(const char* check);

  // Opens the list and selects an item with the keys of the open list.
  void ChooseIn(const char* list, int index);

  // A cell of a grid, by the record's ID and the column's field.
  QModelIndex Cell(const char* grid, int id, const std::string& field);
  std::string CellText(const char* grid, int id, const std::string& field);
  void ClickCell(const char* grid, int id, const std::string& field);
  void EditCell(const char* grid, int id, const std::string& field, std::string_view text);
  int CurrentId(const char* grid);

  std::filesystem::path path_;
};

}  // namespace vrx::testing
