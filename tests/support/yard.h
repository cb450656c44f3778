#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

namespace vrx::testing {

struct YardIngredient {
  std::string_view name;
  std::string_view description;
  double step;  // what the indicator weighs it in, pounds
};

struct RationPart {
  int ingredient;  // ID, from 1
  double percent;
};

struct YardRecipe {
  std::string_view name;
  std::string_view description;
  double pounds_a_head;  // fed a day
  std::vector<RationPart> parts;
};

// By ID less 1.
const std::vector<YardIngredient>& YardIngredients();
const std::vector<YardRecipe>& YardRecipes();

// What varies in a yard, from a seed.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : engine_(seed) {}

  double Share();                // 0 up to 1
  int Whole(int low, int high);  // both included
  double Scatter();              // around 0; two thirds lie between -1 and 1
  bool Happens(double probability) { return Share() < probability; }

 private:
  std::mt19937_64 engine_;
};

// The cattle of one pen: how many, and which day on feed it is.
class YardPen {
 public:
  // From 1 to 400; the number determines the kind of cattle.
  YardPen(int number, Chance& chance);

  int Recipe() const;  // ID
  int HeadCount() const { return head_count_; }
  void NextDay(Chance& chance);

 private:
  void Fill(Chance& chance);

  int number_;
  int day_on_feed_ = 0;
  int days_kept_ = 0;
  int head_count_ = 0;
  bool heifers_ = false;
};

}  // namespace vrx::testing
