#include "ctl/module_commands.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "adapters/linux_machine.h"
#include "base/files.h"
#include "base/number.h"
#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/session.h"
#include "link/krmcomm.h"
#include "link/rescue_file.h"
#include "platform/event_pump.h"
#include "presenter/data_files.h"
#include "presenter/direct_connection.h"
#include "presenter/download.h"
#include "presenter/transfer_state.h"
#include "presenter/upload.h"
#include "settings/settings.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// The Data Transfer tab without its window, in the module connection.
class HeadlessDownload : public TransferView {
 public:
  HeadlessDownload(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings)
      : chooser_(session.Chooser()),
        files_(session.Op(), chooser_, settings, transfer_,
               [&krm](int file) { return krm.GL_KRM_FileAttributes(file); }),
        download_(krm, pump, session.Op(), settings),
        direct_(krm, transfer_, pump, session.Op(), settings),
        tab_(session.GetServices(), transfer_, files_, download_, direct_, *this) {}

  bool SendDatabase(const fs::path& path) {
    database_ = {.path = path, .name = FileTitle(path), .unit = {}};
    return tab_.DownloadRecipeDB();
  }
  bool SendBackup(const fs::path& path) {
    chooser_.Choose(path);
    return tab_.OpenRecipeBU() && tab_.DownloadRecipeBU();
  }

  [[nodiscard]] CurrentDatabase RecipeDatabase() const override { return database_; }
  // There is no window to open, show or focus.
  void OpenRecipeDatabase() override {}
  void RecipesStored(int /*highest_in_use*/) override {}
  void FocusControl(std::string_view /*name*/) override {}
  void TransferChanged() override {}

 private:
  CurrentDatabase database_;
  ScriptedFileChoice& chooser_;
  TransferState transfer_;
  ReportFile files_;
  Download download_;
  DirectConnection direct_;
  DownloadPresenter tab_;
};

constexpr std::string_view kSaveErrorTitle = "Save File Error";

fs::path NameOf(const fs::path& folder, int file, DataFileType type) {
  constexpr std::array<std::string_view, 4> kExtensions = {"", ".QXT", ".RBU", ".TXT"};
  return folder /
         (Format(file * 1.0, "00") + std::string(kExtensions.at(static_cast<std::size_t>(type))));
}

bool Refuse(Session& session, const std::string& text, const std::string& cause = {}) {
  session.Op().ShowMessage({.icon = Icon::kCritical,
                            .title = std::string(kSaveErrorTitle),
                            .text = text,
                            .cause = cause});
  return false;
}

// Writes the cut files of a transfer to disk.
class CutFiles {
 public:
  CutFiles(Session& session, const KRMCOMM& krm, TransferState& transfer,
           const PrivateINI& settings, const fs::path& folder)
      : session_(session),
        krm_(krm),
        transfer_(transfer),
        folder_(folder),
        chooser_(session.Chooser()),
        files_(session.Op(), chooser_, settings, transfer,
               [&krm](int file) { return krm.GL_KRM_FileAttributes(file); }) {
    for (const DataFileRow& row : transfer.data_files) {
      names_.push_back(NameOf(folder, row.file, krm.GL_KRM_FileAttributes(row.file).type));
    }
  }

  [[nodiscard]] bool Empty() const { return names_.empty(); }

  bool NamesAreFree() {
    for (const fs::path& name : names_) {
      if (FileExists(name)) {
        return Refuse(session_, name.string() + " exists already. No file was written.");
      }
    }
    return true;
  }

  bool MakeFolder() {
    std::error_code error;
    fs::create_directories(folder_, error);
    if (error && !fs::is_directory(folder_)) {
      return Refuse(session_, "The folder " + folder_.string() + " cannot be made.",
                    error.message());
    }
    return true;
  }

