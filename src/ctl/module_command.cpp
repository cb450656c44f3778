#include <string>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/module_commands.h"
#include "ctl/module_download.h"
#include "ctl/options.h"
#include "ctl/session.h"
#include "link/krmcomm.h"
#include "settings/settings.h"

namespace vrx {
namespace {

constexpr std::string_view kPleaseCheck =
    "Please check KRM module connection, cable and serial port selection.";

int TellResult(Session& session, KRMCOMM& krm, bool done, std::string_view title,
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
  return TellResult(session, krm, found, "KRM Test", "KRM Successfully Detected.",
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
    return TellResult(session, krm, false, kTitle, "",
                      "The 'Clear' operation failed. (Could not connect to the KRM)");
  }
  const bool cleared = krm.KRM_Clear();
  return TellResult(session, krm, cleared, kTitle, "The 'Clear' operation was successful.",
                    "The 'Clear' operation failed.");
}

// The rate is kept in the settings: every later check tells it to the module anew.
int SetModuleBaud(Session& session, KRMCOMM& krm, const std::string& baud) {
  session.Op().SetStatusLine("Standby... Attempting to connect to KRM");
  const bool set = krm.KRM_SetBaud(TextToLong(baud));
  const int code = TellResult(
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

class ModuleCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("module", "Talk to the data module");
    command->require_subcommand(1);
    test_ = Action(*command, "test", "Ask whether the module is there");
    AddExamples(*test_, {{"module test --port 2", "Asks the module on serial port 2."}});
    clear_ = Action(*command, "clear", "Clear the module's memory, after a question");
    AddExamples(*clear_, {{"module clear --port 2 --yes", "Clears without a question."}});
    baud_ = Action(*command, "baud", "Tell the module its speed towards the indicator");
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

std::unique_ptr<Command> MakeModuleCommand() { return std::make_unique<ModuleCommand>(); }

}  // namespace vrx
