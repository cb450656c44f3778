#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "legacy/convert.h"
#include "platform/conversion_display.h"
#include "platform/event_pump.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "platform/program_runner.h"
#include "platform/system_info.h"
#include "presenter/database_commands.h"
#include "settings/data_folder.h"
#include "settings/settings.h"

namespace vrx {

inline constexpr std::string_view kConversionTitle = "Database Conversion";
inline constexpr std::string_view kConversionErrorTitle = "Database Conversion Error";

// Asks about a Jet file to be opened, and converts a copy of it. Reports failures. All references
// outlive the object.
class ConversionOffer : public LegacyOpener {
 public:
  struct Ports {
    Operator& op;
    FileChooser& files;
    const SystemInfo& system;
    const Folder& app_folder;
    const PrivateINI& settings;
    EventPump& pump;
    ProgramRunner& runner;
    ConversionDisplay& display;
  };

  explicit ConversionOffer(const Ports& ports) : ports_(ports) {}

  LegacyOpening Offer(DatabaseKind kind, const std::filesystem::path& path) override;

 private:
  bool Asked();
  // The path of the copy, which must not exist yet; empty if the operator canceled.
  std::optional<std::filesystem::path> AskCopy(DatabaseKind kind);
  bool Convert(DatabaseKind kind, const std::filesystem::path& old_file,
               const std::filesystem::path& copy);
  void Refuse(std::string_view text);

  Ports ports_;
};

}  // namespace vrx
