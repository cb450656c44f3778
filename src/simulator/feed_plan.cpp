#include "simulator/feed_plan.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <stdexcept>

namespace vrx::simulator {
namespace {

constexpr std::string_view kMark = "{DATA_IN},";
constexpr std::string_view kLineEnd = "\r\n";

using Ingredients = std::map<std::string, FeedPlan::Ingredient, std::less<>>;

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) {
      return parts;
    }
    text.remove_prefix(end + 1);
  }
}

template <typename Number>
Number ToNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw std::invalid_argument("no number: " + std::string(text));
  }
  return number;
}

FeedPlan::Ingredient ReadIngredient(std::string_view line) {
  const auto fields = Split(line, ',');
  if (fields.size() != 3) {
    throw std::invalid_argument("no ingredient: " + std::string(line));
  }
  return {ToNumber<int>(fields[0]), std::string(fields[1]), fields[2] == "1"};
}

// Number, name, type, target, head count and the names; the amounts stand behind the semicolon.
FeedPlan::Recipe ReadRecipe(std::string_view line, const Ingredients& ingredients) {
  constexpr std::size_t kFirstName = 5;
  const auto halves = Split(line, ';');
  const auto fields = Split(halves.front(), ',');
  if (halves.size() != 2 || fields.size() <= kFirstName) {
    throw std::invalid_argument("no recipe: " + std::string(line));
  }
  const auto amounts = Split(halves.back(), ',');
  if (amounts.size() != fields.size() - kFirstName) {
    throw std::invalid_argument("not an amount for each ingredient: " + std::string(line));
  }
  FeedPlan::Recipe recipe{ToNumber<int>(fields[0]), std::string(fields[1]), {}};
  for (std::size_t part = 0; part < amounts.size(); ++part) {
    const auto found = ingredients.find(fields[kFirstName + part]);
    if (found == ingredients.end()) {
      throw std::invalid_argument("an ingredient that is not listed: " + std::string(line));
    }
    const auto amount = ToNumber<double>(amounts[part]);
    if (amount > 0) {
      recipe.parts.push_back({found->second.id, found->first, amount, found->second.hand_add});
    }
  }
  return recipe;
}

FeedPlan::Pen ReadPen(std::string_view line) {
  const auto fields = Split(line, ',');
  if (fields.size() != 3) {
    throw std::invalid_argument("no pen: " + std::string(line));
  }
  return {ToNumber<int>(fields[0]), std::string(fields[1]), ToNumber<long>(fields[2])};
}

}  // namespace

bool IsDownload(std::string_view memory) { return memory.substr(0, kMark.size()) == kMark; }

FeedPlan ReadFeedPlan(std::string_view download) {
  if (!IsDownload(download) || download.size() == kMark.size()) {
    throw std::invalid_argument("no download");
  }
  FeedPlan plan;
  plan.unit = download[kMark.size()];
  Ingredients ingredients;
  std::string_view section;
  while (!download.empty()) {
    const std::size_t end = std::min(download.find(kLineEnd), download.size());
    const std::string_view line = download.substr(0, end);
    download.remove_prefix(std::min(end + kLineEnd.size(), download.size()));
    if (line.empty()) {
      continue;
    }
    if (line.front() == '[') {
      section = line;
    } else if (section == "[ING]") {
      FeedPlan::Ingredient ingredient = ReadIngredient(line);
      ingredients.insert_or_assign(ingredient.name, ingredient);
    } else if (section == "[REC]") {
      FeedPlan::Recipe recipe = ReadRecipe(line, ingredients);
      if (!recipe.parts.empty()) {
        plan.recipes.push_back(std::move(recipe));
      }
    } else if (section == "[PEN]") {
      FeedPlan::Pen pen = ReadPen(line);
      if (pen.feed_amount > 0) {
        plan.pens.push_back(std::move(pen));
      }
    }
  }
  return plan;
}

}  // namespace vrx::simulator
