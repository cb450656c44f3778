#pragma once

#include <QAbstractTableModel>
#include <QMouseEvent>
#include <QString>
#include <QTableView>

#include "insight/tables.h"
#include "widgets/fields.h"

namespace vrx {

// The table of an answer: units in the captions, figures rounded as ShownText does, days as on the
// tab Batched/Fed, the total in the last row. A table of one row with many columns stands upright.
class InsightTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  // nullptr: nothing. The table must exist until the next one is shown or the model ends.
  void Show(const AnswerTable* table, const std::string& units);
  [[nodiscard]] bool IsUpright() const { return upright_; }
  // Whether the row is one of the table and not its total.
  [[nodiscard]] bool IsRow(int row) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;

 private:
  [[nodiscard]] QString Caption(std::size_t column) const;
  [[nodiscard]] QString Text(std::size_t row, std::size_t column) const;
  [[nodiscard]] bool IsTotal(std::size_t row) const;

  const AnswerTable* table_ = nullptr;
  std::string units_;
  bool upright_ = false;
};

// Shows it. Enter and a double click choose a row.
class InsightTable : public QTableView, public EnterByCell {
  Q_OBJECT

 public:
  explicit InsightTable(QWidget* parent);

  void Show(const AnswerTable* table, const std::string& units);
  // -1: none, or that of the total.
  [[nodiscard]] int CurrentRow() const;
  bool EnterPressed() override;

 public Q_SLOTS:
  // The selected rows and their captions, separated by tabs.
  void copy();  // NOLINT(readability-identifier-naming): as the slot of text fields

 Q_SIGNALS:
  void RowChosen(int row);
  void RowChanged();

 private:
  InsightTableModel* model_;
};

}  // namespace vrx
