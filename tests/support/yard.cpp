#include "support/yard.h"

namespace vrx::testing {

namespace {

constexpr double kCoarse = 5;
constexpr double kFine = 1;
constexpr double kFinest = 0.5;

enum Ingredient : int {
  kCorn = 1,
  kHighMoistureCorn,
  kBarley,
  kBarleySilage,
  kCornSilage,
  kAlfalfa,
  kGrassHay,
  kStraw,
  kDistillersGrain,
  kSoybeanMeal,
  kMolasses,
  kFat,
  kMinerals,
  kMedicated,
  kCottonSeed,
  kBeetPulp,
  kCanola,
  kUrea,
  kLimestone,
  kSalt,
};

enum Recipe : int {
  kStarter = 1,
  kStep2,
  kStep3,
  kStep4,
  kFinish,
  kFinishHot,
  kFinishHeifers,
  kGrower,
  kGrowerWinter,
  kHeifers,
  kHospital,
  kDryCows,
};

// The first pen of each kind; finishing cattle are in the pens before them.
constexpr int kFirstGrowerPen = 341;
constexpr int kFirstHeiferPen = 371;
constexpr int kFirstHospitalPen = 386;
constexpr int kFirstCowPen = 393;

constexpr int kDaysOfAStep = 7;

std::vector<YardRecipe> StartingRecipes() {
  return {
      {"STARTR",
       "Starter ration",
       15,
       {{kAlfalfa, 22},
        {kGrassHay, 12},
        {kCornSilage, 20},
        {kCorn, 28},
        {kDistillersGrain, 8},
        {kSoybeanMeal, 4},
        {kMolasses, 3},
        {kMinerals, 1.6},
        {kMedicated, 0.4},
        {kSalt, 1}}},
      {"STEP2",
       "Step-up 2",
       19,
       {{kAlfalfa, 16},
        {kGrassHay, 8},
        {kCornSilage, 20},
        {kCorn, 38},
        {kDistillersGrain, 10},
        {kSoybeanMeal, 2},
        {kMolasses, 3},
        {kMinerals, 1.6},
        {kMedicated, 0.4},
        {kSalt, 1}}},
      {"STEP3",
       "Step-up 3",
       22,
       {{kAlfalfa, 12},
        {kCornSilage, 18},
        {kCorn, 36},
        {kHighMoistureCorn, 12},
        {kDistillersGrain, 13},
        {kMolasses, 4},
        {kMinerals, 1.8},
        {kMedicated, 0.4},
        {kUrea, 0.6},
        {kLimestone, 1.2},
        {kSalt, 1}}},
      {"STEP4",
       "Step-up 4",
       24,
       {{kAlfalfa, 8},
        {kCornSilage, 14},
        {kCorn, 42},
        {kHighMoistureCorn, 14},
        {kDistillersGrain, 14},
        {kMolasses, 3},
        {kFat, 1},
        {kMinerals, 1.8},
        {kMedicated, 0.4},
        {kUrea, 0.6},
        {kLimestone, 1.2}}},
  };
}

std::vector<YardRecipe> FinishingRecipes() {
  return {
      {"FINISH",
       "Finisher",
       26,
       {{kCornSilage, 9},
        {kAlfalfa, 4},
        {kCorn, 48},
        {kHighMoistureCorn, 16},
        {kDistillersGrain, 15},
        {kMolasses, 2},
        {kFat, 2},
        {kMinerals, 1.6},
        {kUrea, 0.8},
        {kLimestone, 1.6}}},
      {"FINHOT",
       "Finisher hot",
       27,
       {{kCornSilage, 7},
        {kStraw, 2},
        {kCorn, 52},
        {kHighMoistureCorn, 16},
        {kDistillersGrain, 15},
        {kMolasses, 2},
        {kFat, 2.5},
        {kMinerals, 1.2},
        {kUrea, 0.8},
        {kLimestone, 1.5}}},
      {"FINHFR",
       "Finisher heifers",
       24,
       {{kCornSilage, 9},
        {kAlfalfa, 4},
        {kCorn, 46},
        {kHighMoistureCorn, 16},
        {kDistillersGrain, 16},
        {kMolasses, 2},
        {kFat, 2},
        {kMinerals, 1.6},
        {kMedicated, 0.4},
        {kUrea, 0.8},
        {kLimestone, 2.2}}},
  };
}

std::vector<YardRecipe> OtherRecipes() {
  return {
      {"GROWER",
       "Growing calves",
       17,
       {{kBarleySilage, 38},
        {kGrassHay, 14},
        {kBarley, 26},
        {kDistillersGrain, 12},
        {kCanola, 5},
        {kMinerals, 2},
        {kUrea, 0.5},
        {kLimestone, 1.5},
        {kSalt, 1}}},
      {"GRWWIN",
       "Growing winter",
       19,
       {{kBarleySilage, 34},
        {kGrassHay, 16},
        {kBarley, 30},
        {kDistillersGrain, 10},
        {kCottonSeed, 4},
        {kCanola, 2},
        {kMinerals, 2},
        {kLimestone, 1},
        {kSalt, 1}}},
      {"HEIFER",
       "Replace heifers",
       20,
       {{kBarleySilage, 40},
        {kGrassHay, 24},
        {kStraw, 6},
        {kBarley, 14},
        {kBeetPulp, 8},
        {kCanola, 4},
        {kMinerals, 2},
        {kLimestone, 1},
        {kSalt, 1}}},
      {"HOSPIT",
       "Hospital pen",
       12,
       {{kGrassHay, 40},
        {kAlfalfa, 20},
        {kBarley, 20},
        {kBeetPulp, 10},
        {kMolasses, 5},
        {kMinerals, 2.5},
        {kMedicated, 1.5},
        {kSalt, 1}}},
      {"dRYCOW",
       "Dry cows",
       25,
       {{kGrassHay, 44},
        {kStraw, 20},
        {kBarleySilage, 26},
        {kCottonSeed, 6},
        {kMinerals, 2},
        {kLimestone, 1},
        {kSalt, 1}}},
  };
}

}  // namespace

const std::vector<YardIngredient>& YardIngredients() {
  static const std::vector<YardIngredient> ingredients{
      {"CORN", "Corn flaked", kCoarse},        {"HMCORN", "Corn high moist", kCoarse},
      {"bARLEY", "Barley rolled", kCoarse},    {"bARSIL", "Barley silage", kCoarse},
      {"CRNSIL", "Corn silage", kCoarse},      {"ALFHAY", "Alfalfa hay", kCoarse},
      {"GRSHAY", "Grass hay", kCoarse},        {"STRAW", "Wheat straw", kCoarse},
      {"dGRAIN", "Distillers grain", kCoarse}, {"SOYbML", "Soybean meal", kFine},
      {"MOLASS", "Cane molasses", kFine},      {"FAT", "Feed fat", kFine},
      {"MINRAL", "Mineral premix", kFinest},   {"MEdPRM", "Medicated premix", kFinest},
      {"COTSEd", "Cotton seed", kCoarse},      {"bEETPP", "Beet pulp", kCoarse},
      {"CANOLA", "Canola meal", kFine},        {"UREA", "Urea", kFinest},
      {"LIMEST", "Limestone", kFinest},        {"SALT", "Salt", kFinest},
  };
  return ingredients;
}

const std::vector<YardRecipe>& YardRecipes() {
  static const std::vector<YardRecipe> recipes = [] {
    std::vector<YardRecipe> all = StartingRecipes();
    for (auto* const more : {FinishingRecipes, OtherRecipes}) {
      const std::vector<YardRecipe> recipes_of_kind = more();
      all.insert(all.end(), recipes_of_kind.begin(), recipes_of_kind.end());
    }
    return all;
  }();
  return recipes;
}

double Chance::Share() {
  constexpr double kBits53 = 9007199254740992.0;
  return static_cast<double>(engine_() >> 11U) / kBits53;
}

int Chance::Whole(int low, int high) {
  return low + static_cast<int>(Share() * static_cast<double>(high - low + 1));
}

double Chance::Scatter() { return 2 * (Share() + Share() + Share() - 1.5); }

YardPen::YardPen(int number, Chance& chance) : number_(number) {
  Fill(chance);
  day_on_feed_ = chance.Whole(0, days_kept_ - 1);
}

void YardPen::Fill(Chance& chance) {
  day_on_feed_ = 0;
  days_kept_ = chance.Whole(130, 170);
  head_count_ = number_ >= kFirstHospitalPen && number_ < kFirstCowPen ? chance.Whole(5, 40)
                                                                       : chance.Whole(60, 220);
  heifers_ = chance.Happens(0.3);
}

int YardPen::Recipe() const {
  if (number_ >= kFirstCowPen) {
    return kDryCows;
  }
  if (number_ >= kFirstHospitalPen) {
    return kHospital;
  }
  if (number_ >= kFirstHeiferPen) {
    return kHeifers;
  }
  if (number_ >= kFirstGrowerPen) {
    return day_on_feed_ < days_kept_ / 2 ? kGrower : kGrowerWinter;
  }
  if (day_on_feed_ < 4 * kDaysOfAStep) {
    return kStarter + day_on_feed_ / kDaysOfAStep;
  }
  if (heifers_) {
    return kFinishHeifers;
  }
  return day_on_feed_ < days_kept_ - 30 ? kFinish : kFinishHot;
}

void YardPen::NextDay(Chance& chance) {
  if (++day_on_feed_ >= days_kept_) {
    Fill(chance);
  } else if (chance.Happens(0.02)) {
    --head_count_;  // gone to the hospital pen
  }
}

}  // namespace vrx::testing
