#pragma once

#include <QComboBox>
#include <QLabel>
#include <QWidget>
#include <array>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/records/record_list.h"
#include "feed/current_recipe.h"
#include "feed/key_filters.h"
#include "widgets/fields.h"

namespace vrx {

// The head of the current recipe: its ID, name and description, the composition of its batch and
// its scaling. Shows a recipe and emits the operator's edits.
class RecipeHead : public QWidget {
  Q_OBJECT

 public:
  // The abbreviation outlives it.
  explicit RecipeHead(AutoAbbreviation& abbreviation, QWidget* parent = nullptr);

  // An edited box keeps its text until the text is stored or another recipe is shown. So does a
  // list whose choice is not stored yet.
  void Show(const CurrentRecipe& shown);

  // The text of the box, or of all boxes, was stored or given up.
  static void Stored(FilteredEdit& box) { box.setModified(false); }
  void GiveUpTyping();

  // Disables everything except the ID list for that reason, or enables it for an empty one. Call
  // Show afterwards.
  void SetReadOnly(const QString& reason);
  // Keeps the choice in the list until it is stored or given up.
  void KeepChoice(QComboBox& list) { kept_choices_.insert(&list); }
  void DropChoice(QComboBox& list) { kept_choices_.erase(&list); }
  bool KeepsChoice(QComboBox& list) const { return kept_choices_.contains(&list); }

  // Hides the three groups of inputs until the next Show.
  void HideInputs();

  // The Tab key goes to the description before the name, or after it.
  void OrderFields(bool description_first);
  // The control of a field of the database; nullptr for a field that has none.
  [[nodiscard]] QWidget* Field(std::string_view field) const;

  // The first of the two.
  [[nodiscard]] FilteredEdit& FirstField() const {
    return id_list_->nextInFocusChain() == description_ ? *description_ : *name_;
  }

  void ShowUnit(const QString& unit);
  void ShowMustTotal100(bool shown);  // `lblMustTotal100Pct`

  [[nodiscard]] std::array<FilteredEdit*, 4> Boxes() const {
    return {name_, description_, head_count_, ration_target_};
  }

  [[nodiscard]] std::array<QWidget*, 6> Fields() const {
    return {name_, description_, head_count_, ration_target_, batch_type_, adjust_};
  }

  RecordIdList& CboRecId() { return *id_list_; }
  FilteredEdit& OnRecName() { return *name_; }
  FilteredEdit& OnRecDesc() { return *description_; }
  FilteredEdit& OnRecHeadCount() { return *head_count_; }
  FilteredEdit& OnRecRationTarget() { return *ration_target_; }
  QComboBox& OnRecBatchType() { return *batch_type_; }
  QComboBox& OnAdjustBatchTotal() { return *adjust_; }

 Q_SIGNALS:
  // A key was dropped.
  void Refused();

  // The focus has left one of the two lists.
  void ListLeft();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  using Group = std::vector<QWidget*>;

  void MakeLists();
  void MakeBoxes();
  void MakeGroups();
  void LayOut();
  QLabel* Caption(const char* name, int caption, QWidget* buddy);
  void ShowInputs(const CurrentRecipe& shown);
  void ShowGroup(const Group& group, bool visible, bool enabled) const;

  AutoAbbreviation& abbreviation_;
  RecordIdList* id_list_ = nullptr;
  FilteredEdit* name_ = nullptr;
  FilteredEdit* description_ = nullptr;
  QComboBox* batch_type_ = nullptr;
  FilteredEdit* head_count_ = nullptr;
  FilteredEdit* ration_target_ = nullptr;
  QComboBox* adjust_ = nullptr;
  QLabel* unit_ = nullptr;
  QLabel* must_total_ = nullptr;
  Group head_count_group_;
  Group ration_target_group_;
  Group adjust_group_;
  int recipe_id_ = 0;
  bool read_only_ = false;
  std::set<const QComboBox*> kept_choices_;  // chosen and not stored yet
};

}  // namespace vrx
