#include "legacy/legacy_rows.h"

#include <bit>
#include <type_traits>

namespace vrx {
namespace {

std::uint64_t BitsOf(const LegacyValue& value) {
  return std::visit(
      [](const auto& held) -> std::uint64_t {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, float>) {
          return std::bit_cast<std::uint32_t>(held);
        } else if constexpr (std::is_same_v<Held, double>) {
          return std::bit_cast<std::uint64_t>(held);
        } else if constexpr (std::is_same_v<Held, JetDate>) {
          return std::bit_cast<std::uint64_t>(held.days);
        } else if constexpr (std::is_same_v<Held, std::string>) {
          std::uint64_t sum = held.size();
          for (const char byte : held) {
            sum = sum * 31 + static_cast<unsigned char>(byte);
          }
          return sum;
        } else if constexpr (std::is_same_v<Held, std::monostate>) {
          return 0;
        } else {
          return static_cast<std::uint64_t>(held);
        }
      },
      value);
}

}  // namespace

void AddToSum(ColumnSum& sum, const LegacyValue& value) {
  if (!IsNull(value)) {
    ++sum.values;
    sum.bits += BitsOf(value);
  }
}

}  // namespace vrx
