#include "make_manual/sample_program.h"

#include <QAction>
#include <QApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/program_runner.h"
#include "adapters/qt_event_pump.h"
#include "base/error.h"
#include "base/files.h"
#include "base/text.h"
#include "desktop/dialogs/about_and_splash.h"
#include "link/krmcomm.h"
#include "platform/serial_control.h"
#include "settings/data_folder.h"

namespace vrx::manual {
namespace {

namespace fs = std::filesystem;

constexpr QSize kWindowSize{960, 620};
constexpr std::size_t kLargestFile = 1U << 16U;
const std::string kRecipeFile = "SITE.RDB";
const std::string kTransactionFile = "YARD.TDB";

// The figures show the screens of one day.
class SampleCalendar : public Calendar {
 public:
  [[nodiscard]] LocalTime Now() const override {
    return {.date = {std::chrono::year{2026}, std::chrono::February, std::chrono::day{1}}};
  }
};

class SampleSystem : public SystemInfo {
 public:
  explicit SampleSystem(fs::path program_directory)
      : program_directory_(std::move(program_directory)) {}

  [[nodiscard]] std::string WindowsDirectory() const override { return "/usr"; }
  [[nodiscard]] std::string CommonAppDataFolder() const override { return "."; }
  [[nodiscard]] std::string ProgramDirectory() const override {
    return program_directory_.string();
  }
  int FindExecutable(const std::string& document, const std::string& /*directory*/,
                     std::string& viewer) const override {
    constexpr int kFound = 33;
    viewer = document.ends_with(".PDF") ? "/usr/bin/okular" : "/usr/bin/kwrite";
    return kFound;
  }

 private:
  fs::path program_directory_;
};

class SampleOperatingSystem : public OperatingSystem {
 public:
  [[nodiscard]] OsVersion Version() const override { return {.platform = 4}; }
  std::optional<RegistryKey> OpenKey(RegistryRoot /*root*/, std::string_view /*path*/) override {
    return std::nullopt;
  }
  std::optional<RegistryValue> QueryValue(RegistryKey /*key*/, std::string_view /*name*/) override {
    return std::nullopt;
  }
  bool CloseKey(RegistryKey /*key*/) override { return true; }
  bool StartProgram(const fs::path& /*program*/) override { return false; }
  int OpenDocument(const fs::path& /*document*/) override { return 0; }
};

// A data module in place of the cable's other end, or an indicator that is silent: answers each
// command at once, the reading of its memory with the memory. The last bytes of a paced reply come
// as time passes.
class SampleModule : public SerialControl {
 public:
  void SetDTREnable(bool /*on*/) override {}
  void SetInBufferSize(int /*bytes*/) override {}
  void SetOutBufferSize(int /*bytes*/) override {}
  void SetHandshaking(Handshaking /*mode*/) override {}
  void SetCommPort(int /*number*/) override {}
  void SetSettings(std::string_view /*settings*/) override {}
  [[nodiscard]] bool PortOpen() const override { return open_; }
  void SetPortOpen(bool open) override {
    open_ = open;
    reply_.clear();
  }
  int InBufferCount() override { return static_cast<int>(reply_.size()); }
  void DiscardInput() override { reply_.clear(); }
  int OutBufferCount() override { return 0; }
  void DiscardOutput() override {}
  std::string Input() override { return std::exchange(reply_, {}); }
  void Output(std::string_view bytes) override {
    reply_ = std::string(bytes) + KRMConst::US;
    if (bytes == std::string_view(&KRMConst::NAK, 1)) {
      (paced ? on_its_way_ : reply_) += memory + KRMConst::US;
    }
  }

  void Arrives(const std::string& bytes) { reply_ += bytes; }
  void LetPass(Milliseconds time) {
    constexpr std::int64_t kBytesPerSecond = 1920;  // 19200 baud, 10 bits a byte
    const auto bytes = static_cast<std::size_t>(time.count() * kBytesPerSecond / 1000);
    reply_ += on_its_way_.substr(0, bytes);
    on_its_way_.erase(0, bytes);
  }

  std::string memory;
  bool paced = false;

