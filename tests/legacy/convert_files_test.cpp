#include <cmath>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"
#include "base/number.h"
#include "database/summary.h"
#include "legacy/conversion_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

using Cell = std::optional<std::string>;  // nothing for NULL

// A table as written to the old file: texts in quotes, NULL as an empty field without quotes.
struct KnownTable {
  std::vector<std::string> header;
  std::vector<std::vector<Cell>> rows;
};

std::vector<Cell> Fields(const std::string& line) {
  std::vector<Cell> fields;
  std::size_t at = 0;
  while (at <= line.size()) {
    if (at < line.size() && line[at] == '"') {
      std::string text;
      for (++at; line[at] != '"' || line[at + 1] == '"'; ++at) {
        at += line[at] == '"' ? 1 : 0;
        text.push_back(line[at]);
      }
      fields.emplace_back(text);
      at += 2;
    } else {
      const std::size_t end = std::min(line.find(',', at), line.size());
      fields.push_back(end > at ? Cell(line.substr(at, end - at)) : std::nullopt);
      at = end + 1;
    }
  }
  return fields;
}

KnownTable ReadKnown(const std::string& name) {
  std::ifstream in(fs::path(LEGACY_DATA) / name);
  KnownTable table;
  std::string line;
  std::getline(in, line);
  for (const Cell& cell : Fields(line)) {
    table.header.push_back(cell.value_or(""));
  }
  while (std::getline(in, line)) {
    table.rows.push_back(Fields(line));
  }
  return table;
}

bool SameNumber(const std::string& stored, const std::string& known) {
  return ParseNumber(stored).has_value() && ParseNumber(stored) == ParseNumber(known);
}

// The converted value of a cell.
std::string Expected(const std::string& column, const Cell& known, const std::string& default_name,
                     bool record) {
  if (column == "Date" || column == "Created" || column == "Modified") {
    return known.value_or("NULL").substr(0, 10);
  }
  if (column == "Time") {
    return known.value_or("0000-00-00 NULL").substr(11);
  }
  if (known || !record) {
    return known.value_or("NULL");
  }
  static const std::map<std::string, std::string> defaults = {
      {"Description", ""}, {"BatchType", "!"}, {"RationTarget", ""}, {"AdjBatTotIndex", "20"}};
  return column == "Name" ? default_name : defaults.at(column);
}

// Compares every cell of a table of the copy with the known contents of the old file.
void ExpectTable(const ConversionFixture& site, const std::string& file, const std::string& table,
                 const std::string& name_prefix = {}) {
  SCOPED_TRACE(table);
  const KnownTable known = ReadKnown(file + "." + table + ".csv");
  const auto rows = site.Rows("SELECT * FROM " + table + " ORDER BY rowid");
  ASSERT_EQ(rows.size(), known.rows.size());
  int cells = 0;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    // Transactions have a row number, too.
    const bool numbered = table == "Transactions";
    ASSERT_EQ(rows[row].size(), known.header.size() + (numbered ? 1 : 0));
    ASSERT_TRUE(!numbered || rows[row].back() == std::to_string(row + 1)) << rows[row].back();
    const std::string name = name_prefix + Format(static_cast<int>(row) + 1, "000");
    for (std::size_t column = 0; column < known.header.size(); ++column) {
      const std::string expected =
          Expected(known.header[column], known.rows[row][column], name, !name_prefix.empty());
      const std::string& stored = rows[row][column];
      ASSERT_TRUE(stored == expected || SameNumber(stored, expected))
          << known.header[column] << " of row " << row + 1 << ": " << stored << " in place of "
          << expected;
      ++cells;
    }
  }
  EXPECT_EQ(cells, static_cast<int>(known.rows.size() * known.header.size()));
}

