#include "desktop/records/record_pages_fixture.h"

#include <QAbstractItemView>
#include <QTabBar>
#include <QTest>

#include "database/connection.h"
#include "widgets/qt_text.h"

namespace vrx::testing {
namespace {

void AddLine(SQLite::Database& database, int recipe, int ingredient, const std::string& target,
             const std::string& percent, int sequence) {
  RecipeLineRecord line{.recipe_id = std::to_string(recipe),
                        .ingredient = std::to_string(ingredient),
                        .target = target,
                        .dry_matter_percent = "88",
                        .sequence = sequence,
                        .ingredient_percent = percent};
  WriteRecipeLine(database, line);
}

}  // namespace

RecordPagesFixture::RecordPagesFixture() : path_(MakeUserFile("YARD.RDB", DatabaseKind::kRecipe)) {
  settings_.SetEnableBeeperOn(true);
  settings_.SetAutoAbbreviateOn(true);
  SQLite::Database database = OpenDatabase(path_, Access::kWrite, std::chrono::milliseconds{20});
  database.exec("BEGIN");
  WriteIngredient(database, {kCorn, "CORN", "Corn Rolled", 88, false});
  WriteIngredient(database, {kHay, "HAY", "Hay chopped", 90, false});
  const std::string types = "WPH";
  for (int id = 1; id <= 3; ++id) {
    RecipeRecord recipe = ReadRecipe(database, id);
    recipe.name = "REC" + std::to_string(id);
    recipe.description = "Recipe";
    recipe.batch_type = types.substr(static_cast<std::size_t>(id) - 1, 1);
    recipe.ration_target = "5000";
    WriteRecipe(database, recipe);
    AddLine(database, id, kCorn, "1200", "60", 1);
    AddLine(database, id, kHay, "800", "40", 2);
  }
  database.exec("COMMIT");
}

void RecordPagesFixture::Enter(int tab) {
  Show();
  chooser_.Choose(path_);
  Choose(QStringLiteral("mnuFileOpenRecipeDB"));
  QTabBar& strip = *Tabs().tabBar();
  QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(tab).center());
  RunEvents();
  MakeStale();
  operator_.beeps = 0;
  operator_.boxes.clear();
}

void RecordPagesFixture::MakeStale() {
  Database().exec("UPDATE History SET Modified = NULL");
  Database().exec(
      "UPDATE RecipeRation SET [Ration%] = '11.111', DryMatter = '4321', BatchTarget = '1234'");
}

std::string RecordPagesFixture::Modified() {
  return Database().execAndGet("SELECT ifnull(Modified, '') FROM History").getString();
}

void RecordPagesFixture::Type(std::string_view text) {
  for (const QChar character : ToQString(text)) {
    QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key_unknown,
                        QString(character), Qt::NoModifier);
  }
}

void RecordPagesFixture::PressKey(Qt::Key key) {
  QTest::keyClick(QApplication::focusWidget(), key);
}

void RecordPagesFixture::TypeOver(const char* box, std::string_view text) {
  Box(box).setFocus();
  Box(box).selectAll();
  if (text.empty()) {
    PressKey(Qt::Key_Backspace);
  }
  Type(text);
}

void RecordPagesFixture::Fill(const char* box, std::string_view text) {
  TypeOver(box, text);
  PressKey(Qt::Key_Tab);
}

void RecordPagesFixture::Press(const char* button) {
  QTest::mouseClick(&Find<QPushButton>(QLatin1String(button)), Qt::LeftButton);
}

void RecordPagesFixture::Tick(const char* check) {
  Check(check).setFocus(Qt::MouseFocusReason);
  PressKey(Qt::Key_Space);
}

void RecordPagesFixture::ChooseIn(const char* list, int index) {
  QComboBox& box = List(list);
  box.setFocus();
  box.showPopup();
  box.view()->setCurrentIndex(box.model()->index(index, 0));
  QTest::keyClick(box.view(), Qt::Key_Return);
  box.hidePopup();
  Window().activateWindow();
  RunEvents();
}

QModelIndex RecordPagesFixture::Cell(const char* grid, int id, const std::string& field) {
  const RecordListModel& model = Grid(grid).Model();
  for (int column = 0; column < model.columnCount(); ++column) {
    if (model.Column(column).field == field) {
      return model.index(model.RowOf(id), column);
    }
  }
  throw std::logic_error("no column " + field);
}

std::string RecordPagesFixture::CellText(const char* grid, int id, const std::string& field) {
  return Cell(grid, id, field).data().toString().toStdString();
}

void RecordPagesFixture::ClickCell(const char* grid, int id, const std::string& field) {
  RecordListGrid& list = Grid(grid);
  const QModelIndex cell = Cell(grid, id, field);
  list.scrollTo(cell);
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(cell).center());
}

void RecordPagesFixture::EditCell(const char* grid, int id, const std::string& field,
                                  std::string_view text) {
  ClickCell(grid, id, field);
  PressKey(Qt::Key_F2);
  if (text.empty()) {
    PressKey(Qt::Key_Backspace);
  }
  Type(text);
}

int RecordPagesFixture::CurrentId(const char* grid) {
  const QModelIndex current = Grid(grid).currentIndex();
  return current.isValid() ? Grid(grid).Model().IdOf(current.row()) : 0;
}

}  // namespace vrx::testing
