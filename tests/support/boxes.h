#pragma once

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/operator.h"

namespace vrx {

// How a failed test shows a box.
void PrintTo(const MessageBox& box, std::ostream* out);

}  // namespace vrx

namespace vrx::testing {

// The last box that was shown; throws if there is none.
const MessageBox& LastBox(const std::vector<MessageBox>& boxes);

// The only box that was shown; throws if there is none or another one.
const MessageBox& OnlyBox(const std::vector<MessageBox>& boxes);

// Matches a box with these; the text may be a matcher.
::testing::Matcher<const MessageBox&> IsBox(Icon icon, const std::string& title,
                                            const ::testing::Matcher<std::string>& text,
                                            Buttons buttons = Buttons::kOk);

}  // namespace vrx::testing
