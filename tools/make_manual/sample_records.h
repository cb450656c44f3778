#pragma once

#include <filesystem>
#include <vector>

#include "platform/calendar.h"
#include "platform/operator.h"
#include "platform/system_info.h"
#include "settings/settings.h"

namespace vrx::manual {

struct SamplePorts {
  Operator& op;
  const SystemInfo& system;
  const Calendar& calendar;
  const PrivateINI& settings;
};

// Makes a transaction database of these transaction files, with the names of a recipe database.
// Throws Error.
void MakeTransactionDatabase(const std::filesystem::path& target,
                             const std::filesystem::path& recipes,
                             const std::vector<std::filesystem::path>& files,
                             const SamplePorts& ports);

}  // namespace vrx::manual
