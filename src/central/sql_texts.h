#pragma once

#include <string_view>

// The files of sql/.
namespace vrx::sql {

extern const std::string_view kRoles;
extern const std::string_view kVersion1;
extern const std::string_view kVersion1Rights;
extern const std::string_view kPush;
extern const std::string_view kAdministration;
extern const std::string_view kUnits;
extern const std::string_view kFigures;
extern const std::string_view kViews;

}  // namespace vrx::sql
