#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "exchange/parsed_text.h"

namespace vrx::testing {
namespace {

struct Ingredient {
  int id = 0;
  std::string time;
  std::string target;
  std::string actual;
};

struct Feed {
  std::string pen;
  std::string user;
  std::string time;
  std::string date;
  std::string target;
  std::string actual;
};

struct RandomBatch {
  std::string transaction;
  std::string recipe;
  std::string date;
  std::string user;
  std::vector<Ingredient> ingredients;
  std::vector<Feed> feeds;
};

// A possible recording of an indicator.
struct Model {
  char unit = 'L';
  int padding = 2;
  std::vector<RandomBatch> batches;
};

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  Model Make() {
    Model model;
    model.unit = "LlKk"[Pick(0, 3)];
    model.padding = Pick(2, 8);
    std::set<int> numbers;
    const int batches = Pick(1, 8);
    while (static_cast<int>(numbers.size()) < batches) {
      numbers.insert(Pick(0, 3) == 0 ? Pick(1, 2147483646) : Pick(1, 50));
    }
    for (const int number : numbers) {
      model.batches.push_back(MakeBatch(number));
    }
    return model;
  }

 private:
  int Pick(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }

  std::string Padded(int number, int width) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%0*d", width, number);
    return text.data();
  }

  std::string Weight() {
    const std::string whole = std::to_string(Pick(0, Pick(0, 1) == 0 ? 20 : 40000));
    return Pick(0, 4) == 0 ? whole : whole + "." + std::to_string(Pick(0, 9));
  }

  std::string Time() {
    const std::string digits = Padded(Pick(0, 23), 2) + Padded(Pick(0, 59), 2);
    return Pick(0, 2) == 0 ? digits + (Pick(0, 1) == 0 ? "am" : "PM") : digits;
  }

  std::string Date() {
    return Padded(Pick(1, 12), 2) + Padded(Pick(1, 28), 2) + Padded(Pick(1999, 2038), 4);
  }

  RandomBatch MakeBatch(int number) {
    RandomBatch batch{.transaction = std::to_string(number),
                      .recipe = std::to_string(Pick(1, 100)),
                      .date = Date(),
                      .user = Pick(0, 5) == 0 ? "" : std::to_string(Pick(0, 99)),
                      .ingredients = {},
                      .feeds = {}};
    std::set<int> ids;
    const int ingredients = Pick(1, Pick(0, 1) == 0 ? 4 : 32);
    while (static_cast<int>(ids.size()) < ingredients) {
      ids.insert(Pick(1, 105));
    }
    for (const int id : ids) {
      batch.ingredients.push_back({id, Time(), Weight(), Weight()});
    }
    const int feeds = Pick(0, 5);
    for (int i = 0; i < feeds; ++i) {
      batch.feeds.push_back({std::to_string(Pick(1, 400)), std::to_string(Pick(0, 99)), Time(),
                             Date(), Weight(), Pick(0, 9) == 0 ? "" : Weight()});
    }
    return batch;
  }

  std::mt19937 random_;
};

std::string TextOf(const Model& model) {
  std::string text = std::string("{BAT/FED},") + model.unit + "\r\n[BAT],";
  std::string feeds = "[FED],";
  for (const RandomBatch& batch : model.batches) {
    std::array<std::string, 4> lists;
    for (const Ingredient& ingredient : batch.ingredients) {
      lists[0] += std::to_string(ingredient.id) + ",";
      lists[1] += ingredient.time + ",";
      lists[2] += ingredient.target + ",";
      lists[3] += ingredient.actual + ",";
    }
    text += "B," + batch.transaction + "," + batch.recipe + "," + batch.date + "," + batch.user;
    for (std::size_t list = 0; list < lists.size(); ++list) {
      text += (list == 0 ? "," : ";") + lists[list] + "0";
      for (int entry = 1; entry < model.padding; ++entry) {
        text += ",0";
      }
    }
    text += "\r\n";
    for (const Feed& feed : batch.feeds) {
      feeds += "B," + batch.transaction + "," + feed.pen + "," + feed.user + "," + feed.time + "," +
               feed.date + "," + feed.target + "," + feed.actual + "\r\n";
    }
  }
  if (feeds == "[FED],") {
    feeds += "\r\n";
  }
  return text + "\r\n" + feeds + "\r\n";
}

// Text of a single: rounds its seven decimal digits, halves away from zero, using digits only.
std::string Rounded(float value, std::size_t decimals) {
  std::array<char, 32> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.6e", static_cast<double>(value));
  const std::string text = buffer.data();
  const int exponent = std::atoi(text.c_str() + text.find('e') + 1);
  std::string digits = text.substr(0, 1) + text.substr(2, 6);
  int point = exponent + 1;  // digits before the point
  if (point < 1) {
    digits.insert(0, static_cast<std::size_t>(1 - point), '0');
    point = 1;
  }
  digits.append(20, '0');
  const std::size_t keep = static_cast<std::size_t>(point) + decimals;
  const bool up = digits[keep] >= '5';
  digits.resize(keep);
  digits.insert(0, "0");
  if (up) {
    std::size_t place = keep;
    while (digits[place] == '9') {
      digits[place--] = '0';
    }
    ++digits[place];
  }
  if (digits[0] == '0') {
    digits.erase(0, 1);
  } else {
    ++point;
  }
  digits.insert(static_cast<std::size_t>(point), ".");
  return digits;
}

