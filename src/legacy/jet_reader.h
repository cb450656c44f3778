#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/error.h"
#include "legacy/row_stream.h"

namespace vrx {

// A Jet file as a whole cannot be read.
class JetReadError : public Error {
 public:
  using Error::Error;
};

// Reads tables of a Jet 4 file in the given order. Ignores the case of names, missing tables and
// deleted rows; follows moved rows. Throws JetReadError.
//
// libmdb may crash or hang on a damaged file, so call this only in a separate process.
void ReadJetTables(const std::filesystem::path& path, const std::vector<std::string>& tables,
                   LegacyRowSink& sink);

}  // namespace vrx
