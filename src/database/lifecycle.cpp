#include "database/lifecycle.h"

#include <array>
#include <exception>
#include <optional>
#include <span>
#include <system_error>
#include <utility>

#include "database/copy_database.h"
#include "database/kind_words.h"
#include "database/tell_failure.h"
#include "frame/files.h"
#include "frame/number.h"
#include "frame/text.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr Milliseconds kNoDelay{0};
constexpr Milliseconds kOpenDelay{50};

constexpr std::array kRecipeTabs{+kTabIngredients, +kTabPens, +kTabRecipes};
constexpr std::array kTransactionTabs{+kTabBatchedFed};

constexpr std::string_view kAllFiles = "|All Files (*.*)|*.*";

// Item of `cboPenID` that an opened database stands on.
constexpr int kFirstPenItem = 1;

}  // namespace

// In what the two sides behave differently, all of it on purpose.
struct DatabaseLifecycle::Manner {
  bool sets_commands_aside;  // ahead of the dialog of New and Open
  Milliseconds new_delay;    // each lets the dialog's place be repainted
  Milliseconds browse_delay;
  Milliseconds save_as_delay;
  bool save_as_tests_name;
  bool open_stands_by;  // with the hourglass and a text in place of the name
  bool new_beeps;
  std::span<const int> tabs_of_new;  // turned on in this order; the first one is selected
};

const DatabaseLifecycle::Manner& DatabaseLifecycle::MannerOf(const Side& side) {
  static constexpr Manner kRecipeManner{.sets_commands_aside = true,
                                        .new_delay = Milliseconds{1000},
                                        .browse_delay = Milliseconds{500},
                                        .save_as_delay = Milliseconds{500},
                                        .save_as_tests_name = true,
                                        .open_stands_by = true,
                                        .new_beeps = true,
                                        .tabs_of_new = kRecipeTabs};
  static constexpr Manner kTransactionManner{.sets_commands_aside = false,
                                             .new_delay = kNoDelay,
                                             .browse_delay = kNoDelay,
                                             .save_as_delay = kNoDelay,
                                             .save_as_tests_name = false,
                                             .open_stands_by = false,
                                             .new_beeps = false,
                                             .tabs_of_new = kTransactionTabs};
  return side.kind == DatabaseKind::kRecipe ? kRecipeManner : kTransactionManner;
}

DatabaseLifecycle::DatabaseLifecycle(const Ports& ports, std::chrono::milliseconds busy_timeout)
    : ports_(ports), busy_timeout_(busy_timeout) {}

const BoundDatabase& DatabaseLifecycle::Bound(DatabaseKind kind) const {
  return kind == DatabaseKind::kRecipe ? recipe_.bound : transaction_.bound;
}

template <typename Body>
void DatabaseLifecycle::Trapped(std::string_view title, const Body& body) {
  try {
    body();
  } catch (const std::exception& failure) {
    TellFailure(ports_.op, title, failure);
  }
}

// New.

void DatabaseLifecycle::New(Side& side) {
  const KindWords& words = WordsOf(side.kind);
  Trapped(words.new_failure, [&] {
    SetCommandsAside(side);
    const FileChoice choice =
        ports_.files.ShowSave({.title = std::string(words.new_dialog_title),
                               .filter = std::string(words.filter),
                               .default_extension = std::string(words.extension),
                               .start_folder = ports_.app_folder.DefaultAppPath().string(),
                               .flags = kShortNames});
    if (choice.Cancelled() || !ports_.delay.Wait(MannerOf(side).new_delay)) {
      return;
    }
    const NewDatabase wanted{.kind = side.kind,
                             .program_directory = ports_.system.ProgramDirectory(),
                             .path = choice.path,
                             .title = choice.title,
                             .unit = ports_.settings.SystemUnits(),
                             .accepted = [&] { StandBy(side, "Standby..."); }};
    if (CreateDatabase(wanted, ports_.identity, ports_.op, side.current)) {
      ShowNew(side);
    }
  });
}

