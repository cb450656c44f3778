// The costs of the Recipes tab: from the key that ends the entry of a cell to all figures of 32
// lines on the screen, the tab from its selection to the screen, and each recipe of a full database
// from the navigator's button to the screen. Real widgets, drawn without a display; every edit is
// stored with a full flush. The figures of a cell are on the screen before the flush, so that the
// disk does not delay them; the time of the key including the flush is reported too.

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "database/bound_database.h"
#include "database/records.h"
#include "database/templates.h"
#include "desktop/recipes/recipe_grid.h"
#include "desktop/recipes/recipes_page.h"
#include "feed/key_filters.h"
#include "feed/recipe_columns.h"
#include "figures.h"
#include "measure.h"
#include "presenter/command_states.h"
#include "presenter/undo_commands.h"
#include "settings/settings.h"
#include "support/temp_folder.h"
#include "support/test_services.h"
#include "widgets/fields.h"

namespace vrx::bench {
namespace {

constexpr double kKeyLimit = 16;   // ms: a frame of the display
constexpr double kStepLimit = 20;  // ms
constexpr int kKeys = 200;
constexpr std::chrono::milliseconds kBusyTimeout{1000};

std::filesystem::path MakeFullDatabase(const std::filesystem::path& path) {
  CreateTemplate(path, DatabaseKind::kRecipe);
  const BoundDatabase bound = BindUserDatabase(path, kBusyTimeout);
  SQLite::Database& database = *bound.connection;
  SQLite::Transaction filling(database);
  for (int id = 1; id <= kIngredientCount; ++id) {
    const std::string name = "I" + std::to_string(id);
    WriteIngredient(database, {id, name, name, 50 + id % 50, id % 7 == 0});
  }
  const std::string types = "WH%P";
  for (int id = 1; id <= kRecipeCount; ++id) {
    RecipeRecord recipe = ReadRecipe(database, id);
    recipe.description = "Recipe";
    recipe.batch_type = types.substr(static_cast<std::size_t>(id) % types.size(), 1);
    recipe.head_count = 250;
    recipe.ration_target = "50000";
    WriteRecipe(database, recipe);
    for (int line = 1; line <= kMaxRecipeLines; ++line) {
      RecipeLineRecord cells{.recipe_id = std::to_string(id),
                             .ingredient = std::to_string(1 + (id + line) % kIngredientCount),
                             .target = std::to_string(100 + line),
                             .dry_matter_percent = "88",
                             .sequence = line,
                             .ingredient_percent = "3.12"};
      WriteRecipeLine(database, cells);
    }
  }
  filling.commit();
  return path;
}

// Of a key that ends the entry of a cell, in milliseconds: until all figures that follow from it
// are on the screen, and until it is stored and the next cell is ready for input.
struct KeyTimes {
  double figures;
  double whole;
};

// The figures on the screen, and their time, when the database began to flush the step to disk.
class FlushWatch : public QObject {
 public:
  FlushWatch(const QWidget& page, SQLite::Database& database)
      : grid_(*page.findChild<RecipeGrid*>(QStringLiteral("grdREC"))),
        total_(*page.findChild<QLabel*>(QStringLiteral("lblTargetTotal"))),
        database_(database) {
    grid_.viewport()->installEventFilter(this);
    total_.installEventFilter(this);
    sqlite3_commit_hook(
        database.getHandle(),
        [](void* watch) {
          static_cast<FlushWatch*>(watch)->Flushes();
          return 0;
        },
        this);
  }
  ~FlushWatch() override { sqlite3_commit_hook(database_.getHandle(), nullptr, nullptr); }
  FlushWatch(const FlushWatch&) = delete;
  FlushWatch& operator=(const FlushWatch&) = delete;
  FlushWatch(FlushWatch&&) = delete;
  FlushWatch& operator=(FlushWatch&&) = delete;

  // Milliseconds from the start of the watch to the flush. Throws if the current figures were not
  // on the screen by then.
  double Began() const {
    if (figures_at_flush_ != Figures() || total_at_flush_ != total_.text()) {
      throw Error("the figures were not drawn before the flush");
    }
    return flush_;
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      if (watched == &total_) {
        drawn_total_ = total_.text();
      } else {
        drawn_figures_ = Figures();
      }
    }
    return false;
  }

 private:
  void Flushes() {
    flush_ = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - began_)
                 .count();
    figures_at_flush_ = drawn_figures_;
    total_at_flush_ = drawn_total_;
  }

  QString Figures() const {
    QString figures;
    for (int row = 0; row < grid_.model()->rowCount(); ++row) {
      for (int column = 0; column < grid_.model()->columnCount(); ++column) {
        figures += grid_.model()->index(row, column).data().toString() + QLatin1Char(';');
      }
    }
    return figures;
  }

  RecipeGrid& grid_;
  QLabel& total_;
  SQLite::Database& database_;
  std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
  QString drawn_figures_;
  QString drawn_total_;
  double flush_ = 0;
  QString figures_at_flush_;
  QString total_at_flush_;
};

