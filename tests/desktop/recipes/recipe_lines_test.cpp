#include "desktop/recipes/recipe_lines.h"

#include <QEvent>
#include <functional>
#include <utility>

#include <sqlite3.h>

#include "desktop/recipes/recipes_fixture.h"
#include "feed/recipe_columns.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Runs when a step is about to be flushed to the disk; true lets it pass.
class CommitHook {
 public:
  CommitHook(SQLite::Database& database, std::function<bool()> passes)
      : database_(database), passes_(std::move(passes)) {
    sqlite3_commit_hook(
        database.getHandle(),
        [](void* hook) { return static_cast<CommitHook*>(hook)->passes_() ? 0 : 1; }, this);
  }
  ~CommitHook() { sqlite3_commit_hook(database_.getHandle(), nullptr, nullptr); }
  CommitHook(const CommitHook&) = delete;
  CommitHook& operator=(const CommitHook&) = delete;
  CommitHook(CommitHook&&) = delete;
  CommitHook& operator=(CommitHook&&) = delete;

 private:
  SQLite::Database& database_;
  std::function<bool()> passes_;
};

// The lines of a recipe by weight, and what they looked like at each painting.
class RecipeLinesTest : public RecipesFixture {
 protected:
  void SetUp() override {
    AddCornHaySupplement(kByWeight);
    Enter();
    Show(kByWeight);
    Grid().setFocus();
    RunEvents();
    Grid().viewport()->installEventFilter(&painted_);
    Find<QLabel>("lblTargetTotal").installEventFilter(&painted_);
  }

  // Types a weight over that of the first line, and ends the entry.
  void EnterWeight(std::string_view weight) {
    Click(0, kColumnTarget);
    Type(weight);
    painted_.Forget();
    Press(Qt::Key_Return);
  }

  class Painted : public QObject {
   public:
    explicit Painted(RecipeLinesTest& fixture) : fixture_(fixture) {}

    const std::vector<std::string>& Shares() const { return shares_; }
    const std::string& Total() const { return total_; }
    void Forget() {
      shares_.clear();
      total_.clear();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
      if (event->type() == QEvent::Paint) {
        if (watched == fixture_.Grid().viewport()) {
          shares_ = fixture_.Column(kColumnRationPercent);
        } else {
          total_ = fixture_.Label("lblTargetTotal");
        }
      }
      return false;
    }

   private:
    RecipeLinesTest& fixture_;
    std::vector<std::string> shares_;
    std::string total_;
  };

  Painted painted_{*this};
};

TEST_F(RecipeLinesTest, TheFiguresOfACellAreOnTheScreenBeforeTheyAreOnDisk) {
  int steps = 0;
  const CommitHook hook(Database(), [&] {
    ++steps;
    EXPECT_THAT(painted_.Shares(), ElementsAre("50.000", "50.000", "0.000", ""));
    EXPECT_EQ(painted_.Total(), "1700");
    EXPECT_TRUE(Grid().IsEditing());
    return true;
  });
  EnterWeight("800");
  EXPECT_EQ(steps, 2);  // then the history of edits empties its temporary table
  EXPECT_FALSE(Grid().IsEditing());
  ExpectStored();
}

TEST_F(RecipeLinesTest, FiguresThatTheDiskDoesNotTakeGiveWayToTheStoredOnes) {
  const std::vector<std::string> before = Column(kColumnRationPercent);
  settings_.SetEnableBeeperOn(false);
  {
    const CommitHook hook(Database(), [] { return false; });
    EnterWeight("800");
    EXPECT_THAT(painted_.Shares(), ElementsAre("50.000", "50.000", "0.000", ""));
    EXPECT_TRUE(Grid().IsEditing());
    op_.answers.push_back(Answer::kStay);
    RunEvents();
    EXPECT_EQ(op_.boxes.size(), 1U);
    EXPECT_TRUE(Grid().IsEditing());
    EXPECT_EQ(painted_.Shares(), before);
    EXPECT_EQ(painted_.Total(), "2100");
  }
  Press(Qt::Key_Return);
  EXPECT_FALSE(Grid().IsEditing());
  EXPECT_EQ(Label("lblTargetTotal"), "1700");
  ExpectStored();
}

}  // namespace
}  // namespace vrx::testing
