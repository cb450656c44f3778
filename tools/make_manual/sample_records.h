#pragma once

#include <filesystem>
#include <vector>

#include "presenter/services.h"

namespace vrx::manual {

// Makes a transaction database of these transaction files, with the names of a recipe database.
// Throws Error.
void MakeTransactionDatabase(const std::filesystem::path& target,
                             const std::filesystem::path& recipes,
                             const std::vector<std::filesystem::path>& files, Services& services);

}  // namespace vrx::manual
