#pragma once

#include <optional>

#include "desktop/recipes/ingredient_list.h"
#include "widgets/fields.h"

namespace vrx {

// The editor of a line's ingredient: drops the list down and finds in it what is typed. A character
// that leads to no ingredient is refused.
class IngredientDropDown : public FilteredEdit {
  Q_OBJECT

 public:
  // The list outlives it.
  explicit IngredientDropDown(IngredientList& list, QWidget* parent = nullptr);

  // The ingredient that the line has; empty for none.
  void Begin(const QString& ingredient_name);

  // The `ID` of the ingredient that was chosen; nothing where the line's own was left.
  std::optional<int> Chosen() const { return chosen_; }

 Q_SIGNALS:
  // One was chosen by the mouse, which ends the editing.
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
