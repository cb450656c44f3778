#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/history/history_page.h"
#include "desktop/history/history_table.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HistoryNavigatorTest : public ::testing::Test {
 protected:
  HistoryNavigatorTest() {
    QObject::connect(&navigator_, &HistoryNavigator::RowChosen,
                     [this](int row) { chosen_.push_back(row); });
  }

  // The buttons that are enabled, first to last.
  std::string EnabledAt(int row, int rows) {
    navigator_.ShowCount(rows);
    navigator_.ShowRow(row);
    std::string enabled;
    for (int button = 0; button < 4; ++button) {
      enabled +=
          navigator_.findChild<QPushButton*>(QStringLiteral("cmdHistoryNavigate(%1)").arg(button))
                  ->isEnabled()
              ? 'x'
              : '.';
    }
    return enabled;
  }
  void Type(const QString& number) {
    auto* const box = navigator_.findChild<FilteredEdit*>(QStringLiteral("txtHistoryRow"));
    box->setText(number);
    Q_EMIT box->Left();
  }
  QString Number() {
    return navigator_.findChild<FilteredEdit*>(QStringLiteral("txtHistoryRow"))->text();
  }

  HistoryNavigator navigator_;
  std::vector<int> chosen_;
};

TEST_F(HistoryNavigatorTest, EnablesTheButtonsThatLeadToAnotherRow) {
  EXPECT_EQ(EnabledAt(0, 5), "..xx");
  EXPECT_EQ(EnabledAt(2, 5), "xxxx");
  EXPECT_EQ(EnabledAt(4, 5), "xx..");
  EXPECT_EQ(EnabledAt(0, 1), "....");
  EXPECT_EQ(EnabledAt(-1, 5), "x.xx");
  EXPECT_EQ(EnabledAt(-1, 0), "....");
}

TEST_F(HistoryNavigatorTest, GoesToTheTypedRowOrTheNearestOne) {
  EnabledAt(0, 5);
  Type(QStringLiteral("3"));
  Type(QStringLiteral("99"));
  EXPECT_THAT(chosen_, ElementsAre(2, 4));
  chosen_.clear();
  Type(QStringLiteral("1"));
  Type(QStringLiteral(""));
  EXPECT_THAT(chosen_, IsEmpty());
  EXPECT_EQ(Number(), QStringLiteral("1"));
}

TEST(HistoryTableTop, IsShownWithoutACurrentRow) {
  HistoryTableView view;
  view.verticalScrollBar()->setRange(0, 100);
  view.verticalScrollBar()->setValue(50);
  view.GoToTop();
  EXPECT_EQ(view.verticalScrollBar()->value(), 0);
  EXPECT_FALSE(view.currentIndex().isValid());
}

}  // namespace
}  // namespace vrx::testing
