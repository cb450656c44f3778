#include "exchange/transaction_shares.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/number.h"
#include "exchange/parse_error.h"
#include "exchange/transaction_records.h"

namespace vrx {

namespace {

constexpr int kIngredientColumns = kImportColumns - kFirstIngredientWeight + 1;

struct Place {
  std::string ingredient;
  float percentage = 0.0F;
};

struct Batch {
  std::int32_t total = 0;
  std::vector<Place> places;
};

using BatchTotals = std::unordered_map<std::int32_t, Batch>;

// Rows are filled from the top without a gap.
template <typename Work>
void ForEachRow(const ImportedData& table, std::string_view type, const Work& work) {
  for (std::size_t row = 1; table.Filled(row); ++row) {
    if (table.Cell(row, kImportedType) == type) {
      work(row, TransactionNumber(table.Cell(row, kImportedTransactionNumber)));
    }
  }
}

// Whole units: the decimals are lost on purpose.
std::int32_t WholeWeight(const ImportedData& table, std::size_t row) {
  return TextToLong(table.Cell(row, kImportedActualBatch));
}

void AddToTotal(std::int32_t& total, std::int32_t weight) {
  const std::int64_t sum = std::int64_t{total} + weight;
  if (!std::in_range<std::int32_t>(sum)) {
    throw ParseError("Batch total exceeded limit.");
  }
  total = static_cast<std::int32_t>(sum);
}

// Quotient and product are single, each rounded by itself.
std::string PercentageText(std::int32_t weight, std::int32_t total) {
  float percentage = 0.0F;
  if (total > 0) {
    const auto quotient = static_cast<float>(static_cast<double>(weight) / total);
    percentage = quotient * 100.0F;
  }
  return Format(percentage, "0.0000");
}

// The column of an ingredient's weight; nothing for an ID that has none.
std::optional<int> WeightColumn(std::string_view ingredient) {
  const std::optional<double> id = ParseNumber(ingredient);
  const double whole = id ? std::nearbyint(*id) : 0.0;
  if (whole < 1) {
    throw ParseError("Invalid ingredient ID detected.");
  }
  if (whole > kIngredientColumns) {
    return std::nullopt;
  }
  return kFirstIngredientWeight - 1 + static_cast<int>(whole);
}

// Weight and percentage are read from their texts, and every step is single. A share beyond single
// has no text either.
std::string ShareText(std::string_view weight, float percentage) {
  try {
    return Format(TextToSingle(weight) * (percentage / 100.0F), "0.0");
  } catch (const ConversionError&) {
    throw ParseError("Invalid feed weight detected.");
  }
}

void WriteShares(ImportedData& table, std::size_t row, const Batch& batch) {
  const std::string weight(table.Cell(row, kImportedActualFeed));
  if (weight.empty()) {
    return;
  }
  for (const Place& place : batch.places) {
    if (place.ingredient == "0") {
      return;
    }
    if (place.percentage <= 0) {
      continue;
    }
    if (const std::optional<int> column = WeightColumn(place.ingredient)) {
      table.SetCell(row, *column, ShareText(weight, place.percentage));
    }
  }
}

}  // namespace

void ComputeShares(ImportedData& table) {
  BatchTotals batches;
  ForEachRow(table, "BATCH", [&](std::size_t row, std::int32_t number) {
    AddToTotal(batches[number].total, WholeWeight(table, row));
  });
  ForEachRow(table, "BATCH", [&](std::size_t row, std::int32_t number) {
    Batch& batch = batches[number];
    const std::string percentage = PercentageText(WholeWeight(table, row), batch.total);
    table.SetCell(row, kCalculatedIngPercentOfBatch, percentage);
    if (batch.places.size() == kMaxBatchIngredients) {
      throw ParseError("Too many ingredients in a batch detected.");
    }
    batch.places.push_back(
        {std::string(table.Cell(row, kImportedIngredientID)), TextToSingle(percentage)});
  });
  ForEachRow(table, "FEED", [&](std::size_t row, std::int32_t number) {
    WriteShares(table, row, batches[number]);
  });
}

}  // namespace vrx
