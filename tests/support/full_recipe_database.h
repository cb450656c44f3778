#pragma once

#include <cstdint>
#include <filesystem>

namespace vrx::testing {

// Makes a user's recipe database with everything in it that can be: 100 ingredients, 100 recipes of
// 32 lines and of every batch type in turn, 400 pens with feed. Its texts are such as can be typed,
// its computed columns are those of the lines. The same seed makes the same records.
void MakeFullRecipeDatabase(const std::filesystem::path& path, std::uint32_t seed = 1);

}  // namespace vrx::testing