  // Writes as many files as possible; never replaces another file.
  void SaveEach() {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (Save(static_cast<int>(i) + 1, names_[i])) {
        ++saved_;
      } else {
        const FileAttributes& part = krm_.GL_KRM_FileAttributes(static_cast<int>(i) + 1);
        unsaved_ += transfer_.transfer_block.substr(static_cast<std::size_t>(part.position) - 1,
                                                    static_cast<std::size_t>(part.length));
      }
    }
  }

  [[nodiscard]] bool AllSaved() const { return saved_ == names_.size(); }

  // The bytes that were not written to a file.
  [[nodiscard]] const std::string& Rest() const {
    return transfer_.block_is_cut && saved_ > 0 ? unsaved_ : transfer_.transfer_block;
  }

 private:
  bool Save(int file, const fs::path& name) {
    if (FileExists(name)) {
      return Refuse(session_, name.string() + " exists already and is not replaced.");
    }
    chooser_.Choose(name);
    files_.SaveDataFile(file);
    if (transfer_.file_path != name.string()) {
      return Refuse(session_, name.string() + " could not be written.", files_.SaveFailure());
    }
    session_.Progress().Clear();  // both outputs may be the same terminal
    session_.Out() << name.string() << '\n';
    return true;
  }

  Session& session_;
  const KRMCOMM& krm_;
  TransferState& transfer_;
  fs::path folder_;
  ScriptedFileChoice& chooser_;
  ReportFile files_;
  std::vector<fs::path> names_;
  std::size_t saved_ = 0;
  std::string unsaved_;
};

// Writes the result of an upload and reports its outcome.
int WriteUpload(Session& session, KRMCOMM& krm, TransferState& transfer, const PrivateINI& settings,
                const fs::path& folder) {
  const bool failed = session.Op().StatusIsError();
  if (failed) {
    session.Op().ReportCause(krm.KRM_FailureCause());
  }
  const bool written = WriteDataFiles(session, krm, transfer, settings, folder);
  return failed || !written ? kFailed : kDone;
}

// While a transfer can be canceled, a signal cancels it instead of ending the program.
class CancelOnSignals {
 public:
  CancelOnSignals(SerialLine& line, LineGuard& guard)
      : line_(line), guard_(guard), watch_(guard.OnChange([this] { Follow(); })) {}

 private:
  void Follow() {
    if (guard_.Cancelable() != on_) {
      on_ = guard_.Cancelable();
      line_.OnSignals(on_ ? [this] { guard_.Cancel(); } : std::function<void()>());
    }
  }

  SerialLine& line_;
  LineGuard& guard_;
  bool on_ = false;
  LineGuard::Watch watch_;
};

constexpr std::string_view kPleaseCheck =
    "Please check KRM module connection, cable and serial port selection.";

int ReportResult(Session& session, KRMCOMM& krm, bool done, std::string_view title,
                 std::string_view success, const std::string& failure) {
  if (done) {
    session.Op().ShowMessage(
        {.icon = Icon::kInformation, .title = std::string(title), .text = std::string(success)});
    return kDone;
  }
  session.Op().ShowMessage({.icon = Icon::kWarning,
                            .title = std::string(title),
                            .text = failure,
                            .cause = krm.KRM_FailureCause()});
  return kFailed;
}

int TestModule(Session& session, KRMCOMM& krm) {
  session.Op().SetStatusLine("Standby... Attempting to connect to KRM");
  const bool found = krm.KRM_OnlineCheck();
  return ReportResult(session, krm, found, "KRM Test", "KRM Successfully Detected.",
                      "KRM Not Detected.  (Communication Error)\r\n" + std::string(kPleaseCheck));
}

int ClearModule(Session& session, KRMCOMM& krm) {
  constexpr std::string_view kTitle = "Clear KRM";
  if (session.Op().ShowMessage({.icon = Icon::kQuestion,
                                .buttons = Buttons::kYesNo,
                                .title = std::string(kTitle),
                                .text = "Are you sure you want to clear all data in the KRM?"}) !=
      Answer::kYes) {
    return kFailed;
  }
  session.Op().SetStatusLine("Standby... Attempting to connect to KRM");
  if (!krm.KRM_OnlineCheck()) {
    return ReportResult(session, krm, false, kTitle, "",
                        "The 'Clear' operation failed. (Could not connect to the KRM)");
  }
  const bool cleared = krm.KRM_Clear();
  return ReportResult(session, krm, cleared, kTitle, "The 'Clear' operation was successful.",
                      "The 'Clear' operation failed.");
}

