// Generates years of a yard: a transaction database of any size and its recipe database.
//
//   make_years --out YEARS.TDB [--recipes YEARS.RDB] [--rows N | --days N] [--seed N]

#include <cstdint>
#include <exception>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>

#include "base/number.h"
#include "support/yard_generator.h"

namespace {

int Number(const std::string& option, const std::string& text) {
  const auto number = vrx::ParseLong(text);
  if (!number || *number < 1) {
    throw std::invalid_argument(option + " takes a whole number from 1, not \"" + text + "\"");
  }
  return *number;
}

void Read(std::span<char* const> arguments, vrx::testing::YardYears& years,
          vrx::testing::YardFiles& files) {
  for (std::size_t i = 0; i < arguments.size(); i += 2) {
    const std::string option = arguments[i];
    if (i + 1 == arguments.size()) {
      throw std::invalid_argument(option + " takes a value");
    }
    const std::string value = arguments[i + 1];
    if (option == "--out") {
      files.transactions = value;
    } else if (option == "--recipes") {
      files.recipes = value;
    } else if (option == "--rows") {
      years.rows = Number(option, value);
    } else if (option == "--days") {
      years.days = Number(option, value);
    } else if (option == "--seed") {
      years.seed = static_cast<std::uint64_t>(Number(option, value));
    } else {
      throw std::invalid_argument("unknown option " + option);
    }
  }
  if (files.transactions.empty()) {
    throw std::invalid_argument("--out is missing");
  }
}

}  // namespace

int main(int argc, char** argv) {
  vrx::testing::YardYears years;
  vrx::testing::YardFiles files{.program_directory = VRX_BIN_DIR, .transactions = {}};
  try {
    Read({argv + 1, static_cast<std::size_t>(argc) - 1}, years, files);
  } catch (const std::invalid_argument& error) {
    std::cerr << "make_years: " << error.what()
              << "\nusage: make_years --out YEARS.TDB [--recipes YEARS.RDB] [--rows N | --days N]"
                 " [--seed N]\n";
    return 2;
  }
  try {
    std::cout << vrx::testing::MakeYears(years, files) << " records\n";
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "make_years: " << error.what() << '\n';
    return 1;
  }
}
