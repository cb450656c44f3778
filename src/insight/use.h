#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "insight/pens.h"
#include "insight/question.h"

namespace vrx {

// The price of a unit of weight of an ingredient from a day on.
struct IngredientPrice {
  std::string ingredient = {};
  double price = 0;
  Date from = {};
};

// A stocktaking of an ingredient, in the database's unit.
struct StockLine {
  std::string ingredient = {};
  Date date = {};
  double opening = 0;
  double received = 0;
  double closing = 0;
};

// Lines "pen,from,heads", "ingredient,price,from" and "ingredient,date,opening,received,closing" of
// RFC 4180 in UTF-8, with days as YYYY-MM-DD and points in numbers, which are from 0. A first line
// of other words is a heading. `name` is that of the file in the text of a QuestionError.
[[nodiscard]] std::vector<HeadCount> ParseHeadCounts(std::string_view text,
                                                     const std::string& name);
[[nodiscard]] std::vector<IngredientPrice> ParsePrices(std::string_view text,
                                                       const std::string& name);
[[nodiscard]] std::vector<StockLine> ParseStock(std::string_view text, const std::string& name);

struct UseQuestion {
  Question about = {};
  std::vector<IngredientPrice> prices = {};
  std::vector<StockLine> stock = {};
};

// Of the loads of an ingredient. Prices are those of the day of the batch. A cost is nothing if a
// load that it is of has no price, or if there is no such load.
struct UseLine {
  std::optional<std::string> ingredient = {};
  double used = 0;                   // sum of the weights
  std::optional<double> cost = {};   // of all loads
  std::optional<double> over = {};   // cost of what was loaded above the targets, positive
  std::optional<double> under = {};  // and below them, positive; of loads with T > 0 and A > 0
  std::optional<double> net = {};    // over - under
  // (opening + received - used - closing) / (opening + received) in percent: opening of the first
  // line of the period, received of all, closing of the last.
  std::optional<double> shrink = {};
};

struct Use {
  InsightNotes notes = {};
  std::vector<UseLine> lines = {};        // by ingredient
  std::vector<std::string> unknown = {};  // ingredients of the files without a load
};

// Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Use ReadUse(SQLite::Database& database, const UseQuestion& question,
                          const InsightProgress& progress = {});

}  // namespace vrx