// Saves the rate in the settings too, because every later check sets it in the module again.
int SetModuleBaud(Session& session, KRMCOMM& krm, const std::string& baud) {
  session.Op().SetStatusLine("Standby... Attempting to connect to KRM");
  const bool set = krm.KRM_SetBaud(TextToLong(baud));
  const int code = ReportResult(
      session, krm, set, "KRM Baud Setting",
      "Successfully set the KRM baudrate.\r\n\r\nThis new baudrate setting will only be in effect "
      "when the KRM module is connected to an K-2260 or some other indicator.",
      "Failed to set the KRM baudrate.\r\n\r\n" + std::string(kPleaseCheck));
  if (!set) {
    return code;
  }
  session.Settings().SetKRMBaudRate(baud);
  return session.SaveSettings() ? kDone : kFailed;
}

// Sends a recipe database or a recipe backup to the module, after a question. For a database it
// also stores the recomputed recipes. Returns kDone or kFailed.
int DownloadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                   const fs::path& file) {
  const bool backup = IsRecipeBackup(file);
  if (!backup && !session.IsUserDatabase(file, DatabaseKind::kRecipe)) {
    return kFailed;
  }
  HeadlessDownload download(session, krm, pump, settings);
  const bool sent = backup ? download.SendBackup(file) : download.SendDatabase(file);
  if (session.Op().StatusIsError()) {
    session.Op().ReportCause(krm.KRM_FailureCause());
  }
  return sent ? kDone : kFailed;
}

class ModuleCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("module", "Talk to the data module");
    command->require_subcommand(1);
    test_ = Action(*command, "test", "Ask whether the module is there");
    AddExamples(*test_, {{"module test --port 2", "Asks the module on serial port 2."}});
    clear_ = Action(*command, "clear", "Clear the module's memory, after a question");
    AddExamples(*clear_, {{"module clear --port 2 --yes", "Clears without a question."}});
    baud_ = Action(*command, "baud", "Set the speed of the module to the indicator");
    baud_->add_option("rate", rate_, "1200, 2400, 9600 or 19200")
        ->required()
        ->check(CLI::IsMember({"1200", "2400", "9600", "19200"}));
    AddExamples(*baud_, {{"module baud 9600 --port 2", "For an indicator that is set to 9600."}});
    download_ =
        Action(*command, "download", "Replace the module's memory by recipes, after a question");
    download_->add_option("file", file_, "A recipe database or a recipe backup (.RBU)")->required();
    AddExamples(*download_,
                {{"module download SITE.RDB --port 2", "Sends a recipe database."},
                 {"module download 02.RBU --port 2 --yes", "Sends a backup, without a question."}});
    AddUpload(*command);
    AddExamples(*command, {{"module test --port 2", "Asks the module on serial port 2."},
                           {"module upload --out today --port /dev/ttyUSB0",
                            "Writes what the module holds as files of the folder today."}});
    return command;
  }

  int Run(Session& session) override {
    const PrivateINI settings = port_.Settings(session);
    const auto line = port_.MakeLine(session);
    KRMCOMM krm(line->Control(), line->Pump(), session.Op(), settings);
    const CancelOnSignals cancel(*line, krm.Guard());
    const int code = RunAction(session, krm, line->Pump(), settings);
    krm.KRM_ImmediateClose();
    session.Progress().Clear();
    return code;
  }

 private:
  CLI::App* Action(CLI::App& module, const std::string& name, const std::string& help) {
    CLI::App* action = module.add_subcommand(name, help);
    port_.AddTo(*action);
    return action;
  }

  void AddUpload(CLI::App& module) {
    upload_ = module.add_subcommand("upload", "Write the files of the module's memory");
    CLI::Option* const port = port_.AddTo(*upload_);
    CLI::Option* const from =
        upload_
            ->add_option("--from", from_,
                         "Rescue file to be read in place of a module, as if just received")
            ->type_name("FILE.KRM");
    port->required(false)->excludes(from);
    upload_->add_option("--out", out_, "Folder for the files")->required()->type_name("DIR");
    upload_->callback([port, from] {
      if (port->count() + from->count() == 0) {
        throw CLI::RequiredError("--port or --from");
      }
    });
    AddExamples(*upload_, {{"module upload --out today --port 2",
                            "Writes 01.QXT and so on into the folder today."},
                           {"module upload --out today --from RESCUE-20260105-173000.KRM",
                            "Does the same with what an indicator sent and a rescue file kept."}});
  }

  int RunAction(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings) {
    if (test_->parsed()) {
      return TestModule(session, krm);
    }
    if (clear_->parsed()) {
      return ClearModule(session, krm);
    }
    if (baud_->parsed()) {
      return SetModuleBaud(session, krm, rate_);
    }
    if (download_->parsed()) {
      return DownloadModule(session, krm, pump, settings, file_);
    }
    return from_.empty() ? UploadModule(session, krm, pump, settings, out_)
                         : UploadRescued(session, krm, pump, settings, from_, out_);
  }

  CLI::App* test_ = nullptr;
  CLI::App* clear_ = nullptr;
  CLI::App* baud_ = nullptr;
  CLI::App* download_ = nullptr;
  CLI::App* upload_ = nullptr;
  PortOption port_;
  std::string rate_;
  std::string file_;
  std::string out_;
  std::string from_;
};

}  // namespace