void DatabaseLifecycle::ShowNew(Side& side) {
  Bind(side, BindUserDatabase(side.current.path, busy_timeout_));
  if (side.kind == DatabaseKind::kRecipe) {
    ports_.window.HidePenCapacityWarning();
  }
  ports_.window.ShowUnit(side.kind, side.bound.unit);
  if (side.kind == DatabaseKind::kRecipe) {
    ports_.window.LoadIdLists();
    if (ports_.delay.Closing()) {
      return;
    }
  }
  ShowPanel(side, kPanelName, side.current.name);
  ShowPanel(side, kPanelCreated, DefaultText(ports_.calendar.Today()));
  ShowPanel(side, kPanelUnit, side.bound.unit);
  EnableCommands(side);
  const Manner& manner = MannerOf(side);
  for (const int tab : manner.tabs_of_new) {
    ports_.commands.TurnTab(tab, true);
  }
  ports_.tabs.SelectTab(manner.tabs_of_new.front());
  ports_.op.SetBusy(false);
  if (manner.new_beeps) {
    BeepIfEnabled(ports_.op, ports_.settings);
  }
}

// Open.

void DatabaseLifecycle::Browse(Side& side) {
  const KindWords& words = WordsOf(side.kind);
  Trapped(words.open_failure, [&] {
    SetCommandsAside(side);
    const FileChoice choice =
        ports_.files.ShowOpen({.title = std::string(words.open_dialog_title),
                               .filter = std::string(words.filter),
                               .default_extension = std::string(words.extension),
                               .start_folder = ports_.app_folder.DefaultAppPath().string(),
                               .flags = kShortNames | kFileMustExist | kHideReadOnly});
    if (choice.Cancelled() || !ports_.delay.Wait(MannerOf(side).browse_delay)) {
      return;
    }
    side.current.path = choice.path;
    side.current.name = UpperCase(choice.title);
    Open(side, side.current.path, side.current.name);
  });
}

// Path and name are copies: an event of a delay may change those of the side.
void DatabaseLifecycle::Open(Side& side, fs::path path, std::string name) {
  Trapped(WordsOf(side.kind).open_failure, [&] {
    if (!ports_.delay.Wait(kOpenDelay) || !PassEarlier(side, path, name) ||
        !IsUserDatabase(side, path, name)) {
      return;
    }
    if (MannerOf(side).open_stands_by) {
      ports_.op.SetBusy(true);
      StandBy(side, "Standby... Loading");
    }
    Bind(side, BindUserDatabase(path, busy_timeout_));
    ports_.window.ShowUnit(side.kind, side.bound.unit);
    if (side.kind == DatabaseKind::kRecipe) {
      FinishRecipeOpen(side, path, name);
    } else {
      FinishTransactionOpen(side, path, name);
    }
  });
}

bool DatabaseLifecycle::PassEarlier(Side& side, fs::path& path, std::string& name) {
  if (ports_.earlier == nullptr) {
    return true;
  }
  const EarlierDatabase found = ports_.earlier->Offer(side.kind, path);
  if (found.outcome == EarlierDatabase::Outcome::kOpenCopy) {
    path = found.copy;
    name = FileTitle(path);
    side.current.path = path;
    side.current.name = name;
  }
  return found.outcome != EarlierDatabase::Outcome::kEnd;
}

bool DatabaseLifecycle::IsUserDatabase(const Side& side, const fs::path& path,
                                       const std::string& name) {
  const KindWords& words = WordsOf(side.kind);
  const std::string type = ports_.identity.GetDatabaseType(path);
  if (type == words.user_type) {
    return true;
  }
  ports_.op.ShowMessage({.icon = Icon::kWarning,
                         .title = "Invalid Database",
                         .text = "The database file (" + name +
                                 ") that you specified, is not a valid VRX-2260 " +
                                 std::string(words.noun) + " database.",
                         .cause = path.string() + " is of type \"" + type + "\"; expected \"" +
                                  std::string(words.user_type) + "\""});
  return false;
}

