#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/records.h"

namespace vrx {

// What was typed into a record's form; nothing for a control that was left alone. Texts UTF-8.
struct IngredientEdit {
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> dry_matter_percent = std::nullopt;
  std::optional<bool> hand_add = std::nullopt;
};

struct RecipeEdit {
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> batch_type = std::nullopt;  // "W", "H", "%", "P"
  std::optional<std::string> head_count = std::nullopt;
  std::optional<std::string> ration_target = std::nullopt;
  std::optional<int> adjust_batch_index = std::nullopt;  // 0 to 40
};

struct PenEdit {
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> feed_amount = std::nullopt;
};

// Bring an edit into the record as its form would, up to the commit (record_commit.h): the record
// is changed as a whole, or not at all when this throws FieldRefusal. Return what the operator is
// told.
//
// The description comes first and, with `auto_abbreviate`, gives the name; a name that was typed as
// well is typed after it.
//
// A recipe's inputs are open as its batch type, that of the same edit included, and the sums of its
// stored lines leave them. Sums that fail (ration.h) throw when an input was typed.
std::vector<std::string> ApplyEdit(const IngredientEdit& edit, bool auto_abbreviate,
                                   IngredientRecord& record);
std::vector<std::string> ApplyEdit(const RecipeEdit& edit,
                                   const std::vector<RecipeLineRecord>& lines, bool auto_abbreviate,
                                   RecipeRecord& record);
std::vector<std::string> ApplyEdit(const PenEdit& edit, bool auto_abbreviate, PenRecord& record);

}  // namespace vrx
