#pragma once

#include <QLabel>
#include <optional>
#include <vector>

#include "database/records.h"
#include "desktop/records/record_form_page.h"
#include "presenter/record_actions.h"

namespace vrx {

// The tab `Pens`, with the warning about the indicator's pen table.
class PensPage final : public RecordFormPage {
  Q_OBJECT

 public:
  PensPage(Services& services, AutoAbbreviation& abbreviation, UndoCommands& undo,
           QWidget* parent = nullptr);

  // The pens of the filtered grid; none after reporting a failure to read them.
  std::vector<PenRecord> PensShown();

  void Prepare() override;
  void StripFocused() override { ShowUnit(); }
  void CheckPenCapacity() override;
  void HidePenCapacityWarning() override { ShowWarning(std::nullopt); }
  void SelectPenItem(int list_index) override { GoTo(list_index); }

 Q_SIGNALS:
  // The current pens in the grid were checked for the warning.
  void PenCapacityChecked();

 protected:
  void ReadRecord(int id) override;
  bool StoreCurrentRecord() override;
  std::vector<RecordRow> ReadRows(bool active_only) override;
  void Stored() override { CheckPenCapacity(); }
  void AnsweredDefault(ResetOutcome /*outcome*/) override { CheckPenCapacity(); }

 private:
  static Design Controls();
  std::vector<PenRecord> ReadShown(bool active_only);
  void ShowUnit();
  void ShowWarning(std::optional<int> size);

  QLabel* unit_;
  QLabel* warning_;
};

}  // namespace vrx