TEST(ConvertedRecipeFile, HoldsEveryValue) {
  ConversionFixture site;
  site.Convert(site.Data("LEGACYR.RDB"));
  ExpectTable(site, "LEGACYR", "Ingredient", "ING");
  ExpectTable(site, "LEGACYR", "Recipe", "REC");
  ExpectTable(site, "LEGACYR", "Pen", "PEN");
  ExpectTable(site, "LEGACYR", "RecipeRation");
  ExpectTable(site, "LEGACYR", "UnitsOfMeasure");
  ExpectTable(site, "LEGACYR", "History");
  ExpectTable(site, "LEGACYR", "BrantockDatabase");
}

TEST(ConvertedTransactionFile, HoldsEveryValue) {
  ConversionFixture site;
  site.Convert(site.Data("LEGACYX.TDB"));
  ExpectTable(site, "LEGACYX", "Transactions");
  ExpectTable(site, "LEGACYX", "UnitsOfMeasure");
  ExpectTable(site, "LEGACYX", "History");
  ExpectTable(site, "LEGACYX", "BrantockDatabase");
}

TEST(ConvertedFile, IsADatabaseOfThisProgram) {
  ConversionFixture site;
  site.Convert(site.Data("LEGACYR.RDB"));
  const DatabaseSummary recipe = ReadDatabaseSummary(site.copy);
  EXPECT_EQ(recipe.kind, DatabaseKind::kRecipe);
  EXPECT_FALSE(recipe.blank);
  EXPECT_EQ(recipe.unit, "LB");
  EXPECT_EQ(recipe.recipe.ingredients, 12);
  EXPECT_EQ(recipe.recipe.recipes, 5);
  EXPECT_EQ(recipe.recipe.pens, 9);
  EXPECT_EQ(site.Rows("PRAGMA integrity_check")[0][0], "ok");
  fs::remove(site.copy);
  site.Convert(site.Data("LEGACYX.TDB"));
  const DatabaseSummary transaction = ReadDatabaseSummary(site.copy);
  EXPECT_EQ(transaction.kind, DatabaseKind::kTransaction);
  EXPECT_EQ(transaction.transaction.rows, 302);
  EXPECT_EQ(StoredText(*transaction.transaction.first_date), "2009-05-04");
  EXPECT_EQ(StoredText(*transaction.transaction.last_date), "2011-08-15");
  EXPECT_EQ(site.Rows("PRAGMA integrity_check")[0][0], "ok");
}

// 37.9 is 37.9000015 as a single.
TEST(ConvertedTransactionFile, KeepsADecimalWeightAsItWasWritten) {
  ConversionFixture site;
  site.Convert(site.Data("LEGACYX.TDB"));
  std::size_t decimals = 0;
  const auto rows_where = [&site](const std::string& condition) {
    std::string query = "SELECT 1 FROM Transactions WHERE ";
    return site.Rows(query.append(condition)).size();
  };
  for (int id = 1; id <= kWeightColumnCount; ++id) {
    const std::string column = IngredientWeightColumn(id);
    std::string rounded = column;
    rounded.append(" <> round(").append(column);
    EXPECT_EQ(rows_where(rounded + ", 1)"), 0U) << column;
    decimals += rows_where(rounded + ")");
  }
  EXPECT_GT(decimals, 0U);
}