void DatabaseLifecycle::FinishRecipeOpen(Side& side, const fs::path& path,
                                         const std::string& name) {
  ports_.window.LoadIdLists();
  if (ports_.delay.Closing()) {
    return;
  }
  ShowOpened(side, path, name);
  ports_.window.ShowTransferOption();
  EnableCommands(side);
  ports_.window.CheckPenCapacity();
  ports_.window.SelectPenItem(kFirstPenItem);
  ports_.op.SetBusy(false);
  BeepIfEnabled(ports_.op, ports_.settings);
}

void DatabaseLifecycle::FinishTransactionOpen(Side& side, const fs::path& path,
                                              const std::string& name) {
  ShowOpened(side, path, name);
  EnableCommands(side);
  if (ports_.delay.Wait(kOpenDelay)) {
    ports_.tabs.SelectTab(kTabBatchedFed);
  }
}

void DatabaseLifecycle::ShowOpened(Side& side, const fs::path& path, const std::string& name) {
  side.current.unit = side.bound.unit;
  ShowPanel(side, kPanelName, name);
  ShowPanel(side, kPanelUnit, side.current.unit);
  WarnIfUnitsDiffer(side.current.unit);
  constexpr std::array<std::pair<StatusPanel, DateSelector>, 2> kDates{
      {{kPanelCreated, DateSelector::kCreated}, {kPanelModified, DateSelector::kModified}}};
  for (const auto& [panel, selector] : kDates) {
    const std::optional<Date> date = ports_.identity.GetDatabaseDate(path, selector);
    ShowPanel(side, panel, date ? DefaultText(*date) : std::string());
  }
}

void DatabaseLifecycle::WarnIfUnitsDiffer(std::string_view unit) {
  if (unit != ports_.settings.SystemUnits()) {
    ports_.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = "Weight Units Error",
         .text = "The weight units-of-measure of the database file you have selected is not the "
                 "same as the current system setting. If you continue, this will likely result in "
                 "invalid weight totals being calculated."});
  }
}

// Close and Save.

// Goes to its end whatever happens on the way: the side must not stay half open.
void DatabaseLifecycle::Close(Side& side) {
  const std::string_view title = WordsOf(side.kind).close_failure;
  side.current = {};
  Trapped(title, [&] { BindBlank(side); });
  ClearPanels(side, {kPanelName, kPanelUnit, kPanelCreated, kPanelModified});
  ports_.window.ShowUnit(side.kind, side.bound.unit);
  DisableCommands(side);
  Trapped(title, [&] { ports_.tabs.SelectTab(kTabDataTransfer); });
}

void DatabaseLifecycle::BindBlank(Side& side) {
  try {
    const fs::path directory = ports_.system.ProgramDirectory();
    Bind(side, BindBlankTemplate(directory / WordsOf(side.kind).template_name, busy_timeout_));
  } catch (const std::exception& failure) {
    TellFailure(ports_.op, WordsOf(side.kind).close_failure, failure);
    Bind(side, BindBlankInMemory(side.kind));
  }
}

void DatabaseLifecycle::Save(Side& side) {
  const CurrentDatabase kept = side.current;
  Close(side);
  side.current.path = kept.path;
  side.current.name = kept.name;
  Open(side, kept.path, kept.name);
}

// Save As.

bool DatabaseLifecycle::AskSaveAs(Side& side) {
  const KindWords& words = WordsOf(side.kind);
  bool chosen = false;
  Trapped(words.save_as_failure, [&] {
    const FileChoice choice =
        ports_.files.ShowSave({.title = std::string(words.save_as_dialog_title),
                               .filter = std::string(words.filter).append(kAllFiles),
                               .default_extension = std::string(words.extension),
                               .flags = kShortNames | kHideReadOnly | kOverwritePrompt});
    const Manner& manner = MannerOf(side);
    if (choice.Cancelled() || !ports_.delay.Wait(manner.save_as_delay) ||
        (manner.save_as_tests_name && !AcceptDatabaseName(choice.title, ports_.op))) {
      return;
    }
    save_as_path_ = choice.path;
    save_as_name_ = UpperCase(choice.title);
    chosen = true;
  });
  return chosen;
}

