// Whatever bytes a transaction file holds, the parse ends with an error text or with rows.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "exchange/imported_data.h"
#include "exchange/transaction_parser.h"
#include "presenter/silent_ports.h"
#include "settings/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vrx::PrivateINI settings;
  vrx::testing::SilentOperator op;
  vrx::testing::SilentProgress progress;
  vrx::TransFile file;
  file.SetText(std::string(data, data + size));
  if (file.ParseTransactionFile(progress, {}, op, settings).empty() &&
      file.Imported().Cell(1, vrx::kImportedType) != "BATCH") {
    std::abort();
  }
  return 0;
}
