#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include "platform/file_chooser.h"

namespace vrx {

// Answers every file dialog with the path from the command line.
class ScriptedFileChoice : public FileChooser {
 public:
  void Choose(std::filesystem::path path) { path_ = std::move(path); }

  FileChoice ShowOpen(const FileDialog& /*dialog*/) override { return Choice(); }
  FileChoice ShowSave(const FileDialog& /*dialog*/) override { return Choice(); }
  std::string ShowFolder(const std::string& /*title*/) override { return path_.string(); }

 private:
  FileChoice Choice() const { return {path_.string(), path_.filename().string()}; }

  std::filesystem::path path_;
};

}  // namespace vrx
