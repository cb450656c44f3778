#include "insight/names.h"

#include <algorithm>
#include <iterator>
#include <map>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "base/number.h"
#include "base/text.h"
#include "database/connection.h"
#include "database/schema.h"
#include "database/transactions.h"

namespace vrx {
namespace {

std::string ColumnOf(NameKind kind) {
  switch (kind) {
    case NameKind::kRecipe:
      return "Recipe";
    case NameKind::kIngredient:
      return "Ingredient";
    case NameKind::kOperator:
      return "UserID";
    case NameKind::kPen:
      break;
  }
  return "Pen";
}

// Of rows that count: only loads have an ingredient and only deliveries a pen.
std::string TypeCondition(NameKind kind) {
  switch (kind) {
    case NameKind::kIngredient:
      return " AND Type = 'BATCH'";
    case NameKind::kPen:
      return " AND Type = 'FEED'";
    default:
      return " AND Type IN ('BATCH', 'FEED')";
  }
}

// Reads the whole table, but only for a name that does not exist.
std::string NamesLike(SQLite::Database& database, NameKind kind, const std::string& name) {
  SQLite::Statement query(database, "SELECT DISTINCT " + ColumnOf(kind) + " FROM " +
                                        std::string(kTransactionsTable) + " WHERE 1" +
                                        TypeCondition(kind) + " ORDER BY 1");
  const std::string wanted = UnicodeUpperCase(name);
  std::string names;
  while (query.executeStep()) {
    const std::string other = query.getColumn(0).getString();
    if (UnicodeUpperCase(other) == wanted) {
      names += (names.empty() ? "" : ", ") + other;
    }
  }
  return names;
}

}  // namespace

NameId Names::Intern(std::string_view text) {
  if (text.empty()) {
    return kNoName;
  }
  if (texts_[last_] == text) {
    return last_;
  }
  const auto found = ids_.find(text);
  if (found != ids_.end()) {
    last_ = found->second;
  } else {
    last_ = static_cast<NameId>(texts_.size());
    texts_.emplace_back(text);
    ids_.emplace(text, last_);
  }
  return last_;
}

std::optional<std::string> Names::Name(NameId id) const {
  return id == kNoName ? std::nullopt : std::optional(texts_[id]);
}

std::vector<std::vector<std::string>> Names::Alike() const {
  std::map<std::string, std::vector<std::string>> groups;
  for (std::size_t id = 1; id < texts_.size(); ++id) {
    groups[UnicodeUpperCase(texts_[id])].push_back(texts_[id]);
  }
  std::vector<std::vector<std::string>> alike;
  for (auto& [upper, names] : groups) {
    if (names.size() > 1) {
      std::sort(names.begin(), names.end());
      alike.push_back(std::move(names));
    }
  }
  return alike;
}

std::vector<std::vector<std::string>> AlikeOf(const NamesOfKinds& names) {
  std::vector<std::vector<std::string>> alike;
  for (const Names& of_kind : names) {
    std::ranges::move(of_kind.Alike(), std::back_inserter(alike));
  }
  return alike;
}

bool NameIsBefore(NameKind kind, const std::optional<std::string>& left,
                  const std::optional<std::string>& right) {
  if (kind == NameKind::kOperator && left && right) {
    const std::optional<double> one = ParseNumber(*left);
    const std::optional<double> other = ParseNumber(*right);
    if (one != other) {
      return one < other;  // what is not a number comes first
    }
  }
  return left < right;
}

bool HasName(SQLite::Database& database, NameKind kind, const std::string& name) {
  const std::string column = ColumnOf(kind);
  std::string text = "SELECT 1 FROM " + std::string(kTransactionsTable) + " WHERE ";
  std::optional<std::vector<std::int64_t>> ranges;
  if (kind == NameKind::kOperator) {
    text += "CAST(UserID AS INTEGER) = CAST(?1 AS INTEGER) AND ";
  } else {
    ranges = ReadTransactionRanges(database, column + ", Type");
  }
  text += column + " = ?1" + TypeCondition(kind);
  if (ranges) {
    text += InTransactionRanges("?2");
  }
  SQLite::Statement query(database, text + " LIMIT 1");
  query.bind(1, name);
  if (ranges) {
    query.bind(2, JsonArray(*ranges));
  }
  return query.executeStep();
}

void CheckNames(SQLite::Database& database, const Question& question) {
  for (int kind = 0; kind < kNameKinds; ++kind) {
    const auto name_kind = static_cast<NameKind>(kind);
    const std::optional<std::string>& name = question.Name(name_kind);
    if (!name) {
      continue;
    }
    WithDatabaseErrors(database, [&] {
      if (!name->empty() && HasName(database, name_kind, *name)) {
        return;
      }
      const std::string alike = NamesLike(database, name_kind, *name);
      throw QuestionError(
          "No record has the " + std::string(NounOf(name_kind)) + " '" + *name + "'." +
          (alike.empty() || name->empty() ? ""
                                          : " Names that differ by case only: " + alike + "."));
    });
  }
}

std::vector<std::string> ReadNames(SQLite::Database& database, NameKind kind) {
  std::vector<std::string> names;
  WithDatabaseErrors(database, [&] {
    SQLite::Statement query(database, "SELECT DISTINCT CAST(" + ColumnOf(kind) +
                                          " AS TEXT) AS Name FROM " +
                                          std::string(kTransactionsTable) +
                                          " WHERE Name NOT IN ('', '-1')" + TypeCondition(kind));
    while (query.executeStep()) {
      names.push_back(query.getColumn(0).getString());
    }
  });
  std::sort(names.begin(), names.end(), [kind](const std::string& left, const std::string& right) {
    return NameIsBefore(kind, left, right);
  });
  return names;
}

}  // namespace vrx
