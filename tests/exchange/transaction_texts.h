#pragma once

#include <string>
#include <string_view>

namespace vrx::testing {

// Two batches, three feeds, six rows. The lists have five entries; two ingredients need at least
// four.
inline constexpr std::string_view kWorkedExample =
    "{BAT/FED},L\r\n"
    "[BAT],B,1,3,01152009,2,4,7,0,0,0;0830,0835,0,0,0;1000.0,500.0,0,0,0;998.0,503.5,0,0,0\r\n"
    "B,2,3,01152009,2,4,0,0,0,0;0910,0,0,0,0;800.0,0,0,0,0;801.0,0,0,0,0\r\n"
    "\r\n"
    "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n"
    "B,1,14,2,0921,01152009,750.0,752.0\r\n"
    "B,2,12,2,0958,01152009,800.0,801.0\r\n"
    "\r\n";

// A file with the records of two sections. Each record must include its line end.
inline std::string FileOf(std::string_view batches, std::string_view feeds) {
  return std::string("{BAT/FED},L\r\n[BAT],")
      .append(batches)
      .append("\r\n[FED],")
      .append(feeds)
      .append(feeds.empty() ? "\r\n\r\n" : "\r\n");
}

// One batch record with one ingredient and no optional parts.
struct OneIngredient {
  std::string transaction = "1";
  std::string ingredient = "4";
  std::string time = "0830";
  std::string target = "1000.0";
  std::string actual = "1000.0";

  std::string Record() const {
    return "B," + transaction + ",3,01152009,2," + ingredient + ",0,0;" + time + ",0,0;" + target +
           ",0,0;" + actual + ",0,0\r\n";
  }
};

// A feed record of pen 12.
inline std::string FeedOf(std::string_view transaction, std::string_view actual) {
  return std::string("B,")
      .append(transaction)
      .append(",12,2,0915,01152009,750.0,")
      .append(actual)
      .append("\r\n");
}

}  // namespace vrx::testing
