#include "adapters/line_settings.h"

#include <gtest/gtest.h>

#include "platform/serial_control.h"

namespace vrx::testing {
namespace {

TEST(LineSettings, ReadsTheFourParts) {
  EXPECT_EQ(ParseLineSettings("19200,n,8,1"), (LineSettings{19200, Parity::kNone, 8, 1}));
  EXPECT_EQ(ParseLineSettings("1200,e,7,2"), (LineSettings{1200, Parity::kEven, 7, 2}));
  EXPECT_EQ(ParseLineSettings("300,s,5,1"), (LineSettings{300, Parity::kSpace, 5, 1}));
}

TEST(LineSettings, RefusesEveryOtherForm) {
  for (const char* text :
       {"", "19200", "19200,n,8", "19200,n,8,1,", "19200,n,8,1,2", "0,n,8,1", "fast,n,8,1",
        "19200,x,8,1", "19200,,8,1", "19200,no,8,1", "19200,n,9,1", "19200,n,4,1", "19200,n,8,0",
        "19200,n,8,3", "-1,n,8,1", " 19200,n,8,1", "99999999999,n,8,1"}) {
    EXPECT_THROW(ParseLineSettings(text), SerialError) << text;
  }
}

}  // namespace
}  // namespace vrx::testing
