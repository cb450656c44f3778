#include "desktop/recipes/recipes_fixture.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <chrono>

#include "database/templates.h"
#include "desktop/app/captions.h"
#include "feed/ration.h"
#include "feed/recipe_columns.h"
#include "widgets/fields.h"
#include "widgets/qt_text.h"

namespace vrx::testing {
namespace {

// As the window system delivers a key.
QWidget* KeyReceiver() {
  QWidget* receiver = QApplication::focusWidget();
  if (QWidget* const popup = QApplication::activePopupWidget(); popup != nullptr) {
    receiver = popup->focusWidget() == nullptr ? popup : popup->focusWidget();
  }
  if (receiver == nullptr) {
    throw std::logic_error("nothing has the focus");
  }
  return receiver;
}

}  // namespace

RecipesFixture::RecipesFixture() {
  const std::filesystem::path path = folder_ / "YARD.RDB";
  CreateTemplate(path, DatabaseKind::kRecipe);
  constexpr std::chrono::milliseconds kNoPatience{20};
  bound_ = BindUserDatabase(path, kNoPatience);
  Database().exec("PRAGMA synchronous = OFF");  // hundreds of commits, and no power to lose
  settings_.SetEnableBeeperOn(true);
  WriteIngredient(Database(), {kCorn, "CORN", "Corn Rolled", 88, false});
  WriteIngredient(Database(), {kHay, "HAY", "Hay chopped", 90, false});
  WriteIngredient(Database(), {kSupp, "SUPP", "Mineral Premix", 0, true});
  WriteIngredient(Database(), {kOats, "OATS", "Oats", 100, false});
  const std::string codes = "WH%P";
  for (int id = 1; id <= 4; ++id) {
    SetRecipe(id, &RecipeRecord::batch_type, codes.substr(static_cast<std::size_t>(id) - 1, 1));
    SetRecipe(id, &RecipeRecord::ration_target, "5000");
  }
  form_ = std::make_unique<QWidget>();
  page_ = new RecipesPage(services_, delay_, abbreviation_, undo_, form_.get());
  auto* const layout = new QVBoxLayout(form_.get());
  layout->addWidget(page_);
  new EnterAsTab(form_.get());
  QObject::connect(page_, &RecordPage::RecordChanged, page_, [this] { ++changes_; });
  QObject::connect(page_, &RecordPage::Moved, page_,
                   [this](int position) { moved_.push_back(position); });
  QObject::connect(page_, &RecordPage::CancelAllowed, page_,
                   [this](bool allowed) { cancel_allowed_.push_back(allowed); });
  constexpr QSize kSize{990, 480};
  form_->resize(kSize);
  ApplyCaptionTable(*form_);
}

RecipesFixture::~RecipesFixture() { page_->ReleaseViews(); }

void RecipesFixture::Enter() {
  page_->Rebind(DatabaseKind::kRecipe, bound_);
  form_->show();
  form_->activateWindow();
  RunEvents();
  page_->LoadIdLists();
  page_->TabChanged(kTab, 3);
  page_->Prepare();
  RunEvents();
  op_.beeps = 0;
}

void RecipesFixture::RunEvents() {
  constexpr int kRounds = 3;
  for (int round = 0; round < kRounds; ++round) {
    QApplication::processEvents();
  }
}

void RecipesFixture::ComeBack() {
  form_->activateWindow();
  RunEvents();
}

void RecipesFixture::SetRecipe(int recipe, std::string RecipeRecord::*field,
                               const std::string& text) {
  RecipeRecord record = Stored(recipe);
  record.*field = text;
  WriteRecipe(Database(), record);
}

void RecipesFixture::SetHeadCount(int recipe, int head_count) {
  RecipeRecord record = Stored(recipe);
  record.head_count = head_count;
  WriteRecipe(Database(), record);
}

void RecipesFixture::AddStoredLine(int recipe, int ingredient, const std::string& target,
                                   const std::string& percent) {
  const IngredientRecord of = ReadIngredient(Database(), ingredient);
  const auto sequence = static_cast<int>(ReadRecipeLines(Database(), recipe).size()) + 1;
  RecipeLineRecord line{.recipe_id = std::to_string(recipe),
                        .ingredient = std::to_string(ingredient),
                        .target = target,
                        .dry_matter_percent = std::to_string(of.dry_matter_percent),
                        .sequence = sequence,
                        .hand_add = of.hand_add,
                        .ingredient_percent = percent};
  RecalcLineDryMatter(Stored(recipe).batch_type, line);
  WriteRecipeLine(Database(), line);
}

void RecipesFixture::AddCornHaySupplement(int recipe) {
  AddStoredLine(recipe, kCorn, "1200", "62.50");
  AddStoredLine(recipe, kHay, "800", "30.00");
  AddStoredLine(recipe, kSupp, "100", "7.50");
}

void RecipesFixture::Press(Qt::Key key, Qt::KeyboardModifiers held) {
  QTest::keyClick(KeyReceiver(), key, held);
}

void RecipesFixture::Type(std::string_view text) {
  for (const QChar character : ToQString(text)) {
    QTest::sendKeyEvent(QTest::Click, KeyReceiver(), Qt::Key_unknown, QString(character),
                        Qt::NoModifier);
  }
}

void RecipesFixture::TypeInto(const char* box, std::string_view text) {
  auto& edit = Find<FilteredEdit>(box);
  edit.setFocus();
  edit.selectAll();
  Type(text);
}

std::string RecipesFixture::Focused() {
  const QWidget* const focus = QApplication::focusWidget();
  return focus == nullptr ? std::string() : focus->objectName().toStdString();
}

std::string RecipesFixture::Cell(int row, RecipeColumn column) {
  return Grid().model()->index(row, column).data().toString().toStdString();
}

std::vector<std::string> RecipesFixture::Column(RecipeColumn column) {
  std::vector<std::string> cells;
  cells.reserve(static_cast<std::size_t>(Rows()));
  for (int row = 0; row < Rows(); ++row) {
    cells.push_back(Cell(row, column));
  }
  return cells;
}

void RecipesFixture::Click(int row, RecipeColumn column) {
  const QModelIndex cell = Grid().model()->index(row, column);
  Grid().scrollTo(cell);
  const QRect place = Grid().visualRect(cell);
  QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {},
                    QPoint(place.left() + 4, place.center().y()));
  RunEvents();
}

