#include <QTest>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/records/record_list.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordListModelTest : public ::testing::Test {
 protected:
  RecordListModelTest() {
    model_.Show({{.id = 3, .cells = {QStringLiteral("3"), QStringLiteral("CORN")}},
                 {.id = 7, .cells = {QStringLiteral("7"), QStringLiteral("HAY")}}});
    QObject::connect(
        &model_, &RecordListModel::Typed,
        [this](int id, const std::string& field, const QString& text) {
          typed_.push_back(std::to_string(id) + " " + field + " " + text.toStdString());
        });
  }
  bool Editable(int column) {
    return model_.flags(model_.index(0, column)).testFlag(Qt::ItemIsEditable);
  }

  RecordListModel model_{{{.field = "ID", .caption = {}, .number = true},
                          {.field = "Name", .caption = {}, .typed = true}}};
  std::vector<std::string> typed_;
};

TEST_F(RecordListModelTest, OnlyTypedColumnsOfAWritableFileAreEdited) {
  EXPECT_FALSE(Editable(0));
  EXPECT_TRUE(Editable(1));
  model_.SetReadOnly(true);
  EXPECT_FALSE(Editable(1));
  model_.SetReadOnly(false);
  EXPECT_TRUE(Editable(1));
}

TEST_F(RecordListModelTest, ReportsACellThatWasChangedAndNoOther) {
  const QModelIndex hay = model_.index(1, 1);
  EXPECT_FALSE(model_.setData(hay, QStringLiteral("HAY"), Qt::EditRole));
  EXPECT_THAT(typed_, IsEmpty());
  EXPECT_TRUE(model_.setData(hay, QStringLiteral("STRAW"), Qt::EditRole));
  EXPECT_THAT(typed_, ElementsAre("7 Name STRAW"));
  EXPECT_EQ(model_.data(hay, Qt::DisplayRole), QStringLiteral("HAY"));
}

TEST_F(RecordListModelTest, FindsARecordByItsId) {
  EXPECT_EQ(model_.RowOf(3), 0);
  EXPECT_EQ(model_.RowOf(7), 1);
  EXPECT_EQ(model_.RowOf(5), -1);
  EXPECT_EQ(model_.RowOf(8), -1);
}

TEST(RecordIdListTest, ReportsWhatIsTypedAndNoCommand) {
  RecordIdList list(QStringLiteral("list"), 3);
  int typed = 0;
  QObject::connect(&list, &RecordIdList::Typed, [&] { ++typed; });
  QTest::keyClick(&list, Qt::Key_5, Qt::AltModifier);
  QTest::keyClick(&list, Qt::Key_5, Qt::ControlModifier);
  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_EQ(typed, 0);
  QTest::keyClick(&list, Qt::Key_5);
  EXPECT_EQ(typed, 1);
  EXPECT_EQ(list.currentIndex(), 0);
}

}  // namespace
}  // namespace vrx::testing
