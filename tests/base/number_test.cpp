#include "base/number.h"

#include <cfenv>
#include <cmath>
#include <limits>
#include <locale>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "base/date.h"
#include "base/error.h"

namespace vrx {
namespace {

TEST(ParseNumber, ReadsSignDigitsPointExponentAndBlanksAround) {
  EXPECT_EQ(ParseNumber("500"), 500.0);
  EXPECT_EQ(ParseNumber("  -12.5  "), -12.5);
  EXPECT_EQ(ParseNumber("+7"), 7.0);
  EXPECT_EQ(ParseNumber("5."), 5.0);
  EXPECT_EQ(ParseNumber(".5"), 0.5);
  EXPECT_EQ(ParseNumber("1e3"), 1000.0);
  EXPECT_EQ(ParseNumber("1.5E-2"), 0.015);
  EXPECT_EQ(ParseNumber("2e+2"), 200.0);
  EXPECT_EQ(ParseNumber("007"), 7.0);
}

TEST(ParseNumber, RejectsAnythingElse) {
  for (const char* const text :
       {"",    " ",     ".",         "-",   "+",   "-.",  "e5", ".e5", "5e",
        "5e+", "1.2.3", "1,5",       "1 2", "--5", "+-5", "5-", "- 5", "0x10",
        "inf", "nan",   "-Infinity", "$5",  "5%",  "abc", "5a", "\t5", "5\n"}) {
    EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
  }
  EXPECT_EQ(ParseNumber(std::string_view("5\0", 2)), std::nullopt);
}

TEST(ParseNumber, RejectsNumbersTooLargeForADoubleAndReadsTooSmallOnesAs0) {
  EXPECT_EQ(ParseNumber("1e308"), 1e308);
  EXPECT_EQ(ParseNumber("1e309"), std::nullopt);
  EXPECT_EQ(ParseNumber("-1e99999999999999999999"), std::nullopt);
  EXPECT_EQ(ParseNumber("0.1e400"), std::nullopt);
  EXPECT_EQ(ParseNumber(std::string(400, '9')), std::nullopt);
  EXPECT_EQ(ParseNumber("1e-999"), 0.0);
  EXPECT_EQ(ParseNumber("123456e-99999999999999999999"), 0.0);
  EXPECT_EQ(ParseNumber("." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(ParseNumber("0e99999999999999999999"), 0.0);
}

TEST(RoundToLong, RoundsHalvesToEven) {
  EXPECT_EQ(RoundToLong(0.5), 0);
  EXPECT_EQ(RoundToLong(1.5), 2);
  EXPECT_EQ(RoundToLong(2.5), 2);
  EXPECT_EQ(RoundToLong(-0.5), 0);
  EXPECT_EQ(RoundToLong(-1.5), -2);
  EXPECT_EQ(RoundToLong(-2.5), -2);
  EXPECT_EQ(RoundToLong(2.4999999999999996), 2);
  EXPECT_EQ(RoundToLong(2.5000000000000004), 3);
  EXPECT_EQ(RoundToLong(0.49999999999999994), 0);
  EXPECT_EQ(RoundToLong(-0.49999999999999994), 0);
}

TEST(RoundToLong, GivesNothingOutside32Bits) {
  EXPECT_EQ(RoundToLong(2147483647.0), 2147483647);
  EXPECT_EQ(RoundToLong(2147483647.4), 2147483647);
  EXPECT_EQ(RoundToLong(2147483647.5), std::nullopt);
  EXPECT_EQ(RoundToLong(-2147483648.5), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(RoundToLong(-2147483649.0), std::nullopt);
  EXPECT_EQ(RoundToLong(1e300), std::nullopt);
  EXPECT_EQ(RoundToLong(std::numeric_limits<double>::infinity()), std::nullopt);
  EXPECT_EQ(RoundToLong(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
}

TEST(RoundToLong, DoesNotDependOnTheRoundingModeOfTheProcessor) {
  const int before = std::fegetround();
  for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    ASSERT_EQ(std::fesetround(mode), 0);
    const auto half = RoundToLong(2.5);
    const auto above = RoundToLong(2.6);
    const auto below = RoundToLong(-2.4);
    std::fesetround(before);
    EXPECT_EQ(half, 2);
    EXPECT_EQ(above, 3);
    EXPECT_EQ(below, -2);
  }
}

TEST(ParseLong, RoundsTheNumberOfAText) {
  EXPECT_EQ(ParseLong(" 12.5 "), 12);
  EXPECT_EQ(ParseLong("13.5"), 14);
  EXPECT_EQ(ParseLong("1e3"), 1000);
  EXPECT_EQ(ParseLong("abc"), std::nullopt);
  EXPECT_EQ(ParseLong("2147483648"), std::nullopt);
}

TEST(TextToLong, GivesZeroForATextWithoutDigits) {
  EXPECT_EQ(TextToLong("STEERS"), 0);
  EXPECT_EQ(TextToLong(""), 0);
  EXPECT_EQ(TextToLong("3000000000"), 0);
  EXPECT_EQ(TextToLong("-42"), -42);
}

TEST(TextToInt, Reads16Bits) {
  EXPECT_EQ(TextToInt(""), 0);
  EXPECT_EQ(TextToInt("32767"), 32767);
  EXPECT_EQ(TextToInt("-32768"), -32768);
  EXPECT_EQ(TextToInt("99.5"), 100);
}

TEST(TextToInt, FailsForATextWithoutDigitsAndBeyond16Bits) {
  EXPECT_THROW(static_cast<void>(TextToInt("STEERS")), ConversionError);
  EXPECT_THROW(static_cast<void>(TextToInt(" ")), ConversionError);
  EXPECT_THROW(static_cast<void>(TextToInt("32768")), ConversionError);
  EXPECT_THROW(static_cast<void>(TextToInt("-32769")), ConversionError);
}

TEST(TextToSingle, ReadsASingle) {
  EXPECT_EQ(TextToSingle(""), 0.0F);
  EXPECT_EQ(TextToSingle("0.1"), 0.1F);
  EXPECT_EQ(TextToSingle("16777217"), 16777216.0F);
  EXPECT_EQ(TextToSingle("1e-60"), 0.0F);
}

TEST(TextToSingle, FailsForNoNumberAndForOneTooLarge) {
  EXPECT_THROW(static_cast<void>(TextToSingle("x")), ConversionError);
  EXPECT_THROW(static_cast<void>(TextToSingle(".")), ConversionError);
  EXPECT_THROW(static_cast<void>(TextToSingle("1e39")), ConversionError);
}

TEST(Format, RoundsHalvesAwayFromZeroOnDecimalDigits) {
  EXPECT_EQ(Format(1.5625, "0.000"), "1.563");
  EXPECT_EQ(Format(2.675, "0.00"), "2.68");
  EXPECT_EQ(Format(-2.675, "0.00"), "-2.68");
  EXPECT_EQ(Format(0.5, "0"), "1");
  EXPECT_EQ(Format(1.5, "0"), "2");
  EXPECT_EQ(Format(2.5, "0"), "3");
  EXPECT_EQ(Format(-2.5, "0"), "-3");
  EXPECT_EQ(Format(1.005, "0.00"), "1.01");
  EXPECT_EQ(Format(0.285, "0.00"), "0.29");
}

TEST(Format, Uses15DigitsOfADouble) {
  EXPECT_EQ(Format(2.4999999999999996, "0"), "3");  // reads 2.50000000000000
  EXPECT_EQ(Format(2.4999999999999, "0"), "2");
}

TEST(Format, Uses7DigitsOfASingle) {
  EXPECT_EQ(Format(2.675F, "0.00"), "2.68");
  EXPECT_EQ(Format(0.1F, "0.0000000000"), "0.1000000000");
  EXPECT_EQ(Format(16777216.0F, "0"), "16777220");
}

TEST(Format, RoundsATieAtTheLastDigitOfASingleToEven) {
  EXPECT_EQ(Format(1234566.5F, "0"), "1234566");
  EXPECT_EQ(Format(1234567.5F, "0"), "1234568");
}

TEST(Format, CarriesThroughNines) {
  EXPECT_EQ(Format(9.9996, "0.000"), "10.000");
  EXPECT_EQ(Format(9.9994, "0.000"), "9.999");
  EXPECT_EQ(Format(0.9996, "0.000"), "1.000");
  EXPECT_EQ(Format(0.0996, "0.000"), "0.100");
  EXPECT_EQ(Format(99.5, "0"), "100");
  EXPECT_EQ(Format(199.96, "0.0"), "200.0");
}

TEST(Format, WritesValuesBelow1) {
  EXPECT_EQ(Format(0.05, "0.0"), "0.1");
  EXPECT_EQ(Format(0.04, "0.0"), "0.0");
  EXPECT_EQ(Format(0.004, "0.000"), "0.004");
  EXPECT_EQ(Format(0.0005, "0.000"), "0.001");
  EXPECT_EQ(Format(1e-300, "0.000"), "0.000");
  EXPECT_EQ(Format(5e-324, "0"), "0");
}

TEST(Format, WritesZeroWithoutSign) {
  EXPECT_EQ(Format(0.0, "0.00"), "0.00");
  EXPECT_EQ(Format(-0.0, "0"), "0");
  EXPECT_EQ(Format(-0.4, "0"), "0");
  EXPECT_EQ(Format(-0.04, "0.0"), "0.0");
  EXPECT_EQ(Format(-0.5, "0"), "-1");
}

TEST(Format, WritesHugeValuesOut) {
  EXPECT_EQ(Format(1e20, "0.0"), "100000000000000000000.0");
  EXPECT_EQ(Format(123456789012345678.0, "0"), "123456789012346000");
  EXPECT_EQ(Format(std::numeric_limits<double>::max(), "0").size(), 309U);
}

TEST(Format, FillsWithZerosByItsPattern) {
  EXPECT_EQ(Format(7.0, "000"), "007");
  EXPECT_EQ(Format(7, "00"), "07");
  EXPECT_EQ(Format(1234, "000"), "1234");
  EXPECT_EQ(Format(0, "000"), "000");
  EXPECT_EQ(Format(-7, "000"), "-007");
  EXPECT_EQ(Format(7, "#0"), "7");
  EXPECT_EQ(Format(0, "#0"), "0");
  EXPECT_EQ(Format(12.3, "00.00"), "12.30");
}

TEST(Format, RefusesAPatternItDoesNotKnow) {
  for (const char* const pattern : {"", "#", ".0", "0,0", "@@@", "0.0%", "0.0.0"}) {
    EXPECT_THROW(static_cast<void>(Format(1.0, pattern)), std::invalid_argument) << pattern;
  }
}

TEST(Format, FailsForInfinityAndNaN) {
  EXPECT_THROW(static_cast<void>(Format(std::numeric_limits<double>::infinity(), "0")),
               ConversionError);
  EXPECT_THROW(static_cast<void>(Format(std::numeric_limits<float>::quiet_NaN(), "0")),
               ConversionError);
}

TEST(DefaultText, HasNoTrailingZerosAndNoExponentForOrdinarySizes) {
  EXPECT_EQ(DefaultText(500.5), "500.5");
  EXPECT_EQ(DefaultText(500.0), "500");
  EXPECT_EQ(DefaultText(0.0), "0");
  EXPECT_EQ(DefaultText(-0.0), "0");
  EXPECT_EQ(DefaultText(-12.25), "-12.25");
  EXPECT_EQ(DefaultText(0.001), "0.001");
  EXPECT_EQ(DefaultText(0.00001), "0.00001");
  EXPECT_EQ(DefaultText(1000000), "1000000");
  EXPECT_EQ(DefaultText(999999999999999.0), "999999999999999");
}

TEST(DefaultText, Has15DigitsOfADoubleAnd7OfASingle) {
  EXPECT_EQ(DefaultText(0.1 + 0.2), "0.3");
  EXPECT_EQ(DefaultText(1.0 / 3.0), "0.333333333333333");
  EXPECT_EQ(DefaultText(0.1F), "0.1");
  EXPECT_EQ(DefaultText(1.0F / 3.0F), "0.3333333");
  EXPECT_EQ(DefaultText(1234567.5F), "1234568");
}

TEST(DefaultText, HasAnExponentForExtraordinarySizes) {
  EXPECT_EQ(DefaultText(1e15), "1E+15");
  EXPECT_EQ(DefaultText(-1.5e100), "-1.5E+100");
  EXPECT_EQ(DefaultText(0.0000015), "1.5E-06");
}

TEST(DefaultText, OfADateIsMonthDayYearWithoutLeadingZeros) {
  using namespace std::chrono;
  EXPECT_EQ(DefaultText(Date{2011y, March, 4d}), "3/4/2011");
  EXPECT_EQ(DefaultText(Date{2026y, December, 31d}), "12/31/2026");
}

TEST(DefaultText, OfATimeUsesTwelveHours) {
  EXPECT_EQ(DefaultText(TimeOfDay{0, 0, 0}), "12:00:00 AM");
  EXPECT_EQ(DefaultText(TimeOfDay{9, 5, 7}), "9:05:07 AM");
  EXPECT_EQ(DefaultText(TimeOfDay{12, 0, 0}), "12:00:00 PM");
  EXPECT_EQ(DefaultText(TimeOfDay{23, 59, 59}), "11:59:59 PM");
}

TEST(StoredText, RoundTripsEveryDayAndSomeTimes) {
  using namespace std::chrono;
  const sys_days last{2028y / March / 1};
  for (sys_days day{2023y / January / 1}; day < last; day += days{1}) {
    const Date date{day};
    EXPECT_EQ(ParseStoredDate(StoredText(date)), date) << StoredText(date);
  }
  EXPECT_EQ(StoredText(Date{2026y, January, 5d}), "2026-01-05");
  for (int hour = 0; hour < 24; ++hour) {
    const TimeOfDay time{hour, (hour * 7) % 60, (hour * 13) % 60};
    EXPECT_EQ(ParseStoredTime(StoredText(time)), time);
  }
  EXPECT_EQ(StoredText(TimeOfDay{7, 3, 0}), "07:03:00");
}

TEST(ParseStoredDate, RefusesOtherFormsAndDaysThatDoNotExist) {
  for (const char* const text :
       {"", "2026-1-5", "2026/01/05", "1/5/2026", "2026-13-01", "2026-00-10", "2026-02-29",
        "2026-01-32", "2026-01-05 ", " 2026-01-05", "2026-01-0x", "-026-01-05"}) {
    EXPECT_EQ(ParseStoredDate(text), std::nullopt) << text;
  }
  EXPECT_TRUE(ParseStoredDate("2028-02-29"));
}

TEST(ParseStoredTime, RefusesOtherFormsAndTimesThatDoNotExist) {
  for (const char* const text :
       {"", "7:03:00", "07:03", "24:00:00", "07:60:00", "07:03:60", "07:03:00 AM", "0a:00:00"}) {
    EXPECT_EQ(ParseStoredTime(text), std::nullopt) << text;
  }
}

// Has a decimal comma and groups thousands by points; needs no locale of the machine.
class CommaPunctuation : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Numbers, IgnoreTheLocale) {
  const std::locale before = std::locale::global(
      std::locale(std::locale::classic(), std::make_unique<CommaPunctuation>().release()));
  EXPECT_EQ(ParseNumber("1.5"), 1.5);
  EXPECT_EQ(ParseNumber("1,5"), std::nullopt);
  EXPECT_EQ(Format(1234567.5, "0.00"), "1234567.50");
  EXPECT_EQ(DefaultText(1234.25), "1234.25");
  std::locale::global(before);
}

}  // namespace
}  // namespace vrx
