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
  kId,      // from 1 to `largest`; a row without an ID is refused
  kIdText,  // the same, stored as text
  kWhole,   // from `smallest` to `largest`
  kYesNo,
  kReal,
  kText,        // at most `limit` characters
  kChoice,      // one of `choices`
  kNumberText,  // a number in its original notation, or empty
  kDate,
  kTime,
};

// What replaces a NULL of the old file.
enum class NullRule {
  kKept,
  kDefault,      // `fallback`
  kDefaultName,  // that of the record: "ING005"
};

// How a column of the new database is filled.
struct FieldRule {
  std::string column;
  FieldKind kind = FieldKind::kText;
  NullRule null = NullRule::kKept;
  // Replaces a NULL with NullRule::kDefault, and a value that the column cannot hold. Without it
  // such a value becomes NULL.
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
  std::string_view default_name;  // of a table with fixed records, such as "ING"
  int records = 0;                // number of fixed records; 0 for a table whose rows are added
};

// The tables with data, in the order of conversion.
[[nodiscard]] std::span<const TableRule> TableRules();

// Ignores case. nullptr for a table that is not converted.
[[nodiscard]] const TableRule* FindTableRule(std::string_view table);

}  // namespace vrx
