#include "ctl/session.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <istream>
#include <ostream>
#include <span>
#include <system_error>
#include <thread>
#include <utility>

#include "base/files.h"
#include "base/text.h"
#include "ctl/command.h"
#include "database/connection.h"
#include "database/identity.h"
#include "presenter/report_failure.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kToLineStartAndErase = "\r\x1B[K";

// Replaces CR LF by a line break and removes a trailing one.
std::string Lines(std::string_view text) {
  std::string lines;
  for (const char character : text) {
    if (character != '\r') {
      lines.push_back(character);
    }
  }
  while (!lines.empty() && (lines.back() == '\n' || lines.back() == ' ')) {
    lines.pop_back();
  }
  return lines;
}

void MakeFolders(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error && !fs::is_directory(folder)) {
    throw FileError("cannot make the folder " + folder.string() + ": " + error.message());
  }
}

void ReportUnread(Operator& op, const std::string& cause) {
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "INI File Error",
                  .text = "Unable to read some or all of the application settings from the "
                          "applications INI file. Please check all settings.",
                  .cause = cause});
}

// An answer that can be typed. The first of a question proceeds, the last refuses.
struct Choice {
  Answer answer;
  std::string_view word;
  std::string_view letter;  // may be typed instead; empty if there is none
};

std::span<const Choice> ChoicesOf(Buttons buttons) {
  static constexpr std::array<Choice, 2> kOkCancel{
      {{Answer::kOk, "OK", {}}, {Answer::kCancel, "Cancel", {}}}};
  static constexpr std::array<Choice, 2> kYesNo{
      {{Answer::kYes, "Yes", "y"}, {Answer::kNo, "No", "n"}}};
  static constexpr std::array<Choice, 3> kStore{{{Answer::kStoreNew, "New", "n"},
                                                 {Answer::kStoreAll, "All", "a"},
                                                 {Answer::kStoreNothing, "Nothing", {}}}};
  switch (buttons) {
    case Buttons::kYesNo:
      return kYesNo;
    case Buttons::kNewAllNothing:
      return kStore;
    default:
      return kOkCancel;
  }
}

// Keeps the last message instead of showing it.
class KeptBox : public Operator {
 public:
  Answer ShowMessage(const MessageBox& box) override {
    kept_ = box;
    return Answer::kOk;
  }
  void Beep() override {}
  void SetBusy(bool /*busy*/) override {}
  void SetStatusLine(std::string_view /*text*/) override {}
  void SetStatusColor(StatusColor /*color*/) override {}

  void ShowTo(Operator& op) const {
    if (kept_) {
      op.ShowMessage(*kept_);
    }
  }
  [[nodiscard]] std::string Cause() const { return kept_ ? kept_->cause : ""; }

 private:
  std::optional<MessageBox> kept_;
};

}  // namespace

void ProgressLine::SetProgressMessage(std::string_view text) {
  message_ = text;
  maximum_ = 0;
  Draw();
}

void ProgressLine::SetProgressRange(int maximum) {
  maximum_ = maximum;
  value_ = 0;
  Draw();
}

void ProgressLine::SetProgressValue(int value) {
  const int before = Percent();
  value_ = value;
  if (Percent() != before) {
    Draw();
  }
}

int ProgressLine::Percent() const {
  constexpr std::int64_t kWhole = 100;
  return maximum_ > 0 ? static_cast<int>(kWhole * value_ / maximum_) : 0;
}

void ProgressLine::Draw() {
  if (!on_terminal_) {
    return;
  }
  Clear();
  if (message_.empty()) {
    return;
  }
  err_ << message_;
  if (maximum_ > 0) {
    err_ << "  " << Percent() << '%';
  }
  err_.flush();
  drawn_ = true;
}

void ProgressLine::Clear() {
  if (drawn_) {
    err_ << kToLineStartAndErase;
    err_.flush();
    drawn_ = false;
  }
}

