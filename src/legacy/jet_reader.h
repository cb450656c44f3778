#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/error.h"
#include "legacy/row_stream.h"

namespace vrx {

// A Jet file that cannot be read as a whole.
class JetReadError : public Error {
 public:
  using Error::Error;
};

// Reads tables of a Jet 4 file in the order they are asked for; names without regard to case, and
// those that are not there are left out. Deleted rows are left out, and a moved one is read where
// it went. Only reads. Throws JetReadError.
//
// The library below is known to crash or to hang on a damaged file: for a process of its own only.
void ReadJetTables(const std::filesystem::path& path, const std::vector<std::string>& tables,
                   LegacyRowSink& sink);

}  // namespace vrx
