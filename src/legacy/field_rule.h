#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/schema.h"

namespace vrx {

enum class FieldKind {
  kId,      // from 1 to `largest`; a row without it is refused
  kIdText,  // the same, stored as a text
  kWhole,   // `smallest` to `largest`
  kYesNo,
  kReal,
  kText,        // of at most `limit` characters
  kChoice,      // one of `choices`
  kNumberText,  // a number as it was written, or nothing
  kDate,
  kTime,
};

// What a NULL of the old file becomes.
enum class NullRule {
  kKept,
  kDefault,      // `fallback`
  kDefaultName,  // of the record: "ING005"
};

// How a column of this system's databases is filled.
struct FieldRule {
  std::string column;
  FieldKind kind = FieldKind::kText;
  NullRule null = NullRule::kKept;
  // Stands for NULL by the rule above, and for a value that the column cannot hold; without it such
  // a value becomes NULL.
  std::optional<std::string_view> fallback = std::nullopt;
  int smallest = 0;
  int largest = 0;
  std::size_t limit = 0;  // 0: any length
  std::span<const std::string_view> choices = {};
  bool empty_is_null = false;
};

// How a table is filled.
struct TableRule {
  std::string_view name;
  DatabaseKind kind = DatabaseKind::kRecipe;
  std::vector<FieldRule> fields;
  std::string_view default_name;  // "ING", of tables of fixed records
  int records = 0;                // how many of them; 0 for a table whose rows are added
};

// The tables that hold data, in the order of conversion.
std::span<const TableRule> TableRules();

// Nothing for a name that is none of them; case does not matter.
const TableRule* FindTableRule(std::string_view table);

}  // namespace vrx
