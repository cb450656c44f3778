#include "ctl/import_road.h"

#include <utility>

namespace vrx {

ImportRoad::ImportRoad(Session& session, OpenDatabases databases)
    : databases_(std::move(databases)),
      import_({.op = session.Op(),
               .files = chooser_,
               .system = session.Context().system,
               .settings = session.Settings(),
               .identity = session.Identity(),
               .progress = session.Progress(),
               .host = *this}) {}

bool ImportRoad::Import(const std::filesystem::path& file) {
  return import_.ImportFile({file.string(), file.filename().string()});
}

}  // namespace vrx