void RecipesFixture::Choose(const char* list, int index) {
  auto& box = Find<QComboBox>(list);
  box.setCurrentIndex(index);
  Q_EMIT box.activated(index);
  RunEvents();
}

void RecipesFixture::AddByKeys(std::string_view ingredient, std::string_view amount) {
  Type(ingredient);
  Press(Qt::Key_Return);
  Type(amount);
  Press(Qt::Key_Return);
}

void RecipesFixture::ExpectStored() {
  const std::vector<RecipeLineRecord> lines = ReadRecipeLines(Database(), page_->Position());
  ASSERT_LE(static_cast<int>(lines.size()), Rows());
  for (std::size_t line = 0; line < lines.size(); ++line) {
    const int row = static_cast<int>(line);
    EXPECT_EQ(Cell(row, kColumnTarget), lines[line].target);
    EXPECT_EQ(Cell(row, kColumnRationPercent), lines[line].ration_percent);
    EXPECT_EQ(Cell(row, kColumnDryMatterPercent), lines[line].dry_matter_percent);
    EXPECT_EQ(Cell(row, kColumnDryMatter), lines[line].dry_matter);
    EXPECT_EQ(Cell(row, kColumnBatchTarget), lines[line].batch_target);
    EXPECT_EQ(Cell(row, kColumnIngredientPercent), PercentText(lines[line].ingredient_percent));
    EXPECT_EQ(Cell(row, kColumnHandAdd), lines[line].hand_add ? "Yes" : "No");
  }
}

}  // namespace vrx::testing
