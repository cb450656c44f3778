#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "base/translation.h"
#include "legacy/convert.h"
#include "platform/conversion_display.h"
#include "presenter/database_commands.h"
#include "presenter/services.h"

namespace vrx {

inline constexpr std::string_view kConversionTitle = TrMark("Database Conversion");
inline constexpr std::string_view kConversionErrorTitle = TrMark("Database Conversion Error");

// Asks about a Jet file to be opened, and converts a copy of it. Reports failures. All references
// outlive the object.
class ConversionOffer : public LegacyOpener {
 public:
  ConversionOffer(Services& services, ConversionDisplay& display)
      : services_(services), display_(display) {}

  LegacyOpening Offer(DatabaseKind kind, const std::filesystem::path& path) override;

 private:
  bool Asked();
  // The path of the copy, which must not exist yet; empty if the operator canceled.
  std::optional<std::filesystem::path> AskCopy(DatabaseKind kind);
  bool Convert(DatabaseKind kind, const std::filesystem::path& old_file,
               const std::filesystem::path& copy);
  void Refuse(std::string_view text);

  Services& services_;
  ConversionDisplay& display_;
};

}  // namespace vrx
