#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QString>
#include <array>
#include <string_view>
#include <vector>

#include "feed/current_recipe.h"
#include "feed/recipe_columns.h"

namespace vrx {

// What `grdREC` shows: the lines of a recipe and, while it is offered, the entry row behind them.
class RecipeGridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  // Tells the views of nothing but the cells that have changed.
  void Show(const RecipeOnShow& shown);

  // Of the ingredients that can be chosen. A line with another one shows no name.
  void SetNames(const std::vector<IngredientRecord>& ingredients);

  void SetUnit(std::string_view unit);

  // No cell can be entered, and nothing invites to it.
  void SetReadOnly(bool read_only);

  bool IsEntryRow(int row) const { return row == line_count_; }
  // Nothing was entered into the entry row yet.
  bool IsIdle(int row) const { return IsEntryRow(row) && !pending_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  using Row = std::array<QString, kRecipeColumnCount>;

  std::vector<Row> RowsOf(const RecipeOnShow& shown) const;
  Row RowOf(const RecipeLineRecord& line) const;
  void SetRows(std::vector<Row> rows);

  std::vector<Row> rows_;
  int line_count_ = 0;
  bool pending_ = false;
  bool read_only_ = false;
  QHash<QString, QString> names_;
  QString unit_;
};

}  // namespace vrx