// Rounds a weight with at most one decimal half to even, using digits only.
long Whole(const std::string& weight) {
  const long whole = std::atol(weight.c_str());
  const std::size_t point = weight.find('.');
  const char tenth = point == std::string::npos ? '0' : weight[point + 1];
  return whole + (tenth > '5' || (tenth == '5' && whole % 2 != 0) ? 1 : 0);
}

std::vector<std::string> Percentages(const RandomBatch& batch) {
  long total = 0;
  for (const Ingredient& ingredient : batch.ingredients) {
    total += Whole(ingredient.actual);
  }
  std::vector<std::string> texts;
  for (const Ingredient& ingredient : batch.ingredients) {
    const auto part = static_cast<double>(Whole(ingredient.actual));
    const float quotient = total > 0 ? static_cast<float>(part / static_cast<double>(total)) : 0.0F;
    texts.push_back(Rounded(quotient * 100.0F, 4));
  }
  return texts;
}

void ExpectFeed(const ParsedText& parsed, std::size_t row, const RandomBatch& batch,
                const Feed& feed) {
  EXPECT_EQ(parsed.Row(row), batch.transaction + "|" + batch.recipe + "|FEED|" + feed.target +
                                 "|||" + feed.pen + "|" + feed.actual + "|" + feed.time + "|" +
                                 feed.date + "|" + feed.user + "||");
  const std::vector<std::string> percentages = Percentages(batch);
  std::map<int, std::string> shares;
  for (std::size_t i = 0; i < percentages.size(); ++i) {
    const float percentage = std::strtof(percentages[i].c_str(), nullptr);
    if (!feed.actual.empty() && percentage > 0 && batch.ingredients[i].id <= 100) {
      shares[batch.ingredients[i].id] =
          Rounded(std::strtof(feed.actual.c_str(), nullptr) * (percentage / 100.0F), 1);
    }
  }
  std::string line;
  for (const auto& [id, share] : shares) {
    line += std::to_string(id) + "=" + share + " ";
  }
  EXPECT_EQ(parsed.Weights(row), line);
}

// Checks every cell and returns the number of rows.
std::size_t ExpectRows(const ParsedText& parsed, const Model& model) {
  std::size_t row = 0;
  for (const RandomBatch& batch : model.batches) {
    const std::vector<std::string> percentages = Percentages(batch);
    for (std::size_t i = 0; i < batch.ingredients.size(); ++i) {
      const Ingredient& ingredient = batch.ingredients[i];
      ++row;
      EXPECT_EQ(parsed.Row(row), batch.transaction + "|" + batch.recipe + "|BATCH|" +
                                     ingredient.target + "|" + std::to_string(ingredient.id) + "|" +
                                     ingredient.actual + "|||" + ingredient.time + "|" +
                                     batch.date + "|" + batch.user + "|" + percentages[i] + "|");
      EXPECT_EQ(parsed.Weights(row), "");
    }
    for (const Feed& feed : batch.feeds) {
      ExpectFeed(parsed, ++row, batch, feed);
    }
  }
  return row;
}

TEST(ParseTransactionFileProperty, ReadsBackWhatAModelWrote) {
  for (unsigned seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Model model = Generator(seed).Make();
    const std::string text = TextOf(model);
    ASSERT_LT(text.size(), 65536U);
    const ParsedText parsed(text);

    ASSERT_EQ(parsed.error, "");
    const std::size_t rows = ExpectRows(parsed, model);
    EXPECT_EQ(parsed.file.Imported().RowCount(), rows);
    EXPECT_EQ(parsed.file.FileRecordCount(), static_cast<int>(rows));
    EXPECT_EQ(parsed.file.FileTransactionCount(), static_cast<int>(model.batches.size()));
    EXPECT_EQ(parsed.file.FileUnits(), model.unit == 'L' || model.unit == 'l' ? "LB" : "KG");
    if (HasFailure()) {
      return;
    }
  }
}

// Records that fit no batch do not change what is read, wherever they are among the feeds.
TEST(ParseTransactionFileProperty, ReadsTheSameAmongFeedsThatFitNoBatch) {
  std::mt19937 random(7);
  for (unsigned seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Model model = Generator(seed).Make();
    std::string text = TextOf(model);
    const std::size_t feeds = text.find("[FED],") + std::string("[FED],").size();
    std::vector<std::string> strangers;
    std::size_t place = feeds;
    while (strangers.size() < 20) {
      strangers.push_back("B,x" + std::to_string(strangers.size()) + ",12,2,0915,01152009,7,8");
      text.insert(place, strangers.back() + "\r\n");
      place += strangers.back().size() + 2;
      // Skips some lines, as far as there are any.
      for (std::size_t lines = random() % 3; lines > 0 && text.compare(place, 2, "\r\n") != 0;
           --lines) {
        place = text.find("\r\n", place) + 2;
      }
    }
    const ParsedText parsed(text);
    ASSERT_EQ(parsed.error, "");
    const std::size_t rows = ExpectRows(parsed, model);
    EXPECT_EQ(parsed.file.Imported().FilledCount(), rows);
    std::vector<std::string> unread;
    for (const UnreadFeed& feed : parsed.file.Imported().UnreadFeeds()) {
      unread.push_back(feed.text);
    }
    EXPECT_EQ(unread, strangers);
  }
}

}  // namespace
}  // namespace vrx::testing