 private:
  bool open_ = false;
  std::string reply_;
  std::string on_its_way_;
};

// Waits take no time: their end, or the tick before it, comes as soon as the pending events are
// handled. The clock moves with them alone, so that a figure shows the same times on every machine.
class HastyPump : public QtEventPump {
 public:
  explicit HastyPump(SampleModule& module) : module_(module) {}

  [[nodiscard]] Milliseconds Now() const override { return now_; }
  void Pump(Milliseconds limit) override {
    QtEventPump::Pump(Milliseconds{0});
    constexpr Milliseconds kLongest{1000};  // some waits have no end of their own
    Milliseconds end = now_ + std::min(limit, kLongest);
    for (const HastyTicker* const ticker : tickers_) {
      end = std::min(end, ticker->Due());
    }
    module_.LetPass(end - now_);
    now_ = end;
    for (HastyTicker* const ticker : std::vector(tickers_)) {
      // A tick may end another ticker.
      if (std::ranges::find(tickers_, ticker) != tickers_.end()) {
        ticker->TickIfDue();
      }
    }
  }
  [[nodiscard]] std::unique_ptr<Ticker> StartTicker(Milliseconds interval,
                                                    std::function<void()> tick) override {
    return std::make_unique<HastyTicker>(*this, interval, std::move(tick));
  }

 private:
  class HastyTicker : public Ticker {
   public:
    HastyTicker(HastyPump& pump, Milliseconds interval, std::function<void()> tick)
        : pump_(pump), interval_(interval), due_(pump.now_ + interval), tick_(std::move(tick)) {
      pump_.tickers_.push_back(this);
    }
    ~HastyTicker() override { std::erase(pump_.tickers_, this); }
    HastyTicker(const HastyTicker&) = delete;
    HastyTicker& operator=(const HastyTicker&) = delete;

    [[nodiscard]] Milliseconds Due() const { return due_; }
    void TickIfDue() {
      if (due_ <= pump_.now_) {
        due_ += interval_;
        tick_();
      }
    }

   private:
    HastyPump& pump_;
    Milliseconds interval_;
    Milliseconds due_;
    std::function<void()> tick_;
  };

  SampleModule& module_;
  Milliseconds now_{0};
  std::vector<HastyTicker*> tickers_;  // in the order of their start
};

class SampleFileChooser : public FileChooser {
 public:
  FileChoice ShowOpen(const FileDialog& /*dialog*/) override {
    const fs::path path = std::exchange(next, {});
    return {path.string(), path.filename().string()};
  }
  FileChoice ShowSave(const FileDialog& dialog) override { return ShowOpen(dialog); }
  std::string ShowFolder(const std::string& /*title*/) override {
    return std::exchange(next, {}).string();
  }

  fs::path next;  // nothing: a cancel
};

class SampleSettings : public UserSettings {
 public:
  [[nodiscard]] std::string GetSetting(std::string_view /*key*/) const override { return {}; }
  void SaveSetting(std::string_view /*key*/, std::string_view /*value*/) override {}
};

// Keeps the texts of boxes instead of showing them.
class SampleOperator : public QtOperator {
 public:
  Answer ShowMessage(const MessageBox& box) override {
    if (shows_boxes) {
      return QtOperator::ShowMessage(box);
    }
    messages += (messages.empty() ? "" : "; ") + box.title + ": " + box.text;
    messages += box.cause.empty() ? "" : " (" + box.cause + ")";
    return box.buttons == Buttons::kYesNo ? Answer::kNo : Answer::kOk;
  }
  void Beep() override {}

  bool shows_boxes = false;
  std::string messages;
};

// A folder that is the current one while it lives.
class WorkFolder {
 public:
  WorkFolder() {
    if (!folder_.isValid()) {
      throw Error("cannot make a temporary folder: " + folder_.errorString().toStdString());
    }
    fs::current_path(folder_.path().toStdString());
  }
  ~WorkFolder() {
    std::error_code ignored;  // the folder that was there before may be gone
    fs::current_path(before_, ignored);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

 private:
  fs::path before_ = fs::current_path();
  QTemporaryDir folder_;
};

}  // namespace

class SampleProgram::Parts {
 public:
  explicit Parts(const fs::path& program_directory) : system(fs::absolute(program_directory)) {
    app_folder.CheckAppDefaultDir();
    ini.emplace(app_folder.IniFilePath(), system, op);
    static_cast<void>(PrivateINI::EnsureIniFile(*ini, op));
    settings.ReadIniSettings(*ini);
    op.messages.clear();  // that the settings are new
    CopySite();
    const auto stay = [](ExitReason) {};
    form = std::make_unique<MainForm>(services, lock_waits, user_settings, serial, *ini, stay);
    form->Serve(op);
    SetHelpHandlers(form->Window(), system, os, op);
  }