void DatabaseLifecycle::SaveAs(Side& side) {
  if (!AskSaveAs(side)) {
    return;
  }
  Trapped(WordsOf(side.kind).save_as_failure, [&] {
    const fs::path source = side.current.path;
    const fs::path target = save_as_path_;
    const std::string name = save_as_name_;
    Close(side);
    RequireUnbound(target);
    CopyDatabaseFile(source, target, busy_timeout_);
    Open(side, target, name);
  });
}

// The views of the other database must not be left on a file that is no longer there.
void DatabaseLifecycle::RequireUnbound(const fs::path& target) const {
  for (const Side* side : {&recipe_, &transaction_}) {
    std::error_code not_there;
    if (!side->bound.path.empty() && fs::equivalent(target, side->bound.path, not_there)) {
      throw FileError(target.string() + " is in use by this program");
    }
  }
}

// What is known of a side.

bool DatabaseLifecycle::Touch(Side& side) {
  return ports_.identity.SetDatabaseDate(side.current.path, DateSelector::kModified);
}

void DatabaseLifecycle::TakeSystemUnits() {
  const std::string unit = ports_.settings.SystemUnits();
  for (Side* side : {&recipe_, &transaction_}) {
    if (!side->current.unit.empty() && side->current.unit != unit) {
      ports_.identity.SetDatabaseUoM(side->current.path, unit);
      side->current.unit = unit;
      ShowPanel(*side, kPanelUnit, unit);
      ports_.window.ShowUnit(side->kind, unit);
    }
  }
}

void DatabaseLifecycle::Recall(DatabaseKind kind, const fs::path& path, const std::string& name) {
  Side& side = kind == DatabaseKind::kRecipe ? recipe_ : transaction_;
  side.current.path = path;
  side.current.name = name;
}

void DatabaseLifecycle::Release() {
  ports_.window.ReleaseViews();
  for (Side* side : {&recipe_, &transaction_}) {
    side->bound = {};
    side->forsaken = {};
  }
}

// The new connection is open before the old one goes, and the old one goes only when no view is
// left on it.
void DatabaseLifecycle::Bind(Side& side, BoundDatabase next) {
  if (side.moving) {
    throw Error("the views are on their way to another database");
  }
  side.moving = true;
  try {
    ports_.window.Rebind(side.kind, next);
  } catch (...) {
    side.moving = false;
    side.forsaken = std::move(next);
    if (side.bound.connection) {
      ports_.window.Rebind(side.kind, side.bound);
      side.forsaken = {};
    }
    throw;
  }
  side.moving = false;
  side.bound = std::move(next);
  side.forsaken = {};
}

void DatabaseLifecycle::SetCommandsAside(const Side& side) {
  if (MannerOf(side).sets_commands_aside) {
    ports_.commands.DisableRecipeCommands();
    ports_.commands.DisableTransactionCommands();
    ports_.tabs.SelectTab(kTabDataTransfer);
  }
}

void DatabaseLifecycle::StandBy(const Side& side, std::string_view text) {
  ShowPanel(side, kPanelName, text);
  ClearPanels(side, {kPanelUnit, kPanelCreated, kPanelModified});
}

void DatabaseLifecycle::ClearPanels(const Side& side, std::initializer_list<StatusPanel> panels) {
  for (const StatusPanel panel : panels) {
    ShowPanel(side, panel, {});
  }
}

void DatabaseLifecycle::ShowPanel(const Side& side, StatusPanel panel, std::string_view text) {
  ports_.window.SetStatusPanel(side.kind, panel, text);
}

void DatabaseLifecycle::EnableCommands(const Side& side) {
  side.kind == DatabaseKind::kRecipe ? ports_.commands.EnableRecipeCommands()
                                     : ports_.commands.EnableTransactionCommands();
}

void DatabaseLifecycle::DisableCommands(const Side& side) {
  side.kind == DatabaseKind::kRecipe ? ports_.commands.DisableRecipeCommands()
                                     : ports_.commands.DisableTransactionCommands();
}

}  // namespace vrx