TerminalOperator::TerminalOperator(std::istream& in, std::ostream& err, ProgressLine& line,
                                   Settings settings)
    : in_(in), err_(err), line_(line), settings_(settings) {}

Answer TerminalOperator::ShowMessage(const MessageBox& box) {
  line_.Clear();
  err_ << Lines(box.title) << ": " << Lines(box.text) << '\n';
  last_cause_.clear();
  ReportCause(box.cause);
  return box.buttons == Buttons::kOk ? Answer::kOk : Ask(box);
}

void TerminalOperator::ReportCause(std::string_view cause) {
  if (!cause.empty() && cause != last_cause_) {
    line_.Clear();
    err_ << "cause: " << Lines(cause) << '\n';
    last_cause_ = cause;
  }
}

Answer TerminalOperator::Ask(const MessageBox& box) {
  const std::span<const Choice> choices = ChoicesOf(box.buttons);
  const Choice& going_on = choices.front();
  const Choice& refusing = choices.back();
  if (settings_.yes) {
    return going_on.answer;
  }
  if (!settings_.in_is_terminal) {
    err_ << "answered with " << refusing.word << " (--yes answers with " << going_on.word << ")\n";
    return refusing.answer;
  }
  for (const Choice& choice : choices) {
    err_ << choice.word << (&choice == &refusing ? "? " : &choice == &refusing - 1 ? " or " : ", ");
  }
  err_.flush();
  std::string typed;
  std::getline(in_, typed);
  typed = TrimBlanks(typed);
  const auto chosen = std::find_if(choices.begin(), choices.end(), [&](const Choice& choice) {
    return !typed.empty() &&
           (EqualsIgnoringCase(typed, choice.word) || EqualsIgnoringCase(typed, choice.letter));
  });
  return chosen == choices.end() ? refusing.answer : chosen->answer;
}

void TerminalOperator::Beep() {
  if (settings_.err_is_terminal) {
    err_ << '\a';
    err_.flush();
  }
}

void TerminalOperator::SetStatusLine(std::string_view text) {
  if (color_ == StatusColor::kBlue || text.empty()) {
    line_.SetProgressMessage(text);
  } else {
    ShowNote(text);
  }
}

void TerminalOperator::ShowNote(std::string_view text) {
  line_.Clear();
  err_ << Lines(text) << '\n';
}

