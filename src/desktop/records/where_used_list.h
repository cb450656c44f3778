#pragma once

#include <QComboBox>
#include <string>
#include <vector>

namespace vrx {

// `cboWhereUsed`: a list to be looked at. Item 0 is the status of the search and is in view while
// the list is closed; behind it stand the recipes, which are all that the open list shows.
class WhereUsedList : public QComboBox {
  Q_OBJECT

 public:
  explicit WhereUsedList(QWidget* parent = nullptr);

  // UTF-8, the status first.
  void ShowItems(const std::vector<std::string>& items);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showPopup() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QString status_;
};

}  // namespace vrx
