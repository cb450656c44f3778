#include "presenter/open_files.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include "base/files.h"
#include "base/translation.h"
#include "presenter/operation.h"
#include "presenter/report_failure.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostLines = 10;  // of a message

// Empty if the path can be opened.
std::string WhyNot(const fs::path& path, const std::optional<FileKind>& kind) {
  std::error_code unknown;
  if (!fs::exists(path, unknown)) {
    return unknown ? unknown.message() : Tr("there is no such file");
  }
  if (!fs::is_regular_file(path, unknown)) {
    return Tr("this is not a file");
  }
  return kind ? std::string()
              : Tr("this is neither a database (.RDB, .TDB) nor a transaction file (.QXT) nor a "
                   "recipe backup (.RBU)");
}

}  // namespace

std::vector<std::string> OpenFiles::Sort(const std::vector<fs::path>& paths, Chosen& chosen) {
  std::vector<std::string> refused;
  for (const fs::path& path : paths) {
    const std::optional<FileKind> kind = FindFileKind(path);
    std::string why = WhyNot(path, kind);
    if (why.empty() && !chosen.try_emplace(*kind, path).second && chosen.at(*kind) != path) {
      why = Tr("only one %1 is opened at a time", {Tr(NounOf(*kind))});
    }
    if (!why.empty()) {
      refused.push_back(path.string() + ": " + why);
    }
  }
  return refused;
}

void OpenFiles::Open(const std::vector<fs::path>& paths) {
  const OperationLock::Scope running = lock_.TryEnter();
  if (!running || paths.empty() || !view_.LeaveEdits()) {
    return;
  }
  Chosen chosen;
  const std::vector<std::string> refused = Sort(paths, chosen);
  OpenChosen(chosen);
  if (!refused.empty() && !services_.pump.Closing()) {
    Report(refused);
  }
}

void OpenFiles::Browse() {
  const FileChoice choice = services_.files.ShowOpen(
      {.title = Tr("Open File"),
       .filter = "Files of the Program (*.RDB;*.TDB;*.QXT;*.RBU)|*.RDB;*.TDB;*.QXT;*.RBU|"
                 "All Files (*.*)|*.*",
       .default_extension = {},
       .start_folder = services_.folder.DefaultAppPath().string(),
       .flags = kFileMustExist | kHideReadOnly});
  if (!choice.Cancelled()) {
    Open({choice.path});
  }
}

void OpenFiles::OpenRecent(FileKind kind, const fs::path& path) {
  std::error_code unknown;
  if (fs::is_regular_file(path, unknown)) {
    const OperationLock::Scope running = lock_.TryEnter();
    if (running && view_.LeaveEdits()) {
      OpenChosen({{kind, path}});
    }
    return;
  }
  recent_.Remove(kind, path);
  services_.op.ShowMessage(
      {.icon = Icon::kWarning,
       .title = Tr("Open File Error"),
       .text = Tr("There is no file %1 any more. It is removed from the list of "
                  "recent files.",
                  {path.string()})});
}

void OpenFiles::OpenChosen(const Chosen& chosen) {
  for (const auto& [kind, path] : chosen) {
    if (services_.pump.Closing()) {
      return;
    }
    switch (kind) {
      case FileKind::kRecipeDatabase:
        databases_.OpenNamed(DatabaseKind::kRecipe, path);
        break;
      case FileKind::kTransactionDatabase:
        databases_.OpenNamed(DatabaseKind::kTransaction, path);
        break;
      case FileKind::kRecipeBackup:
        view_.OpenRecipeBackup(path);
        break;
      case FileKind::kTransactionFile:
        view_.ImportTransactionFile(path);
        break;
    }
  }
}

void OpenFiles::Report(const std::vector<std::string>& lines) {
  std::string text = Tr("This cannot be opened:") + "\r\n";
  for (std::size_t i = 0; i < std::min(lines.size(), kMostLines); ++i) {
    text += "\r\n" + lines[i];
  }
  if (lines.size() > kMostLines) {
    text += "\r\n" + Tr("and %1 more", {std::to_string(lines.size() - kMostLines)});
  }
  services_.op.ShowMessage({.icon = Icon::kWarning, .title = Tr("Open File Error"), .text = text});
}

}  // namespace vrx