bool WriteDataFiles(Session& session, const KRMCOMM& krm, TransferState& transfer,
                    const PrivateINI& settings, const fs::path& folder) {
  CutFiles files(session, krm, transfer, settings, folder);
  if (files.Empty()) {
    return true;
  }
  if (!files.NamesAreFree() || !files.MakeFolder()) {
    return false;
  }
  files.SaveEach();
  return files.AllSaved();
}

bool WriteReceivedFiles(Session& session, const KRMCOMM& krm, TransferState& transfer,
                        const PrivateINI& settings, const fs::path& folder) {
  CutFiles files(session, krm, transfer, settings, folder);
  if (!files.Empty() && files.MakeFolder()) {
    files.SaveEach();
  }
  if (files.AllSaved() && transfer.block_is_cut) {
    return true;
  }
  KeepReceived(session, files.Rest(), folder);
  return false;
}

void KeepReceived(Session& session, std::string_view bytes, const fs::path& folder) {
  fs::path data_folder;
  try {
    data_folder = session.DataFolder();
  } catch (const Error&) {
    // The temporary folder remains.
  }
  RescueReceived(bytes, {folder, data_folder}, LocalNow(), session.Op());
}

bool FolderTakesDataFiles(Session& session, const fs::path& folder) {
  for (int file = 1; file <= kMaxDataFiles; ++file) {
    for (const DataFileType type :
         {DataFileType::kTransaction, DataFileType::kRecipeBackup, DataFileType::kReport}) {
      const fs::path name = NameOf(folder, file, type);
      if (FileExists(name)) {
        return Refuse(session, name.string() + " exists already. Nothing was received.");
      }
    }
  }
  return true;
}

int UploadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                 const fs::path& folder) {
  TransferState transfer;
  Upload upload(krm, transfer, pump, session.Op(), settings);
  upload.UploadDataFromKRM();
  if (!upload.CanceledPart().empty()) {
    KeepReceived(session, upload.CanceledPart(), folder);
  }
  return WriteUpload(session, krm, transfer, settings, folder);
}

int UploadRescued(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                  const fs::path& file, const fs::path& folder) {
  TransferState transfer;
  Upload(krm, transfer, pump, session.Op(), settings).UploadFromFile(file);
  return WriteUpload(session, krm, transfer, settings, folder);
}

std::unique_ptr<Command> MakeModuleCommand() { return std::make_unique<ModuleCommand>(); }

}  // namespace vrx
