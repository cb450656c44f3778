#include "export/style_sheet.h"

#include <cstdint>
#include <string>
#include <system_error>

#include "base/application.h"
#include "base/files.h"
#include "history/data_group.h"
#include "settings/data_folder.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::int32_t kNoSource = 0;  // of Folder::CopyFile

}  // namespace

void StyleSheets::MakeExportFolder() const {
  if (!data_folder_.empty()) {
    std::error_code ignored;
    fs::create_directory(data_folder_ / "Export", ignored);
  }
}

fs::path StyleSheets::SourceFolder() const { return fs::path(system_.ProgramDirectory()) / "XSL"; }

fs::path StyleSheets::SourceOf(int group) const {
  const DataGroup* const found = FindDataGroup(group);
  return found == nullptr ? fs::path() : SourceFolder() / found->stylesheet;
}

fs::path StyleSheets::PresentSourceOf(int group) const {
  fs::path source = SourceOf(group);
  if (source.empty() || !FileExists(source)) {
    TellMissing(source);
    return {};
  }
  return source;
}

bool StyleSheets::CopyStyleSheet(int group, const fs::path& destination_folder) const {
  const fs::path source = SourceOf(group);
  const std::int32_t result =
      source.empty() ? kNoSource : Folder::CopyFile(source, destination_folder);
  if (result == kNoSource) {
    TellMissing(source);
    return false;
  }
  return true;
}

void StyleSheets::TellMissing(const fs::path& source) const {
  op_.ShowMessage({.icon = Icon::kInformation,
                   .title = std::string(kApplicationTitle),
                   .text = "Style sheet file has been tampered, Please contact to Administrator.",
                   .cause = source.empty() ? "" : source.string() + " is not there"});
}

}  // namespace vrx
