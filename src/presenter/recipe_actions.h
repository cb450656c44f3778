#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "feed/recipe_comparison.h"
#include "presenter/services.h"

namespace vrx {

// The operator's actions on whole recipes, with their messages: copy one to a free record, compare
// two.

// An index of the adjust list as its text, without blanks before it; the index itself if the list
// has no such item.
[[nodiscard]] std::string AdjustText(const std::string& index);

// A recipe as an item of a list: "  9: REC009".
struct RecipeItem {
  int id = 0;
  std::string text;
};

struct CopyOffer {
  std::string question;
  std::vector<RecipeItem> free;  // at least one
  std::size_t proposed = 0;      // the next one after the recipe
};

// Where a recipe can be copied to. Nothing after reporting that it is empty, that no record is
// free, or that the database cannot be read.
std::optional<CopyOffer> OfferCopy(SQLite::Database& database, int from, Services& services);

// Stores the copy and returns its head. Nothing after reporting a failure, which stores nothing.
std::optional<RecipeRecord> StoreCopy(SQLite::Database& database, int from, int to,
                                      Services& services);

// A database whose recipes are compared, on a connection of its own.
struct ComparedFile {
  std::filesystem::path path;
  std::shared_ptr<SQLite::Database> connection;
  std::vector<RecipeItem> items;  // of recipes with a description or lines; at least one
};

// Nothing after reporting that it cannot be read or has no recipe.
std::optional<ComparedFile> OpenComparedFile(const std::filesystem::path& path, Services& services);

// Asks for another recipe database. Nothing after a cancel or a message.
std::optional<ComparedFile> AskForComparedFile(Services& services);

// A text that the comparison shows, with its mark in front: "≠ 1200". A text with a mark is shown
// in heavy letters.
struct ComparedText {
  std::string text;
  bool marked = false;
};

struct ComparedSide {
  std::array<ComparedText, 6> head;  // name, description, type, head count, target, adjust
  std::vector<std::string> captions;
  std::vector<std::vector<ComparedText>> rows;  // the lines, and at last the totals
};

struct ComparedTexts {
  std::array<ComparedSide, 2> sides;  // their rows and columns correspond
  std::string summary;                // how much differs
  std::string note;                   // about the units; empty for the same
};

// Lines of the same ingredient are in the same row.
ComparedTexts ComparisonOf(const ComparedRecipe& a, const ComparedRecipe& b, bool one_database);

// Reads and compares two recipes. Nothing after reporting why they cannot be compared.
std::optional<ComparedTexts> Compare(const ComparedFile& file_a, int a, const ComparedFile& file_b,
                                     int b, Services& services);

}  // namespace vrx
