#include "presenter/data_files.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "settings/settings.h"

namespace vrx {

namespace {

// The texts of one kind of file.
struct Kind {
  const char* save_title;
  const char* filter;
  const char* extension;
  std::array<std::string_view, 2> marks;  // one of them opens the file
  const char* refusal_title;
  const char* refusal;
  const char* not_saved;
  const char* saved;
};

constexpr std::array<Kind, 3> kKinds = {{
    {"Save Transaction File",
     "Transactions (*.QXT)|*.QXT|All Files (*.*)|*.*",
     "QXT",
     {kTransactionMark, kTransactionMark},
     "Save Transaction File Error",
     "This data cannot be saved as a transaction file.\r\n"
     "It has an invalid transaction header identifier.",
     "Could not save transaction file (",
     "Transaction file ("},
    {"Save Recipe Backup File",
     "Recipe Backup (*.RBU)|*.RBU|All Files (*.*)|*.*",
     "RBU",
     {kRecipeMark, kRecipeMark},
     "Save Recipe Backup-File Error",
     "This data cannot be saved as a recipe backup file.\r\n"
     "It has an invalid recipe header identifier.",
     "Could not save recipe backup-file (",
     "Recipe backup file ("},
    {"Save Report File",
     "Report (*.TXT)|*.TXT|All Files (*.*)|*.*",
     "TXT",
     {kReportMark, "\f"},
     "Save Report File Error",
     "This data cannot be saved as a report file.\r\n"
     "It has an invalid report header identifier.",
     "Could not save report file (",
     "Report file ("},
}};

const Kind* KindOf(DataFileType type) {
  const int index = static_cast<int>(type) - 1;
  return index >= 0 && index < static_cast<int>(kKinds.size())
             ? &kKinds[static_cast<std::size_t>(index)]
             : nullptr;
}

bool HasMark(std::string_view text, const Kind& kind) {
  return std::any_of(kind.marks.begin(), kind.marks.end(),
                     [&](std::string_view mark) { return text.starts_with(mark); });
}

// The part of the block that a table entry specifies; empty if the entry does not fit the block.
std::string_view Part(std::string_view block, const FileAttributes& part) {
  if (part.position < 1 || part.length < 1 ||
      static_cast<std::size_t>(part.position) > block.size()) {
    return {};
  }
  return block.substr(static_cast<std::size_t>(part.position - 1),
                      static_cast<std::size_t>(part.length));
}

// "260111-01.QXT"
std::filesystem::path FreeName(const std::filesystem::path& folder, const Date& day) {
  const std::string stored = StoredText(day);  // "2026-01-11"
  const std::string begin = stored.substr(2, 2) + stored.substr(5, 2) + stored.substr(8, 2) + "-";
  for (int number = 1;; ++number) {
    std::filesystem::path path = folder / (begin + Format(number * 1.0, "00") + ".QXT");
    if (!FileExists(path)) {
      return path;
    }
  }
}

}  // namespace

ReportFile::ReportFile(Operator& op, FileChooser& chooser, const PrivateINI& settings,
                       TransferState& transfer, FileAttributesTable attributes)
    : op_(op),
      chooser_(chooser),
      settings_(settings),
      transfer_(transfer),
      attributes_(std::move(attributes)) {}

FileChoice ReportFile::AskForNameOf(DataFileType type) {
  const Kind& kind = *KindOf(type);
  return chooser_.ShowSave({.title = kind.save_title,
                            .filter = kind.filter,
                            .default_extension = kind.extension,
                            .flags = kHideReadOnly | kOverwritePrompt});
}

bool ReportFile::Save(DataFileType type, const AskForName& ask) {
  save_failure_.clear();
  try {
    const FileChoice choice = ask();
    if (choice.Cancelled()) {
      return false;
    }
    Kept(type) = {choice.path, UnicodeUpperCase(choice.title)};
    WriteFileBytes(choice.path, transfer_.data_window);
    return true;
  } catch (const Error& error) {
    save_failure_ = error.what();
    return false;
  }
}

FileAttributes ReportFile::Attributes(int file) const {
  return file >= 1 && file <= kMaxDataFiles ? attributes_(file) : FileAttributes{};
}

void ReportFile::ShowDataFile(int file) {
  transfer_.data_window = Part(transfer_.transfer_block, Attributes(file));
}

bool ReportFile::SaveDataFile(int file) {
  const DataFileType type = Attributes(file).type;
  return SaveDataFile(file, [&] { return AskForNameOf(type); });
}

bool ReportFile::SaveDataFile(int file, const AskForName& ask) {
  const DataFileType type = Attributes(file).type;
  ShowDataFile(file);
  if (transfer_.data_window.empty()) {
    op_.Beep();
    op_.ShowMessage({.icon = Icon::kCritical,
                     .title = "Save File Error",
                     .text = "There is no file data to be saved."});
    return false;
  }
  op_.SetStatusColor(StatusColor::kBlue);
  const Kind* kind = KindOf(type);
  if (kind == nullptr) {
    BeepIfEnabled(op_, settings_);
    op_.ShowMessage(
        {.icon = Icon::kCritical, .title = "Error", .text = "Invalid file-type detected."});
    return false;
  }
  if (!HasMark(transfer_.data_window, *kind)) {
    op_.Beep();
    op_.ShowMessage({.icon = Icon::kWarning, .title = kind->refusal_title, .text = kind->refusal});
    return false;
  }
  if (!Save(type, ask)) {
    op_.SetStatusLine(kind->not_saved + std::to_string(file) + ")");
    if (!save_failure_.empty()) {
      op_.ShowMessage({.icon = Icon::kCritical,
                       .title = kind->refusal_title,
                       .text = Tr("The file was not saved.") + "\r\n\r\n" + save_failure_});
    }
    return false;
  }
  transfer_.file_path = Kept(type).path;
  op_.SetStatusLine(kind->saved + std::to_string(file) + ") saved!");
  MarkSaved(file);
  return true;
}

// Unchecks the row, so that another save needs another click.
void ReportFile::MarkSaved(int file) {
  auto& rows = transfer_.data_files;
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [&](const DataFileRow& entry) { return entry.file == file; });
  if (row == rows.end()) {
    return;
  }
  row->checked = false;
  if (!std::exchange(row->saved, true)) {
    row->text += " (saved)";
  }
  if (transfer_.block_is_cut &&
      std::all_of(rows.begin(), rows.end(), [](const DataFileRow& entry) { return entry.saved; })) {
    transfer_.received.BlockSaved();
  }
  transfer_.selected_row = static_cast<int>(row - rows.begin());
}

