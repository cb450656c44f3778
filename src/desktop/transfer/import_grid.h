#pragma once

#include <QAbstractTableModel>
#include <QTableView>

#include "presenter/import.h"

namespace vrx {

// The rows of an import as the grid asks for them: texts, 112 columns.
class ImportModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportModel(const ImportSession& session, QObject* parent = nullptr);

  // What the session holds has changed: the grid asks anew.
  void Reset();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  // The characters of the longest text in a column, from 1, its caption aside: of a sample of rows,
  // the first and the last among them.
  int LongestText(int column) const;

 private:
  const ImportSession& session_;
};

// `grdIMPORT`. Rows are striped in the told colours; a grid without an import says where one comes
// from.
class ImportGrid : public QTableView {
  Q_OBJECT

 public:
  // The session outlives it.
  explicit ImportGrid(const ImportSession& session, QWidget* parent = nullptr);

  // Shows what the session holds now.
  void ShowImport();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void ShowColumns();
  void FitColumns();
  bool Empty() const;

  const ImportSession& session_;
  ImportModel* model_;
};

}  // namespace vrx
