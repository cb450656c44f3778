#pragma once

#include <QComboBox>
#include <QLabel>
#include <QWidget>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "desktop/records/record_list.h"
#include "feed/current_recipe.h"
#include "feed/key_filters.h"
#include "widgets/fields.h"

namespace vrx {

// The head of the recipe on show: which one it is, its name and description, how its batch is made
// up and what it is scaled to. It shows a recipe and tells what the operator does to it.
class RecipeHead : public QWidget {
  Q_OBJECT

 public:
  // The abbreviation outlives it.
  explicit RecipeHead(AutoAbbreviation& abbreviation, QWidget* parent = nullptr);

  // A box that was typed into keeps what stands in it until that is stored or another recipe is on
  // show. So does a list whose choice is not stored yet.
  void Show(const CurrentRecipe& shown);

  // What was typed into the box is stored, or into all of them given up.
  static void Stored(FilteredEdit& box) { box.setModified(false); }
  void GiveUpTyping();

  // Closes everything but the ID list, for that reason; opens it again for an empty one. To be
  // followed by Show.
  void SetReadOnly(const QString& reason);
  // The choice in the list is stored, or given up, from here on.
  void KeepChoice(QComboBox& list) { kept_choices_.insert(&list); }
  void DropChoice(QComboBox& list) { kept_choices_.erase(&list); }
  bool KeepsChoice(QComboBox& list) const { return kept_choices_.contains(&list); }

  // The three groups of inputs, until the next Show.
  void HideInputs();

  void ShowUnit(const QString& unit);
  void ShowMustTotal100(bool shown);  // `lblMustTotal100Pct`

  std::array<FilteredEdit*, 4> Boxes() const {
    return {name_, description_, head_count_, ration_target_};
  }

  std::array<QWidget*, 6> Fields() const {
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
