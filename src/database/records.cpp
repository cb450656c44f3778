#include "database/records.h"

#include <array>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/connection.h"
#include "database/schema.h"

namespace vrx {
namespace {

// Maps a column to a member of a record.
template <typename Record>
struct Field {
  std::string_view column;
  std::variant<int Record::*, bool Record::*, std::string Record::*> member;
};

template <typename Record>
struct Mapping {
  std::string_view table;
  std::span<const Field<Record>> fields;
};

constexpr std::array<Field<IngredientRecord>, 5> kIngredientFields{{
    {"ID", &IngredientRecord::id},
    {"Name", &IngredientRecord::name},
    {"Description", &IngredientRecord::description},
    {"DryMatter%", &IngredientRecord::dry_matter_percent},
    {"HandAdd", &IngredientRecord::hand_add},
}};

constexpr std::array<Field<RecipeRecord>, 7> kRecipeFields{{
    {"ID", &RecipeRecord::id},
    {"Name", &RecipeRecord::name},
    {"Description", &RecipeRecord::description},
    {"BatchType", &RecipeRecord::batch_type},
    {"HeadCount", &RecipeRecord::head_count},
    {"RationTarget", &RecipeRecord::ration_target},
    {"AdjBatTotIndex", &RecipeRecord::adjust_batch_index},
}};

constexpr std::array<Field<RecipeLineRecord>, 10> kLineFields{{
    {"RecipeID", &RecipeLineRecord::recipe_id},
    {"Ingredient", &RecipeLineRecord::ingredient},
    {"Target", &RecipeLineRecord::target},
    {"Ration%", &RecipeLineRecord::ration_percent},
    {"DryMatter%", &RecipeLineRecord::dry_matter_percent},
    {"DryMatter", &RecipeLineRecord::dry_matter},
    {"BatchTarget", &RecipeLineRecord::batch_target},
    {"Sequence", &RecipeLineRecord::sequence},
    {"HandAdd", &RecipeLineRecord::hand_add},
    {"Ingredient%", &RecipeLineRecord::ingredient_percent},
}};

constexpr std::array<Field<PenRecord>, 4> kPenFields{{
    {"ID", &PenRecord::id},
    {"Name", &PenRecord::name},
    {"Description", &PenRecord::description},
    {"FeedAmount", &PenRecord::feed_amount},
}};

constexpr Mapping<IngredientRecord> kIngredients{kIngredientTable, kIngredientFields};
constexpr Mapping<RecipeRecord> kRecipes{kRecipeTable, kRecipeFields};
constexpr Mapping<RecipeLineRecord> kLines{kRecipeRationTable, kLineFields};
constexpr Mapping<PenRecord> kPens{kPenTable, kPenFields};

void Load(const SQLite::Column& column, int& value) {
  const std::int64_t stored = column.getInt64();
  const bool fits =
      stored >= std::numeric_limits<int>::min() && stored <= std::numeric_limits<int>::max();
  value = fits ? static_cast<int>(stored) : 0;
}

void Load(const SQLite::Column& column, bool& value) { value = column.getInt64() != 0; }

void Load(const SQLite::Column& column, std::string& value) { value = column.getString(); }

void Bind(SQLite::Statement& statement, int index, const std::string& value) {
  statement.bind(index, value);
}

void Bind(SQLite::Statement& statement, int index, std::int64_t value) {
  statement.bind(index, value);
}

// Selects the rowid, then the fields in their order.
template <typename Record>
std::string SelectText(const Mapping<Record>& mapping, std::string_view tail) {
  std::string text = "SELECT rowid";
  for (const auto& field : mapping.fields) {
    text += ", " + Bracketed(field.column);
  }
  return text + " FROM " + std::string(mapping.table) + " " + std::string(tail);
}

template <typename Record>
std::string UpdateText(const Mapping<Record>& mapping) {
  std::string text = "UPDATE " + std::string(mapping.table) + " SET ";
  for (const auto& field : mapping.fields) {
    text += Bracketed(field.column) + " = ?, ";
  }
  text.erase(text.size() - 2);
  return text + " WHERE rowid = ?";
}

template <typename Record>
std::string InsertText(const Mapping<Record>& mapping) {
  std::string columns;
  std::string marks;
  for (const auto& field : mapping.fields) {
    columns += Bracketed(field.column) + ", ";
    marks += "?, ";
  }
  columns.erase(columns.size() - 2);
  marks.erase(marks.size() - 2);
  return "INSERT INTO " + std::string(mapping.table) + " (" + columns + ") VALUES (" + marks + ")";
}

template <typename Record>
void LoadFields(const SQLite::Statement& row, const Mapping<Record>& mapping, Record& record) {
  int index = 1;  // after the rowid
  for (const auto& field : mapping.fields) {
    std::visit([&](auto member) { Load(row.getColumn(index), record.*member); }, field.member);
    ++index;
  }
}

// Returns the index of the next parameter.
template <typename Record>
int BindFields(SQLite::Statement& statement, const Mapping<Record>& mapping, const Record& record) {
  int index = 1;
  for (const auto& field : mapping.fields) {
    std::visit([&](auto member) { Bind(statement, index, record.*member); }, field.member);
    ++index;
  }
  return index;
}

DatabaseError NoRecord(const SQLite::Database& database, std::string_view table, std::int64_t row) {
  const std::string name = std::filesystem::path(database.getFilename()).filename().string();
  return {kNoRecordError,
          name + " has no row " + std::to_string(row) + " in " + std::string(table)};
}

template <typename Record>
std::vector<Record> ReadTable(SQLite::Database& database, const Mapping<Record>& mapping) {
  return WithDatabaseErrors(database, [&] {
    std::vector<Record> records;
    SQLite::Statement query(database, SelectText(mapping, "ORDER BY ID"));
    while (query.executeStep()) {
      LoadFields(query, mapping, records.emplace_back());
    }
    return records;
  });
}

template <typename Record>
Record ReadRow(SQLite::Database& database, const Mapping<Record>& mapping, int id) {
  return WithDatabaseErrors(database, [&] {
    SQLite::Statement query(database, SelectText(mapping, "WHERE ID = ?"));
    query.bind(1, id);
    if (!query.executeStep()) {
      throw NoRecord(database, mapping.table, id);
    }
    Record record;
    LoadFields(query, mapping, record);
    return record;
  });
}

template <typename Record>
void Update(SQLite::Database& database, SQLite::Statement& update, const Mapping<Record>& mapping,
            const Record& record, std::int64_t row) {
  update.bind(BindFields(update, mapping, record), row);
  if (update.exec() == 0) {
    throw NoRecord(database, mapping.table, row);
  }
}

template <typename Record>
void UpdateRow(SQLite::Database& database, const Mapping<Record>& mapping, const Record& record,
               std::int64_t row) {
  WithDatabaseErrors(database, [&] {
    SQLite::Statement update(database, UpdateText(mapping));
    Update(database, update, mapping, record, row);
  });
}

std::vector<RecipeLineRecord> ReadLines(SQLite::Database& database, std::string_view tail,
                                        std::optional<int> id = std::nullopt) {
  return WithDatabaseErrors(database, [&] {
    std::vector<RecipeLineRecord> lines;
    SQLite::Statement query(database, SelectText(kLines, tail));
    if (id) {
      query.bind(1, std::to_string(*id));
    }
    while (query.executeStep()) {
      RecipeLineRecord& line = lines.emplace_back();
      line.row = query.getColumn(0).getInt64();
      LoadFields(query, kLines, line);
    }
    return lines;
  });
}

}  // namespace

std::vector<IngredientRecord> ReadIngredients(SQLite::Database& database) {
  return ReadTable(database, kIngredients);
}

std::vector<RecipeRecord> ReadRecipes(SQLite::Database& database) {
  return ReadTable(database, kRecipes);
}

std::vector<PenRecord> ReadPens(SQLite::Database& database) { return ReadTable(database, kPens); }

IngredientRecord ReadIngredient(SQLite::Database& database, int id) {
  return ReadRow(database, kIngredients, id);
}

RecipeRecord ReadRecipe(SQLite::Database& database, int id) {
  return ReadRow(database, kRecipes, id);
}

PenRecord ReadPen(SQLite::Database& database, int id) { return ReadRow(database, kPens, id); }

void WriteIngredient(SQLite::Database& database, const IngredientRecord& record) {
  UpdateRow(database, kIngredients, record, record.id);
}

void WriteRecipe(SQLite::Database& database, const RecipeRecord& record) {
  UpdateRow(database, kRecipes, record, record.id);
}

void WritePen(SQLite::Database& database, const PenRecord& record) {
  UpdateRow(database, kPens, record, record.id);
}

std::vector<RecipeLineRecord> ReadRecipeLines(SQLite::Database& database, int recipe_id) {
  return ReadLines(database, "WHERE (RecipeID = ?) ORDER BY Sequence, rowid", recipe_id);
}

std::vector<RecipeLineRecord> ReadLinesWithIngredient(SQLite::Database& database,
                                                      int ingredient_id) {
  return ReadLines(database, "WHERE (Ingredient = ?) ORDER BY rowid", ingredient_id);
}

std::vector<RecipeLineRecord> ReadAllRecipeLines(SQLite::Database& database) {
  return ReadLines(database, "ORDER BY CAST(RecipeID AS INTEGER), Sequence, rowid");
}

void WriteRecipeLine(SQLite::Database& database, RecipeLineRecord& line) {
  if (line.row != 0) {
    UpdateRow(database, kLines, line, line.row);
    return;
  }
  WithDatabaseErrors(database, [&] {
    SQLite::Statement insert(database, InsertText(kLines));
    BindFields(insert, kLines, line);
    insert.exec();
    line.row = database.getLastInsertRowid();
  });
}

void WriteStoredLines(SQLite::Database& database, std::span<const RecipeLineRecord> lines) {
  WithDatabaseErrors(database, [&] {
    SQLite::Statement update(database, UpdateText(kLines));
    for (const RecipeLineRecord& line : lines) {
      Update(database, update, kLines, line, line.row);
      update.reset();
    }
  });
}

void DeleteRecipeLine(SQLite::Database& database, std::int64_t row) {
  WithDatabaseErrors(database, [&] {
    SQLite::Statement remove(database, "DELETE FROM RecipeRation WHERE rowid = ?");
    remove.bind(1, row);
    if (remove.exec() == 0) {
      throw NoRecord(database, kRecipeRationTable, row);
    }
  });
}

}  // namespace vrx
