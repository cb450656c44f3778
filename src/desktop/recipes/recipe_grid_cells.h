#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QFontMetrics>
#include <QHash>
#include <QPalette>
#include <QString>
#include <QStyledItemDelegate>
#include <array>
#include <functional>
#include <string_view>
#include <vector>

#include "desktop/recipes/ingredient_list.h"
#include "feed/current_recipe.h"
#include "feed/recipe_columns.h"

namespace vrx {

// The model of `grdREC`: the lines of a recipe and, if offered, the entry row after them.
class RecipeGridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  // Notifies the views only of changed cells.
  void Show(const CurrentRecipe& shown);

  // The role of an ingredient's description, which the cell shows after the name.
  static constexpr int kDescriptionRole = Qt::UserRole;

  // The names of the ingredients that can be chosen. A line with another ingredient shows no name.
  void SetNames(const std::vector<IngredientRecord>& ingredients);

  // The width of the longest name with its description.
  [[nodiscard]] int WidestIngredient(const QFontMetrics& metrics) const;

  void SetUnit(std::string_view unit);

  // Disables entry into the cells and hides the hints for it.
  void SetReadOnly(bool read_only);

  [[nodiscard]] bool IsEntryRow(int row) const { return row == line_count_; }
  // Whether the row is the entry row and still empty.
  [[nodiscard]] bool IsIdle(int row) const { return IsEntryRow(row) && !pending_; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  struct Row {
    std::array<QString, kRecipeColumnCount> cells;
    QString description;  // of the ingredient
  };
  struct Ingredient {
    QString name;
    QString description;
  };

  [[nodiscard]] std::vector<Row> RowsOf(const CurrentRecipe& shown) const;
  [[nodiscard]] Row RowOf(const RecipeLineRecord& line) const;
  void SetRows(std::vector<Row> rows);

  std::vector<Row> rows_;
  int line_count_ = 0;
  bool pending_ = false;
  bool read_only_ = false;
  QHash<QString, Ingredient> ingredients_;  // by ID
  QString unit_;
};

// Between the edge and the text of a cell and of the total below it, in logical pixels.
inline constexpr int kCellMargin = 6;

struct RecipeCellLook {
  QColor background;
  QColor text;
  QColor frame = {};  // of what looks like a field; invalid for none
};

// Uses only colors of the palette, except the blue of computed values. The current row is tinted
// with the color of a selection.
RecipeCellLook LookOfCell(CellRole role, bool current_row, const QPalette& palette);

// Of an ingredient's description, fainter than its name and still readable.
QColor DescriptionColor(const RecipeCellLook& look);

// Draws the cells of `grdREC` and makes their editors.
class RecipeGridDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  // Ends an edit: the editor holds the entered text.
  using Commit = std::function<void(QWidget& editor, const QModelIndex& cell)>;

  // The list and the model outlive it.
  RecipeGridDelegate(IngredientList& list, const RecipeGridModel& model, Commit commit,
                     QObject* parent);

  // The current row of the grid.
  void SetCurrentRow(int row) { current_row_ = row; }

  // The area where a click on an ingredient opens the list immediately.
  static QRect ArrowOf(const QRect& cell);

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

 protected:
  bool eventFilter(QObject* editor, QEvent* event) override;

 Q_SIGNALS:
  void KeyRefused();

 private:
  const RecipeCellLook& Look(CellRole role, bool current_row, const QPalette& palette) const;
  void PaintArrow(QPainter& painter, const QRect& cell, const QColor& color) const;
  QWidget* MakeNumberEditor(QWidget* parent, LineColumn column) const;

  IngredientList& list_;
  const RecipeGridModel& model_;
  Commit commit_;
  int current_row_ = -1;
  // Computed once per palette.
  mutable std::array<std::array<RecipeCellLook, 2>, 3> looks_;
  mutable qint64 looks_of_ = 0;
};

}  // namespace vrx
