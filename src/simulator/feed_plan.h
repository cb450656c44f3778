#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vrx::simulator {

// What an indicator knows of a yard from the text of a download.
struct FeedPlan {
  struct Ingredient {
    int id;
    std::string name;
    bool hand_add;
  };
  struct Part {
    int ingredient;  // its ID
    std::string name;
    double amount;  // in proportion to the other parts
    bool hand_add;
  };
  struct Recipe {
    int id;
    std::string name;
    std::vector<Part> parts;
  };
  struct Pen {
    int id;
    std::string name;
    long feed_amount;
  };

  char unit = 'L';              // 'L' pounds, 'K' kilograms
  std::vector<Recipe> recipes;  // those with anything to weigh
  std::vector<Pen> pens;        // those with a feed amount
};

bool IsDownload(std::string_view memory);

// Throws std::invalid_argument with the line that is not of the form.
FeedPlan ReadFeedPlan(std::string_view download);

}  // namespace vrx::simulator