// The shown page, with a database where each recipe is full.
class ShownPage {
 public:
  ShownPage() {
    test_.settings.SetEnableBeeperOn(false);
    form_.resize(1008, 560);
    (new QVBoxLayout(&form_))->addWidget(&page_);
    new EnterAsTab(&form_);
    page_.Rebind(DatabaseKind::kRecipe, bound_);
    form_.show();
    form_.activateWindow();
    page_.LoadIdLists();
    page_.Prepare();
    Draw();
  }
  ~ShownPage() { page_.ReleaseViews(); }
  ShownPage(const ShownPage&) = delete;
  ShownPage& operator=(const ShownPage&) = delete;
  ShownPage(ShownPage&&) = delete;
  ShownPage& operator=(ShownPage&&) = delete;

  RecipesPage& Page() { return page_; }
  SQLite::Database& Database() { return *bound_.connection; }

  static void Draw() {
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
  }

  static void Press(int key, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(QApplication::focusWidget(), &press);
  }

  // Types a weight into a line and ends the entry.
  KeyTimes EnterWeight(int line, const std::string& weight) {
    auto& grid = *page_.findChild<RecipeGrid*>(QStringLiteral("grdREC"));
    grid.setFocus();
    if (!grid.GoTo(line, kColumnTarget)) {
      throw Error("the grid does not move");
    }
    for (const char digit : weight) {
      Press(Qt::Key_0 + (digit - '0'), QString(QLatin1Char(digit)));
    }
    Draw();
    const FlushWatch watch(page_, *bound_.connection);
    const double whole = Milliseconds([] {
      Press(Qt::Key_Return, QStringLiteral("\r"));
      Draw();
    });
    return {.figures = watch.Began(), .whole = whole};
  }

 private:
  testing::TempFolder folder_;
  testing::TestServices test_;
  GeneralDelay delay_{test_.pump};
  AutoAbbreviation abbreviation_;
  BoundDatabase bound_ = BindUserDatabase(MakeFullDatabase(folder_ / "FULL.RDB"), kBusyTimeout);
  QWidget form_;
  UndoCommands undo_{test_.services};
  RecipesPage page_{test_.services, delay_, abbreviation_, undo_};
};

struct Keys {
  std::vector<double> figures;
  std::vector<double> whole;
};

Keys Keystrokes(ShownPage& shown, int recipe) {
  shown.Page().GoTo(recipe);
  Keys keys;
  for (int key = 0; key < kKeys; ++key) {
    const KeyTimes times =
        shown.EnterWeight(key % (kMaxRecipeLines - 1), std::to_string(1000 + key));
    keys.figures.push_back(times.figures);
    keys.whole.push_back(times.whole);
  }
  return keys;
}

std::vector<double> Steps(ShownPage& shown) {
  std::vector<double> times;
  times.reserve(kRecipeCount);
  shown.Page().GoTo(kRecipeCount);
  for (int step = 0; step < kRecipeCount; ++step) {
    times.push_back(Milliseconds([&] {
      shown.Page().Navigate(kNavigateNext);
      ShownPage::Draw();
    }));
  }
  return times;
}

// The tab's own delays take no time here.
std::vector<double> Entrances(ShownPage& shown) {
  constexpr int kTabPens = 2;
  std::vector<double> times;
  times.reserve(kRecipeCount);
  for (int entrance = 0; entrance < kRecipeCount; ++entrance) {
    times.push_back(Milliseconds([&] {
      shown.Page().TabChanged(1, kTabPens);
      shown.Page().Prepare();
      ShownPage::Draw();
    }));
  }
  return times;
}

std::string Spread(const std::vector<double>& times) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "median %.1f ms of %zu", Median(times), times.size());
  return text.data();
}

double Slowest(const std::vector<double>& times) {
  return *std::max_element(times.begin(), times.end());
}

int Run() {
  ShownPage shown;
  Figures figures;
  constexpr int kByWeight = 4;
  const Keys keys = Keystrokes(shown, kByWeight);
  figures.Limited("key to figures, slowest ms", Slowest(keys.figures), kKeyLimit,
                  Spread(keys.figures));
  figures.Specified("key until it is stored, slowest ms", Slowest(keys.whole), Spread(keys.whole));
  const std::vector<double> first = Steps(shown);
  figures.Specified("first step to a recipe, computed and stored, slowest ms", Slowest(first),
                    Spread(first));
  shown.Database().exec("PRAGMA synchronous = OFF");
  const std::vector<double> steps = Steps(shown);
  figures.Limited("step to a recipe, slowest ms", Slowest(steps), kStepLimit, Spread(steps));
  const std::vector<double> entrances = Entrances(shown);
  figures.Limited("entrance of the tab, slowest ms", Slowest(entrances), kStepLimit,
                  Spread(entrances));
  return figures.Over() == 0 ? 0 : 1;
}

}  // namespace
}  // namespace vrx::bench

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  try {
    return vrx::bench::Run();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 2;
  }
}
