#pragma once

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vrx::testing {

// Compares bytes with the golden file of that path below tests/, such as
// "export/golden/group_00.csv". If VRX_REWRITE_GOLDEN is set, writes them into the file instead,
// and fails.
::testing::AssertionResult IsGolden(std::string_view bytes, const std::string& path);

}  // namespace vrx::testing
