#include "base/date.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

std::string Typed(const std::string& text) {
  const std::optional<Date> date = ParseTypedDate(text);
  return date ? StoredText(*date) : "none";
}

TEST(TypedDate, IsReadInEveryFormThatTheProgramShows) {
  for (const char* const text : {"3/4/2011", "03/04/2011", "3/4/11", "2011-03-04", "04-Mar-11",
                                 "4-mar-2011", "4-MAR-11", " 3/4/2011  "}) {
    EXPECT_EQ(Typed(text), "2011-03-04") << text;
  }
  EXPECT_EQ(Typed("1/1/00"), "2000-01-01");
  EXPECT_EQ(Typed("12/31/99"), "2099-12-31");
  EXPECT_EQ(Typed("2/29/2024"), "2024-02-29");
}

TEST(TypedDate, RefusesEverythingElse) {
  for (const char* const text :
       {"",         " ",         "3/4",       "3/4/",     "3/4/201",    "3/4/20111", "13/1/2026",
        "0/1/2026", "1/32/2026", "2/29/2026", "2026-2-3", "2026-02-30", "31.1.2026", "3-4-2026",
        "4-Mrz-11", "a/b/c",     "1/2/3/4",   "1//2026",  "-1/2/2026",  "today",     "1/ 2/2026"}) {
    EXPECT_EQ(Typed(text), "none") << text;
  }
}

}  // namespace
}  // namespace vrx::testing