  [[nodiscard]] fs::path SiteFile(const std::string& name) const {
    return app_folder.DefaultAppPath() / name;
  }

  void RunEvents() {
    // A queued call may post another one.
    constexpr int kRounds = 3;
    for (int round = 0; round < kRounds; ++round) {
      QApplication::processEvents();
    }
    if (!op.messages.empty()) {
      throw Error("the program says: " + std::exchange(op.messages, {}));
    }
  }

 private:
  void CopySite() {
    const fs::path site = fs::path(system.ProgramDirectory()) / "sample_site";
    fs::copy_file(site / kRecipeFile, SiteFile(kRecipeFile));
    fs::copy_file(site / "SITE.TDB", SiteFile(kTransactionFile));
    for (const fs::directory_entry& file : fs::directory_iterator(site)) {
      if (file.path().extension() == ".qxt") {
        fs::copy_file(file.path(), SiteFile(UpperCase(file.path().filename().string())));
      }
    }
  }

 public:
  WorkFolder work_folder;
  SampleSystem system;
  SampleOperatingSystem os;
  SampleOperator op;
  SampleFileChooser files;
  SampleSettings user_settings;
  SampleCalendar calendar;
  SampleModule serial;
  HastyPump pump{serial};
  Folder app_folder{system};
  std::optional<CPrivateINI> ini;
  PrivateINI settings;
  ChildProcessRunner programs;
  WaitBudget lock_waits{kLongestLockWait};
  DatabaseIdentity identity{op, calendar, settings, lock_waits};
  Services services{.op = op,
                    .files = files,
                    .pump = pump,
                    .programs = programs,
                    .calendar = calendar,
                    .system = system,
                    .settings = settings,
                    .folder = app_folder,
                    .identity = identity};
  std::unique_ptr<MainForm> form;
};

SampleProgram::SampleProgram(const fs::path& program_directory)
    : parts_(std::make_unique<Parts>(fs::absolute(program_directory))) {
  Window().resize(kWindowSize);
  Window().show();
  RunEvents();
  WillChoose(kRecipeFile);
  Choose("mnuFileOpenRecipeDB");
  WillChoose(kTransactionFile);
  Choose("mnuFileOpenTransactionDB");
}

SampleProgram::~SampleProgram() = default;

MainWindow& SampleProgram::Window() { return parts_->form->Window(); }

void SampleProgram::ShowTab(int tab) {
  Window().Tabs().SelectTab(tab);
  RunEvents();
}

void SampleProgram::WillChoose(const std::string& site_file) {
  parts_->files.next = parts_->SiteFile(site_file);
}

void SampleProgram::ModuleHolds(const std::vector<std::string>& site_files) {
  parts_->serial.memory.clear();
  for (const std::string& file : site_files) {
    parts_->serial.memory += ReadFileBytes(parts_->SiteFile(file), kLargestFile);
  }
}

void SampleProgram::ModuleSendsAtItsPace(bool paced) { parts_->serial.paced = paced; }

void SampleProgram::IndicatorSends(const std::string& site_file) {
  parts_->serial.Arrives(ReadFileBytes(parts_->SiteFile(site_file), kLargestFile));
}

void SampleProgram::ShowBoxes() { parts_->op.shows_boxes = true; }

void SampleProgram::Choose(const char* action) {
  Find<QAction>(action).trigger();
  RunEvents();
}

void SampleProgram::WaitUntil(const std::function<bool()>& condition) {
  constexpr std::chrono::minutes kLongest{1};
  const auto end = std::chrono::steady_clock::now() + kLongest;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      throw Error("the program does not answer");
    }
    parts_->pump.Pump(Milliseconds{1000});
    std::this_thread::yield();
  }
  RunEvents();
}

void SampleProgram::RunEvents() { parts_->RunEvents(); }

}  // namespace vrx::manual