TEST(ConversionReport, OfTheRecipeFileShowsCountsSumsAndRepairs) {
  ConversionFixture site;
  const ConversionReport report = site.Convert(site.Data("LEGACYR.RDB"));
  EXPECT_EQ(report.kind, DatabaseKind::kRecipe);
  EXPECT_EQ(report.unit, "LB");
  EXPECT_EQ(report.old_size, 98304U);
  EXPECT_EQ(CountsOf(report, "Ingredient").repaired, 88U);
  EXPECT_EQ(CountsOf(report, "Recipe").repaired, 95U);
  EXPECT_EQ(CountsOf(report, "RecipeRation").read, 28U);
  EXPECT_EQ(CountsOf(report, "RecipeRation").repaired, 0U);
  EXPECT_EQ(CountsOf(report, "Pen").stored, 400U);
  EXPECT_EQ(CountsOf(report, "Pen").repaired, 0U);
  EXPECT_EQ(report.Read(), 631U);
  EXPECT_EQ(report.Stored(), 631U);
  EXPECT_EQ(report.Refused(), 0U);
  EXPECT_THAT(NoticeLines(report), Not(Contains(HasSubstr("has no place in the new file"))));
  EXPECT_THAT(NoticeLines(report),
              Contains("Ingredient, rows 9, 11-14, 16-49, 51-99: Name was NULL; the record's "
                       "default name was stored"));
  EXPECT_THAT(NoticeLines(report),
              Contains("History, row 1: Created held the time 08:30:00 as well; only its day was "
                       "stored"));
}

TEST(ConversionReport, OfTheTransactionFileShowsTheSameSumsOnBothSides) {
  ConversionFixture site;
  const ConversionReport report = site.Convert(site.Data("LEGACYX.TDB"));
  EXPECT_EQ(CountsOf(report, "Transactions").read, 302U);
  EXPECT_EQ(CountsOf(report, "Transactions").stored, 302U);
  EXPECT_EQ(CountsOf(report, "Transactions").repaired, 0U);
  const KnownTable known = ReadKnown("LEGACYX.Transactions.csv");
  ASSERT_EQ(report.sums.size(), 3U);
  for (const ConvertedSum& sum : report.sums) {
    const auto column = static_cast<std::size_t>(
        std::find(known.header.begin(), known.header.end(), sum.column) - known.header.begin());
    long double total = 0;
    for (const auto& row : known.rows) {
      total += ParseNumber(row[column].value_or("0")).value_or(0);
    }
    EXPECT_NEAR(sum.old_file, static_cast<double>(total), 1e-6) << sum.column;
    EXPECT_GT(sum.old_file, 0);
    EXPECT_EQ(sum.new_file, sum.old_file) << sum.column;
  }
}

TEST(Conversion, OnlyReadsTheOldFile) {
  ConversionFixture site;
  fs::copy_file(site.Data("LEGACYX.TDB"), site.old_path);
  const std::string before = BytesOf(site.old_path);
  const auto time = fs::last_write_time(site.old_path);
  fs::permissions(site.old_path, fs::perms::owner_read);
  const ConversionReport report = site.Convert(site.old_path);
  EXPECT_EQ(BytesOf(site.old_path), before);
  EXPECT_EQ(fs::last_write_time(site.old_path), time);
  // Computed with `sha256sum`.
  EXPECT_EQ(report.sha256, "36cdedda50c41f1942fabac2fb0882d59fbea09025336c0b232e867912bce72c");
  EXPECT_THAT(site.Files(), ElementsAre("NEW.RDB", "OLD.RDB"));
}

TEST(Conversion, ReadsAFileWhoseNameIsNoUtf8) {
  ConversionFixture site;
  const fs::path old_file = site.folder / "OLD\xCD\x81.RDB";
  fs::copy_file(site.Data("LEGACYR.RDB"), old_file);
  EXPECT_GT(site.Convert(old_file).Stored(), 0U);
}

TEST(Conversion, ShowsHowFarItHasCome) {
  ConversionFixture site;
  site.Convert(site.Data("LEGACYX.TDB"));
  EXPECT_THAT(site.progress.messages,
              ElementsAre("Converting the table Transactions.", "Writing the new file."));
  EXPECT_EQ(site.progress.maximum, 302);
  EXPECT_EQ(site.progress.value, 300);
  std::filesystem::remove(site.copy);
  site.Convert(site.Data("LEGACYR.RDB"));
  EXPECT_EQ(site.progress.maximum, 400);
  EXPECT_EQ(site.progress.value, 400) << "counted anew in each table";
}

}  // namespace
}  // namespace vrx::testing
