#pragma once

#include <QComboBox>
#include <string_view>

namespace vrx {

// `cboIngID`, `cboRecID` or `cboPenID`: item 0 blank, then an item for each record, so that a list
// index is a record's `ID`. Only the mouse chooses a record: keys are discarded, and so are turns
// of the wheel. QComboBox::activated tells a choice.
class RecordIdList : public QComboBox {
  Q_OBJECT

 public:
  RecordIdList(const QString& name, int records, QWidget* parent = nullptr);

  // `FormatIdPrefix` and the name; without a name the bare prefix. UTF-8.
  void SetItem(int id, std::string_view name = {});

 Q_SIGNALS:
  // A character was typed; the focus goes to the description.
  void Typed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace vrx
