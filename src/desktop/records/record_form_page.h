#pragma once

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <array>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "desktop/records/edit_gate.h"
#include "desktop/records/record_list.h"
#include "desktop/records/record_page.h"
#include "feed/record_fields.h"
#include "feed/record_reset.h"
#include "presenter/record_actions.h"
#include "widgets/fields.h"

namespace vrx {

// Sets the text only if it differs, to keep the cursor.
void SetIfOther(FilteredEdit& box, std::string_view text);

// The page of a kind of record with one form: an ID list, boxes for name, description and a number,
// and below them the grid of all records of the kind.
//
// A box is stored to the file when the focus leaves it. A text that could not be stored stays in
// its box.
class RecordFormPage : public RecordPage {
  Q_OBJECT

 public:
  bool LeaveEdits(MayStay may_stay) override;
  std::vector<LostEdit> EndEdits() override;
  void Prepare() override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void ReleaseViews() override;
  void LoadIdLists() override;

  void UpdateRecord() override { Commit(); }
  void CancelRecord() override;
  void DefaultRecord() override;
  void Navigate(NavigateButton button) override;
  void GoTo(int position) override;
  void OrderFields(bool description_first) override;
  void FocusFirstField() override;
  void ShowRestored(const EditPlace& place) override;
  [[nodiscard]] int Position() const override {
    return database_ == nullptr || blank_ ? 0 : position_;
  }

  // The grid lists the active records only.
  [[nodiscard]] bool ActiveOnly() const { return active_only_->isChecked(); }

 protected:
  // The names of a kind's controls, and their texts in messages.
  struct Design {
    RecordKind kind;
    const char* page;
    const char* id_list;
    const char* name;
    const char* description;
    const char* number;
    std::string_view number_field;
    int number_caption;  // of the caption table
    const char* view_all;
    QString view_all_caption;
    const char* active_only;
    QString active_only_caption;
    const char* grid;
    std::vector<RecordColumn> columns;
    QString empty_grid;
  };

  // The abbreviation is the one of the three description boxes.
  RecordFormPage(Services& services, AutoAbbreviation& abbreviation, UndoCommands& undo,
                 Design design, QWidget* parent);

  // The functions of a kind. The first three throw.
  //
  // Shows a record in its boxes.
  virtual void ReadRecord(int id) = 0;
  // Shows the record as last read or stored, without accessing the database.
  virtual void ShowStored();
  // Stores the boxes and shows the result. Returns whether the file has changed.
  virtual bool StoreCurrentRecord() = 0;
  // Leaves the fields that only this kind has.
  virtual void LeaveOwnFields() {}
  // The control of a field that only this kind has; nullptr for none.
  [[nodiscard]] virtual QWidget* OwnField(std::string_view /*field*/) const { return nullptr; }
  virtual std::vector<RecordRow> ReadRows(bool active_only) = 0;
  // The current record was stored or reloaded.
  virtual void Stored() {}
  // Another record is current, or a record of another database.
  virtual void CameToAnother() {}
  // The operator has answered the question of `Default`.
  virtual void AnsweredDefault(ResetOutcome /*outcome*/) {}
  // The file is read-only for that reason; or writable, for an empty one.
  virtual void ShowReadOnly(const QString& reason);

  [[nodiscard]] Services& GetServices() const { return services_; }
  [[nodiscard]] bool HasDatabase() const { return database_ != nullptr; }
  [[nodiscard]] SQLite::Database& Database() const { return *database_; }
  [[nodiscard]] int Id() const { return position_; }
  [[nodiscard]] QGridLayout& FormLayout() const { return *form_; }
  [[nodiscard]] QBoxLayout& NumberRow() const { return *number_row_; }
  [[nodiscard]] RecordListGrid& Grid() const { return *grid_; }
  [[nodiscard]] bool MayWrite() const { return Position() != 0 && !read_only_; }

  // Rows of FormLayout.
  enum FormRow { kIdRow, kNameRow, kDescriptionRow, kNumberRow };
  // The first of the two columns that the kind may use; the columns after them are empty.
  static constexpr int kFreeColumn = 3;

  [[nodiscard]] std::array<FilteredEdit*, 3> Boxes() const {
    return {name_, description_, number_};
  }
  [[nodiscard]] std::string NameText() const { return name_->Text(); }
  [[nodiscard]] std::string DescriptionText() const { return description_->Text(); }
  [[nodiscard]] std::string NumberText() const { return number_->Text(); }
  void ShowTexts(std::string_view name, std::string_view description, std::string_view number);

  // Leaves a field that only this kind has.
  void LeaveOwnField(QWidget& field, std::string_view name, std::string text,
                     std::function<void()> discard, bool entered);
  // Whether the edit of that field could not be stored and is kept for a question.
  [[nodiscard]] bool Keeps(const QWidget& field) const { return gate_.Holds(&field); }
  void RefreshGrid();
  void ShowAllRecords() { active_only_->setChecked(false); }
  QLabel* Caption(const char* name, int caption, QWidget* buddy);

  // The Tab key moves from the number to these controls, and from the last of them to the list.
  void TabBehindNumber(std::initializer_list<QWidget*> controls);

 private:
  void MakeControls();
  void LayOut();
  void Connect();

  // Stores the record, if there is one to write. Throws. `field` is the field that is left; empty
  // for none.
  // An edit of the current record, before it is stored.
  [[nodiscard]] EditStep StepOn(EditAct act, std::string_view field) const;
  void Store(std::string_view field = {});
  // Returns false after reporting a failure.
  bool Commit();

  using StoreField = std::function<std::string()>;
  std::string StoreName(std::string_view field);
  void LeaveBox(FilteredEdit& box, std::string_view field, StoreField store);
  void Leave(FilteredEdit& box);
  void LeaveName();
  void LeaveDescription();
  void LeaveNumber();
  void RowTyped(const std::string& field, const QString& text);
  void KeepOpenEdits();
  void ForgetEdits();

  void ChooseItem(int list_index);
  void ChooseRow(int id);
  void ChooseView(QCheckBox& box, const std::function<void()>& show);
  bool Show(int position);
  [[nodiscard]] std::string Left(std::string_view field, std::string_view text) const;
  [[nodiscard]] const std::string& StoredText(const FilteredEdit& box) const;
  void FillIdList(const std::function<void()>& filled);

  Services& services_;
  AutoAbbreviation& abbreviation_;
  UndoCommands& undo_;
  const Design design_;
  const RecordKindTraits& traits_;
  SQLite::Database* database_ = nullptr;
  bool blank_ = true;
  bool read_only_ = false;
  int position_ = 1;
  struct Texts {
    std::string name;
    std::string description;
    std::string number;
  };
  Texts stored_;
  EditGate gate_;
  bool cell_closes_ = false;  // the grid is about to close the editor of a cell

  RecordIdList* id_list_ = nullptr;
  FilteredEdit* name_ = nullptr;
  FilteredEdit* description_ = nullptr;
  FilteredEdit* number_ = nullptr;
  QCheckBox* view_all_ = nullptr;
  QCheckBox* active_only_ = nullptr;
  RecordListGrid* grid_ = nullptr;
  QGridLayout* form_ = nullptr;
  QBoxLayout* number_row_ = nullptr;
};

}  // namespace vrx
