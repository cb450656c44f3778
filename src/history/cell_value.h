#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace vrx {

// A value as a transaction database stores it: NULL, a whole number, a number, a text (UTF-8).
using CellValue = std::variant<std::monostate, std::int64_t, double, std::string>;

inline bool IsNull(const CellValue& value) { return std::holds_alternative<std::monostate>(value); }

}  // namespace vrx
