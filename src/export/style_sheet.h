#pragma once

#include <filesystem>
#include <utility>

#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// The stylesheets of the 13 data groups, in the folder XSL of the program's directory. An XML
// document names its own by a bare file name, so a copy has to lie beside it. References outlive
// the object.
class StyleSheets {
 public:
  // `data_folder` is the application's.
  StyleSheets(std::filesystem::path data_folder, const SystemInfo& system, Operator& op)
      : data_folder_(std::move(data_folder)), system_(system), op_(op) {}

  // The folder Export below the data folder. Nothing is written there, so an export goes on where
  // it cannot be made.
  void MakeExportFolder() const;

  // The program's folder of all stylesheets.
  std::filesystem::path SourceFolder() const;

  // Where a group's stylesheet is looked for; empty for an index that is no group.
  std::filesystem::path SourceOf(int group) const;

  // The same for one that is there; empty, the operator told, where it is not.
  std::filesystem::path PresentSourceOf(int group) const;

  // Copies it into the folder, over one of that name. False, the operator told, where there is
  // none; a folder that has gone is not told. Throws FileError when the copying fails.
  bool CopyStyleSheet(int group, const std::filesystem::path& destination_folder) const;

 private:
  void TellMissing(const std::filesystem::path& source) const;

  std::filesystem::path data_folder_;
  const SystemInfo& system_;
  Operator& op_;
};

}  // namespace vrx
