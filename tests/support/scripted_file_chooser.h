#pragma once

#include <deque>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/file_chooser.h"

namespace vrx::testing {

// Answers file dialogs from a queue filled beforehand and keeps what was asked.
class ScriptedFileChooser : public FileChooser {
 public:
  FileChoice ShowOpen(const FileDialog& dialog) override { return Next(dialog); }
  FileChoice ShowSave(const FileDialog& dialog) override { return Next(dialog); }
  std::string ShowFolder(const std::string& title) override { return Next({title, {}, {}}).path; }

  void Choose(const std::filesystem::path& path) {
    choices.push_back({path.string(), path.filename().string()});
  }
  void Cancel() { choices.push_back({}); }

  std::deque<FileChoice> choices;
  std::vector<FileDialog> dialogs;

 private:
  FileChoice Next(const FileDialog& dialog) {
    dialogs.push_back(dialog);
    if (choices.empty()) {
      throw std::logic_error("unexpected file dialog: " + dialog.title);
    }
    FileChoice choice = choices.front();
    choices.pop_front();
    return choice;
  }
};

}  // namespace vrx::testing
