#pragma once

#include <QAbstractTableModel>
#include <QComboBox>
#include <QTableView>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "feed/record_fields.h"
#include "widgets/fields.h"

namespace vrx {

// A column of a grid of records. An editable column has the same filter as the form's box of that
// field.
struct RecordColumn {
  std::string field;  // of the database
  QString caption;
  bool number = false;
  bool typed = false;
};

struct RecordRow {
  int id = 0;
  std::vector<QString> cells;  // by column
};

class RecordListModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit RecordListModel(std::vector<RecordColumn> columns, QObject* parent = nullptr);

  // The view keeps its position if the records are the same.
  void Show(std::vector<RecordRow> rows);
  void SetCaption(const std::string& field, const QString& caption);
  void SetReadOnly(bool read_only) { read_only_ = read_only; }

  [[nodiscard]] const RecordColumn& Column(int column) const {
    return columns_.at(static_cast<std::size_t>(column));
  }
  [[nodiscard]] int IdOf(int row) const { return rows_.at(static_cast<std::size_t>(row)).id; }
  [[nodiscard]] int RowOf(int id) const;  // -1 for a record that is not shown

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

  // Changes nothing itself but emits Typed; the receiver stores the text and shows the rows again.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 Q_SIGNALS:
  // A cell was left with a changed text.
  void Typed(int id, const std::string& field, const QString& text);

 private:
  std::vector<RecordColumn> columns_;
  std::vector<RecordRow> rows_;
  bool read_only_ = false;
};

// `grdING` or `grdPEN`: the records of a kind, row by row.
class RecordListGrid : public QTableView, public EnterByCell {
  Q_OBJECT

 public:
  // `empty_text` is shown in a grid without rows.
  RecordListGrid(RecordKind kind, const QString& name, std::vector<RecordColumn> columns,
                 QString empty_text, QWidget* parent = nullptr);

  [[nodiscard]] RecordListModel& Model() const { return *model_; }

  void SetCaption(const std::string& field, const QString& caption);

  // Shows these rows and selects that record if it is among them.
  void Show(std::vector<RecordRow> rows, int id);
  void Select(int id);

  // Called before a click selects the row of another record; false keeps the row.
  void SetLeaving(std::function<bool()> leave) { leave_ = std::move(leave); }

  [[nodiscard]] bool IsEditing() const { return state() == EditingState; }
  // Finishes the edit of the current cell. A text that could not be stored stays in the editor, if
  // KeepEditor was called while RecordListModel::Typed was emitted.
  void FinishEdit();
  void KeepEditor() { keeps_editor_ = true; }
  void GiveUpEdit();
  // Returns the focus to the editor, or to the grid if no cell is edited.
  void ReturnToEdit();

  // Goes to the next column of entries, from the last one to the first of the next row. A cell that
  // was being edited is left, and the next one is edited.
  bool EnterPressed() override;

 Q_SIGNALS:
  // The operator has selected the row of another record.
  void RowChosen(int id);

  // A key was dropped.
  void Refused();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  class CellDelegate;

  void SizeColumns();
  [[nodiscard]] QModelIndex NextEntry(const QModelIndex& cell) const;

  RecordKind kind_;
  RecordListModel* model_;
  QString empty_text_;
  std::function<bool()> leave_;
  bool by_program_ = false;
  bool keeps_editor_ = false;
  bool sizing_ = false;             // the columns, by the grid itself
  bool sized_by_operator_ = false;  // their widths stay
};

// `cboIngID`, `cboRecID` or `cboPenID`: item 0 is blank, then an item for each record, so that a
// list index is a record's `ID`. Only mouse clicks select a record; keys and wheel turns are
// ignored. QComboBox::activated reports a choice.
class RecordIdList : public QComboBox {
  Q_OBJECT

 public:
  RecordIdList(const QString& name, int records, QWidget* parent = nullptr);

  // `FormatIdPrefix` and the name; without a name only the prefix. UTF-8.
  void SetItem(int id, std::string_view name = {});

 Q_SIGNALS:
  // A character was typed; the focus must move to the description.
  void Typed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace vrx
