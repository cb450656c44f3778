#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/recording_progress.h"
#include "exchange/transaction_parser.h"
#include "settings/settings.h"
#include "support/recording_operator.h"

namespace vrx::testing {

// Parses a text in memory and records what the parse did.
struct ParsedText {
  explicit ParsedText(std::string_view text) {
    file.SetText(std::string(text));
    error = file.ParseTransactionFile(progress,
                                      {.configure_columns = [this] { ++columns_configured; },
                                       .show_grid = [this](int rows) { shown.push_back(rows); }},
                                      op, settings);
  }
  ParsedText(const ParsedText&) = delete;
  ParsedText& operator=(const ParsedText&) = delete;

  std::string Cell(std::size_t row, int column) const {
    return std::string(file.Imported().Cell(row, column));
  }

  // Columns 1 to 12 of a row, each followed by a "|".
  std::string Row(std::size_t row) const {
    std::string line;
    for (int column = 1; column < kFirstIngredientWeight; ++column) {
      line += Cell(row, column) + "|";
    }
    return line;
  }

  // The ingredient weights of a row that are not empty: "4=497.3 7=251.2 ".
  std::string Weights(std::size_t row) const {
    std::string line;
    for (int ingredient = 1; ingredient <= 100; ++ingredient) {
      const std::string cell = Cell(row, kFirstIngredientWeight - 1 + ingredient);
      if (!cell.empty()) {
        line += std::to_string(ingredient) + "=" + cell + " ";
      }
    }
    return line;
  }

  TransFile file;
  RecordingProgress progress;
  RecordingOperator op;
  PrivateINI settings;
  int columns_configured = 0;
  std::vector<int> shown;
  std::string error;
};

}  // namespace vrx::testing
