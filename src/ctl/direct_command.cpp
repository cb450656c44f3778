#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/module_commands.h"
#include "ctl/options.h"
#include "ctl/session.h"
#include "exchange/recipe_text.h"
#include "presenter/direct_connection.h"
#include "presenter/upload.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr int kMostSeconds = 2'000'000;  // 23 days; the pump's timers are limited to 24

// The text that a recipe database or a backup puts into memory; empty after reporting a failure.
// Asks no question, because the memory is empty and the user named the file.
std::optional<std::string> RecipeText(Session& session, const PrivateINI& settings,
                                      const fs::path& file) {
  if (IsRecipeBackup(file)) {
    std::string text = ReadRecipeBackup(file);
    return HasBackupHeader(text, session.Op(), settings) ? std::optional(std::move(text))
                                                         : std::nullopt;
  }
  std::optional<std::string> text;
  if (session.IsUserDatabase(file, DatabaseKind::kRecipe)) {
    session.OnDatabase(file, DatabaseKind::kRecipe, [&] {
      text = TakeRecipeDownload(file, settings.BatchTargetWtIsRecTargetOn(),
                                session.Context().calendar)
                 .text;
      return kDone;
    });
  }
  return text;
}

class DirectCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "direct", "Play the module for an indicator on the cable, until SIGINT or SIGTERM");
    port_.AddTo(*command);
    command
        ->add_option("--load", load_,
                     "Recipe database or recipe backup to put into memory at the start")
        ->type_name("RDB|FILE.RBU");
    command
        ->add_option("--out", out_,
                     "Folder for the files in memory at the end; what cannot be written "
                     "there goes into a rescue file (.KRM)")
        ->type_name("DIR");
    AddWholeNumber(*command, "--seconds", "Time after which it ends by itself", 1, kMostSeconds,
                   seconds_);
    AddExamples(*command, {{"direct --port 2 --load SITE.RDB",
                            "Has the recipes ready for the indicator until Ctrl+C."},
                           {"direct --port /dev/ttyUSB0 --out taken --seconds 600",
                            "Takes ten minutes of records and writes their files."}});
    return command;
  }

  int Run(Session& session) override {
    const PrivateINI settings = port_.Settings(session);
    // The indicator does not send its data twice, so check first that no file name is taken.
    if (!out_.empty() && !FolderTakesDataFiles(session, out_)) {
      return kFailed;
    }
    std::optional<std::string> recipes = "";
    if (!load_.empty()) {
      recipes = RecipeText(session, settings, load_);
    }
    if (!recipes) {
      return kFailed;
    }
    const auto line = port_.MakeLine(session);
    line->CloseOnSignals();
    KRMCOMM krm(line->Control(), line->Pump(), session.Op(), settings);
    TransferState transfer;
    const bool went_well = Connect(session, *line, krm, transfer, settings, *recipes);
    session.Progress().Clear();
    const bool written = KeepMemory(session, *line, krm, transfer, settings);
    return went_well && written ? kDone : kFailed;
  }

 private:
  bool Connect(Session& session, SerialLine& line, KRMCOMM& krm, TransferState& transfer,
               const PrivateINI& settings, const std::string& recipes) const {
    DirectConnection connection(krm, transfer, line.Pump(), session.Op(), settings);
    if (!connection.Enter()) {
      return false;
    }
    std::unique_ptr<EventPump::Ticker> time_is_up;
    if (seconds_ > 0) {
      time_is_up = line.Pump().StartTicker(std::chrono::seconds{seconds_}, [&] { line.Close(); });
    }
    if (!recipes.empty()) {
      connection.LoadMemory(recipes);
    }
    return connection.DirectConnectLoop() && !connection.AnswerFailed();
  }

  // Keeps the data of the indicator even if no folder was given.
  bool KeepMemory(Session& session, SerialLine& line, KRMCOMM& krm, TransferState& transfer,
                  const PrivateINI& settings) const {
    if (!out_.empty()) {
      return CutMemory(session, line, krm, transfer, settings);
    }
    if (transfer.received.Unsaved()) {
      KeepReceived(session, krm.GS_KRM_VirtualMemory(), {});
    }
    return true;
  }

  bool CutMemory(Session& session, SerialLine& line, KRMCOMM& krm, TransferState& transfer,
                 const PrivateINI& settings) const {
    transfer.connection = Connection::kIndicator;
    Upload upload(krm, transfer, line.Pump(), session.Op(), settings);
    upload.UploadDataFromKRM();
    const bool brought = !transfer.transfer_block.empty();
    return brought && WriteReceivedFiles(session, krm, transfer, settings, out_);
  }

  PortOption port_;
  std::string load_;
  std::string out_;
  int seconds_ = 0;  // 0: no limit
};

}  // namespace

std::unique_ptr<Command> MakeDirectCommand() { return std::make_unique<DirectCommand>(); }

}  // namespace vrx