void ReportFile::SaveCheckedFile() {
  const auto& rows = transfer_.data_files;
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [](const DataFileRow& entry) { return entry.checked; });
  if (row != rows.end()) {
    SaveDataFile(row->file);
    return;
  }
  RefuseWithoutCheck();
}

void ReportFile::RefuseWithoutCheck() {
  BeepIfEnabled(op_, settings_);
  op_.ShowMessage({.icon = Icon::kWarning,
                   .title = "Error",
                   .text = "You must first select a data file to save. Click on one of the check "
                           "boxes next to the file you want to save."});
}

std::vector<int> ReportFile::FilesToImport() const {
  const auto numbers_of = [this](auto wanted) {
    std::vector<int> files;
    for (const DataFileRow& row : transfer_.data_files) {
      if (wanted(row)) {
        files.push_back(row.file);
      }
    }
    return files;
  };
  const std::vector<int> checked = numbers_of([](const DataFileRow& row) { return row.checked; });
  return !checked.empty() ? checked : numbers_of([](const DataFileRow& row) {
    return row.type == DataFileType::kTransaction && !row.saved;
  });
}

std::vector<FileChoice> ReportFile::SaveForImport(const std::filesystem::path& folder,
                                                  const Date& today) {
  std::vector<FileChoice> saved;
  const std::vector<int> files = FilesToImport();
  if (files.empty()) {
    RefuseWithoutCheck();
  }
  for (const int file : files) {
    const DataFileRow row = transfer_.data_files.at(static_cast<std::size_t>(file) - 1);
    if (row.type != DataFileType::kTransaction) {
      SaveDataFile(file);
    } else {
      const std::filesystem::path path = FreeName(folder, row.first_record.value_or(today));
      const FileChoice choice{path.string(), path.filename().string()};
      if (!SaveDataFile(file, [&] { return choice; })) {
        break;
      }
      saved.push_back(choice);
    }
    if (!save_failure_.empty()) {
      break;
    }
  }
  return saved;
}

void ReportFile::OpenRecipeBackupFile() {
  LastFile& backup = Kept(DataFileType::kRecipeBackup);
  backup = {};
  const FileChoice choice = chooser_.ShowOpen({.title = "Open Recipe Backup File",
                                               .filter = "Recipe Backup (*.RBU)|*.RBU|"
                                                         "Rescue File (*.KRM)|*.KRM",
                                               .default_extension = "RBU",
                                               .flags = kFileMustExist | kHideReadOnly});
  if (!choice.Cancelled()) {
    backup = {choice.path, UnicodeUpperCase(choice.title)};
  }
}

void ReportFile::ChooseRecipeBackupFile(const std::string& path) {
  Kept(DataFileType::kRecipeBackup) = {path, FileTitle(path)};
}

}  // namespace vrx
