#include <filesystem>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/module_upload.h"
#include "ctl/port_option.h"
#include "ctl/session.h"
#include "frame/files.h"
#include "frame/text.h"
#include "link/direct_connection.h"
#include "link/recipe_backup.h"
#include "link/upload.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr int kMostSeconds = 2'000'000;  // 23 days; the pump's timers hold no more than 24
constexpr std::size_t kMostBackup = std::size_t{16} * 1024 * 1024;  // far beyond what occurs

std::string NoDatabase(const std::string& path) {
  return EqualsIgnoringCase(fs::path(path).extension().string(), ".RDB")
             ? "only a recipe backup (.RBU) can be loaded, not a recipe database"
             : "";
}

std::string ReadBackup(const std::string& path) {
  std::string text = ReadFileBytes(path, kMostBackup);
  if (text.size() > kMostBackup) {
    throw FileError(path + " is longer than any recipe backup");
  }
  return text;
}

class DirectCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "direct", "Play the module for an indicator on the cable, until SIGINT or SIGTERM");
    port_.AddTo(*command);
    command->add_option("--load", load_, "Recipe backup that stands in memory at the start")
        ->type_name("FILE.RBU")
        ->check(NoDatabase);
    command->add_option("--out", out_, "Folder for the files that stand in memory at the end")
        ->type_name("DIR");
    command->add_option("--seconds", seconds_, "Time after which it ends by itself")
        ->type_name("N")
        ->check(CLI::Range(1, kMostSeconds));
    return command;
  }

  int Run(Session& session) override {
    const PrivateINI settings = port_.Settings(session);
    std::string backup;
    if (!load_.empty()) {
      backup = ReadBackup(load_);
      if (!HasBackupHeader(backup, session.Op(), settings)) {
        return kFailed;
      }
    }
    // What the indicator has sent is not sent again: it must not meet a taken name at the end.
    if (!out_.empty() && !FolderTakesDataFiles(session, out_)) {
      return kFailed;
    }
    const auto line = port_.MakeLine(session);
    line->CloseOnSignals();
    KRMCOMM krm(line->Control(), line->Pump(), session.Op(), settings);
    DataTransfer transfer;
    const bool went_well = Connect(session, *line, krm, transfer, settings, backup);
    krm.KRM_ImmediateClose();
    session.Progress().Clear();
    const bool written = out_.empty() || CutMemory(session, *line, krm, transfer, settings);
    return went_well && written ? kDone : kFailed;
  }

 private:
  bool Connect(Session& session, SerialLine& line, KRMCOMM& krm, DataTransfer& transfer,
               const PrivateINI& settings, const std::string& backup) const {
    DirectConnection connection(krm, transfer, line.Pump(), session.Op(), settings);
    if (!connection.Enter()) {
      return false;
    }
    std::unique_ptr<EventPump::Ticker> time_is_up;
    if (seconds_ > 0) {
      time_is_up = line.Pump().StartTicker(std::chrono::seconds{seconds_}, [&] { line.Close(); });
    }
    if (!backup.empty()) {
      connection.LoadMemory(backup);
    }
    return connection.DirectConnectLoop();
  }

  // An indicator that sent nothing is no failure; bytes that are no files are.
  bool CutMemory(Session& session, SerialLine& line, KRMCOMM& krm, DataTransfer& transfer,
                 const PrivateINI& settings) const {
    transfer.connection = Connection::kIndicator;
    Upload upload(krm, transfer, line.Pump(), session.Op(), settings);
    upload.UploadDataFromKRM();
    const bool cut = !session.Op().StatusIsError();
    return WriteDataFiles(session, krm, transfer, settings, out_) && cut;
  }

  PortOption port_;
  std::string load_;
  std::string out_;
  int seconds_ = 0;  // 0: without a limit
};

}  // namespace

std::unique_ptr<Command> MakeDirectCommand() { return std::make_unique<DirectCommand>(); }

}  // namespace vrx