Milliseconds IdlePump::Now() const {
  return std::chrono::duration_cast<Milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

void IdlePump::Pump(Milliseconds limit) { std::this_thread::sleep_for(limit); }

std::unique_ptr<EventPump::Ticker> IdlePump::StartTicker(Milliseconds /*interval*/,
                                                         std::function<void()> /*tick*/) {
  return std::make_unique<Ticker>();
}

Session::Session(const CommandContext& context, const GlobalOptions& options)
    : context_(context),
      options_(options),
      progress_(context.err, context.err_is_terminal),
      operator_(context.in, context.err, progress_,
                {.yes = options.yes,
                 .in_is_terminal = context.in_is_terminal,
                 .err_is_terminal = context.err_is_terminal}) {}

fs::path Session::FindDataFolder() const {
  if (!options_.data_dir.empty()) {
    return fs::absolute(options_.data_dir);
  }
  const std::string common = context_.system.CommonAppDataFolder();
  return common.empty() ? fs::path() : fs::path(common) / kMakerFolderName / kProductName;
}

const fs::path& Session::DataFolder() {
  if (!data_folder_.empty()) {
    return data_folder_;
  }
  fs::path folder = FindDataFolder();
  try {
    if (folder.empty()) {
      throw FileError("the common application data folder is unknown");
    }
    MakeFolders(folder);
  } catch (const FileError&) {
    if (!only_reads_) {
      throw;
    }
  }
  data_folder_ = std::move(folder);
  return data_folder_;
}

const CPrivateINI& Session::Ini() {
  if (!ini_) {
    ini_.emplace(DataFolder() / kIniFileName, context_.system, operator_);
  }
  return *ini_;
}

PrivateINI& Session::Settings() {
  if (!settings_) {
    settings_ = only_reads_ ? ReadSettingsInForce() : ReadSettings();
    settings_->ReportRefusedUnit(operator_);
  }
  return *settings_;
}

PrivateINI Session::ReadSettings() {
  if (!PrivateINI::EnsureIniFile(Ini(), operator_)) {
    throw FileError("there are no settings to go on with");
  }
  PrivateINI settings;
  if (!settings.ReadIniSettings(Ini())) {
    ReportUnread(operator_, settings.FailureCause());
  }
  return settings;
}

// A missing file or key has its default, even if the default cannot be written. An existing file
// that cannot be read may have other values, so the user is warned.
PrivateINI Session::ReadSettingsInForce() {
  PrivateINI settings;
  if (DataFolder().empty()) {
    return settings;
  }
  KeptBox box;
  if (PrivateINI::EnsureIniFile(Ini(), box)) {
    box.ShowTo(operator_);
    settings.ReadIniSettings(Ini());
  } else if (FileExists(DataFolder() / kIniFileName)) {
    ReportUnread(operator_, box.Cause());
  }
  return settings;
}

CentralSettings Session::Central() {
  return DataFolder().empty() ? CentralSettings() : ReadCentralSettings(Ini());
}

bool Session::SaveSettings() {
  PrivateINI& settings = Settings();
  return settings.WriteIniSettings(Ini()) || ReportUnsaved(settings.FailureCause());
}

bool Session::SaveCentral(const CentralSettings& settings) {
  Settings();  // makes a missing file with defaults
  std::string cause;
  return WriteCentralSettings(Ini(), Central(), settings, cause) || ReportUnsaved(cause);
}

bool Session::ReportUnsaved(const std::string& cause) {
  operator_.ShowMessage(
      {.icon = Icon::kWarning,
       .title = "INI File Error",
       .text = "Unable to save some or all of the application settings to the applications INI "
               "file. Please check all settings next time you run the program.",
       .cause = cause});
  return false;
}

Services& Session::GetServices() {
  if (!services_) {
    PrivateINI& settings = Settings();
    folder_.emplace(context_.system, DataFolder());
    identity_.emplace(operator_, context_.calendar, settings, context_.busy_timeout);
    services_.emplace(Services{.op = operator_,
                               .files = chooser_,
                               .pump = pump_,
                               .programs = programs_,
                               .calendar = context_.calendar,
                               .system = context_.system,
                               .settings = settings,
                               .folder = *folder_,
                               .identity = *identity_});
  }
  return *services_;
}

bool Session::IsUserDatabase(const fs::path& path, DatabaseKind kind) {
  return AcceptsType(path, kind, Identity().GetDatabaseType(path));
}

bool Session::AcceptsType(const fs::path& path, DatabaseKind kind, const std::string& type) {
  const KindTexts& words = TextsOf(kind);
  if (type == words.user_type) {
    return true;
  }
  operator_.ShowMessage({.icon = Icon::kWarning,
                         .title = "Invalid Database",
                         .text = "The database file (" + FileTitle(path) +
                                 ") that you specified, is not a valid VRX-2260 " +
                                 std::string(words.noun) + " database.",
                         .cause = type.empty() ? "" : FileTitle(path) + " is marked " + type});
  return false;
}

int Session::OnDatabase(const fs::path& path, DatabaseKind kind, const std::function<int()>& work) {
  int code = kFailed;
  RunReported<DatabaseError>(
      operator_, {.title = TextsOf(kind).open_failure, .text = FailureText::kDatabaseWords},
      [&] { code = WithDatabaseErrors(path, work); });
  return code;
}

DatabaseKind KindOfExtension(const fs::path& path) {
  return EqualsIgnoringCase(path.extension().string(), ".TDB") ? DatabaseKind::kTransaction
                                                               : DatabaseKind::kRecipe;
}

}  // namespace vrx
