#pragma once

#include <QFrame>
#include <QLabel>
#include <QTableView>
#include <optional>
#include <vector>

#include "database/records.h"
#include "widgets/fields.h"

namespace vrx {

// The drop-down list for the ingredient of a line: the grid `grdINGSEL`, in a separate window that
// never takes the focus.
class IngredientList : public QFrame {
  Q_OBJECT

 public:
  explicit IngredientList(QWidget* parent);

  // In the order of the list; rows are counted from 0.
  void SetIngredients(std::vector<IngredientRecord> ingredients);
  [[nodiscard]] const std::vector<IngredientRecord>& Ingredients() const { return ingredients_; }

  // The row of the first ingredient that the text matches: its number, the beginning of number,
  // name or description, or a part of the description, in this order and whatever the case. -1 for
  // none.
  [[nodiscard]] int Find(const QString& text) const;

  [[nodiscard]] int RowOf(const QString& ingredient_name) const;

  // The highlighted row; -1 for none.
  [[nodiscard]] int CurrentRow() const;
  void SetCurrentRow(int row);

  [[nodiscard]] int RowsPerPage() const;

  // Shows it below an editor, or above if there is not enough space.
  void DropDown(const QWidget& editor);

 Q_SIGNALS:
  // A row was selected with the mouse.
  void Picked(int row);

 private:
  void Fit();

  std::vector<IngredientRecord> ingredients_;
  QTableView* grid_;
  QLabel* empty_;
};

// The editor of a line's ingredient: opens the list and finds the typed text in it. Refuses a
// character that matches no ingredient.
class IngredientDropDown : public FilteredEdit {
  Q_OBJECT

 public:
  // The list outlives it.
  explicit IngredientDropDown(IngredientList& list, QWidget* parent = nullptr);

  // `ingredient_name` is that of the line; empty for none.
  void Begin(const QString& ingredient_name);

  // The `ID` of the selected ingredient; empty if it has not changed.
  [[nodiscard]] std::optional<int> Chosen() const { return chosen_; }

 Q_SIGNALS:
  // An ingredient was selected with the mouse, which ends the edit.
  void Picked();

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Find();
  void Choose(int row);
  void Move(int rows);

  IngredientList& list_;
  std::optional<int> chosen_;
};

}  // namespace vrx
