#include "presenter/database_commands.h"

#include <array>
#include <optional>
#include <span>
#include <utility>

#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/undo.h"
#include "database/identity.h"
#include "database/missing_records.h"
#include "presenter/command_states.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr Milliseconds kNoDelay{0};

constexpr std::array kRecipeTabs{+kTabIngredients, +kTabPens, +kTabRecipes};
constexpr std::array kTransactionTabs{+kTabBatchedFed};

constexpr KindRules kRecipeManner{.goes_to_transfer_tab = true,
                                  .new_delay = Milliseconds{1000},
                                  .browse_delay = Milliseconds{500},
                                  .save_as_delay = Milliseconds{500},
                                  .save_as_tests_name = true,
                                  .open_stands_by = true,
                                  .new_beeps = true,
                                  .tabs_of_new = kRecipeTabs};

constexpr KindRules kTransactionManner{.goes_to_transfer_tab = false,
                                       .new_delay = kNoDelay,
                                       .browse_delay = kNoDelay,
                                       .save_as_delay = kNoDelay,
                                       .save_as_tests_name = false,
                                       .open_stands_by = false,
                                       .new_beeps = false,
                                       .tabs_of_new = kTransactionTabs};

constexpr Milliseconds kOpenDelay{50};

// The item of `cboPenID` selected after opening a database.
constexpr int kFirstPenItem = 1;

}  // namespace

const KindRules& RulesOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? kRecipeManner : kTransactionManner;
}

DatabaseCommands::DatabaseCommands(Services& services, GeneralDelay& delay, CommandStates& commands,
                                   TabFolder& tabs, MainView& window, LegacyOpener* legacy)
    : services_(services),
      delay_(delay),
      commands_(commands),
      tabs_(tabs),
      window_(window),
      legacy_(legacy) {}

bool DatabaseCommands::IsOpen(DatabaseKind kind) const {
  const BoundDatabase& bound = Bound(kind);
  return bound.connection != nullptr && !bound.blank;
}

OpenDatabases DatabaseCommands::Opened() const {
  OpenDatabases open{.lock_wait = services_.identity.Wait()};
  if (!recipe_.bound.blank) {
    open.recipe_db_path = recipe_.bound.path;
  }
  if (!transaction_.bound.blank) {
    open.trans_db_path = transaction_.bound.path;
    open.trans_db_uom = transaction_.bound.unit;
    open.trans_db_read_only_note = transaction_.bound.read_only_note;
  }
  return open;
}

CurrentDatabase DatabaseCommands::OpenedRecipes() const {
  const BoundDatabase& bound = recipe_.bound;
  if (bound.blank) {
    return {};
  }
  return {.path = bound.path,
          .name = FileTitle(bound.path),
          .unit = bound.unit,
          .read_only_note = bound.read_only_note};
}

void DatabaseCommands::ReloadViews(DatabaseKind kind) { window_.Rebind(kind, Bound(kind)); }

void DatabaseCommands::ShowModifiedDate(DatabaseKind kind) {
  Side& side = SideOf(kind);
  const std::optional<Date> date =
      services_.identity.GetDatabaseDate(side.bound.path, DateSelector::kModified);
  ShowPanel(side, kPanelModified, date ? DefaultText(*date) : std::string());
}

void DatabaseCommands::OrGoBack(Side& side, const std::function<void()>& body) {
  const SQLite::Database* const connection = side.bound.connection.get();
  const CurrentDatabase current = side.current;
  const PanelTexts panels = side.panels;
  RunOrUndo(body, [&] {
    // Not if another database has been opened, which has updated the display.
    if (side.bound.connection.get() == connection) {
      side.current = current;
      ShowPanels(side, panels);
      window_.ShowUnit(side.kind, side.bound.unit);
    }
  });
}

// New.

void DatabaseCommands::New(Side& side) {
  const KindTexts& words = TextsOf(side.kind);
  RunReported(services_.op, {.title = words.new_failure}, [&] {
    GoToTransferTab(side);
    const FileChoice choice =
        services_.files.ShowSave({.title = std::string(words.new_dialog_title),
                                  .filter = std::string(words.filter),
                                  .default_extension = std::string(words.extension),
                                  .start_folder = services_.folder.DefaultAppPath().string(),
                                  .flags = kShortNames});
    if (choice.Cancelled() || !delay_.Wait(RulesOf(side.kind).new_delay)) {
      return;
    }
    std::optional<BusyCursor> busy;
    const NewDatabase wanted{.kind = side.kind,
                             .program_directory = services_.system.ProgramDirectory(),
                             .path = choice.path,
                             .title = choice.title,
                             .unit = services_.settings.SystemUnits(),
                             .accepted = [&] {
                               busy.emplace(services_.op);
                               ShowBusyText(side, "Standby...");
                             }};
    OrGoBack(side, [&] {
      const PanelTexts panels = side.panels;
      if (!CreateDatabase(wanted, services_.identity, services_.op, side.current)) {
        ShowPanels(side, panels);
      } else if (ShowNew(side)) {
        busy.reset();
        opened_(side.kind, side.bound.path);
        if (RulesOf(side.kind).new_beeps) {
          BeepIfEnabled(services_.op, services_.settings);
        }
      }
    });
  });
}

bool DatabaseCommands::ShowNew(Side& side) {
  if (!BindOpened(side, BindUserDatabase(side.current.path, services_.identity.Wait()),
                  {.path = side.current.path,
                   .name = side.current.name,
                   .becomes_current = true,
                   .is_new = true})) {
    return false;
  }
  ShowPanel(side, kPanelName, side.current.name);
  ShowPanel(side, kPanelCreated, DefaultText(services_.calendar.Today()));
  ShowPanel(side, kPanelUnit, side.bound.unit);
  EnableCommands(side);
  const std::span<const int> tabs = RulesOf(side.kind).tabs_of_new;
  for (const int tab : tabs) {
    commands_.TurnTab(tab, true);
  }
  tabs_.SelectTab(tabs.front());
  return true;
}

// Open.

void DatabaseCommands::Browse(Side& side) {
  const KindTexts& words = TextsOf(side.kind);
  RunReported(services_.op, {.title = words.open_failure}, [&] {
    GoToTransferTab(side);
    const FileChoice choice =
        services_.files.ShowOpen({.title = std::string(words.open_dialog_title),
                                  .filter = std::string(words.filter),
                                  .default_extension = std::string(words.extension),
                                  .start_folder = services_.folder.DefaultAppPath().string(),
                                  .flags = kShortNames | kFileMustExist | kHideReadOnly});
    if (choice.Cancelled() || !delay_.Wait(RulesOf(side.kind).browse_delay)) {
      return;
    }
    Open(side,
         {.path = choice.path, .name = UnicodeUpperCase(choice.title), .becomes_current = true});
  });
}

void DatabaseCommands::OpenNamed(DatabaseKind kind, const fs::path& path) {
  Side& side = SideOf(kind);
  RunReported(services_.op, {.title = TextsOf(kind).open_failure}, [&] {
    GoToTransferTab(side);
    Open(side, {.path = path, .name = FileTitle(path), .becomes_current = true});
  });
}

void DatabaseCommands::Open(Side& side, FileToOpen file) {
  RunReported(services_.op, {.title = TextsOf(side.kind).open_failure}, [&] {
    if (!delay_.Wait(kOpenDelay) || !ConvertIfLegacy(side, file) || !IsUserDatabase(side, file)) {
      return;
    }
    BoundDatabase next = BindUserDatabase(file.path, services_.identity.Wait());
    if (side.kind == DatabaseKind::kRecipe) {
      WarnOfMissingRecords(next, file.name);
    }
    std::optional<BusyCursor> busy;
    OrGoBack(side, [&] {
      if (RulesOf(side.kind).open_stands_by) {
        busy.emplace(services_.op);
        ShowBusyText(side, "Standby... Loading");
      }
      if (!BindOpened(side, std::move(next), file)) {
        return;
      }
      if (side.kind == DatabaseKind::kRecipe) {
        FinishRecipeOpen(side, file);
        busy.reset();
        BeepIfEnabled(services_.op, services_.settings);
      } else {
        FinishTransactionOpen(side, file);
      }
      opened_(side.kind, file.path);
    });
  });
}

bool DatabaseCommands::ConvertIfLegacy(const Side& side, FileToOpen& file) {
  if (legacy_ == nullptr) {
    return true;
  }
  const LegacyOpening found = legacy_->Offer(side.kind, file.path);
  if (found.outcome == LegacyOpening::Outcome::kOpenCopy) {
    file = {.path = found.copy, .name = FileTitle(found.copy), .becomes_current = true};
  }
  return found.outcome != LegacyOpening::Outcome::kEnd;
}

bool DatabaseCommands::IsUserDatabase(const Side& side, const FileToOpen& file) {
  return services_.identity.IsUserDatabase(side.kind, file.path, file.name);
}

void DatabaseCommands::WarnOfMissingRecords(const BoundDatabase& database,
                                            const std::string& name) {
  const std::string missing = ToText(FindMissingRecords(*database.connection));
  if (missing.empty()) {
    return;
  }
  services_.op.ShowMessage(
      {.icon = Icon::kWarning,
       .title = Tr("Incomplete Database"),
       .text = Tr("The recipe database %1 lacks these records: %2.", {name, missing}) + "\r\n\r\n" +
               Tr("They cannot be edited or sent. Restore the file from a "
                  "backup copy.")});
}

// Returns false if another database was bound, or if the program closes.
bool DatabaseCommands::BindOpened(Side& side, BoundDatabase next, const FileToOpen& file) {
  BoundDatabase previous = Bind(side, std::move(next));
  const SQLite::Database* const connection = side.bound.connection.get();
  if (file.becomes_current) {
    side.current = {.path = file.path, .name = file.name, .unit = side.bound.unit};
  }
  side.unit_asked = file.unit_asked;
  if (side.kind == DatabaseKind::kTransaction) {
    window_.ShowUnit(side.kind, side.bound.unit);
    return true;
  }
  if (file.is_new) {
    window_.HidePenCapacityWarning();
  }
  window_.ShowUnit(side.kind, side.bound.unit);
  RunOrUndo([&] { window_.LoadIdLists(); },
            [&] {
              if (side.bound.connection.get() == connection) {
                Bind(side, std::move(previous));
              }
            });
  return side.bound.connection.get() == connection && !delay_.Closing();
}

void DatabaseCommands::FinishRecipeOpen(Side& side, const FileToOpen& file) {
  ShowOpened(side, file);
  window_.ShowTransferOption();
  EnableCommands(side);
  window_.CheckPenCapacity();
  window_.SelectPenItem(kFirstPenItem);
}

void DatabaseCommands::FinishTransactionOpen(Side& side, const FileToOpen& file) {
  ShowOpened(side, file);
  EnableCommands(side);
  if (delay_.Wait(kOpenDelay)) {
    tabs_.SelectTab(kTabBatchedFed);
  }
}

void DatabaseCommands::ShowOpened(Side& side, const FileToOpen& file) {
  side.current.unit = side.bound.unit;
  ShowPanel(side, kPanelName,
            side.bound.read_only_note.empty() ? file.name : Tr("%1 (read-only)", {file.name}));
  ShowPanel(side, kPanelUnit, side.current.unit);
  WarnIfUnitsDiffer(side.current.unit);
  constexpr std::array<std::pair<StatusPanel, DateSelector>, 2> kDates{
      {{kPanelCreated, DateSelector::kCreated}, {kPanelModified, DateSelector::kModified}}};
  for (const auto& [panel, selector] : kDates) {
    const std::optional<Date> date = services_.identity.GetDatabaseDate(file.path, selector);
    ShowPanel(side, panel, date ? DefaultText(*date) : std::string());
  }
}

// The window and its views.

// Keeps the old connection open until no view uses it.
BoundDatabase DatabaseCommands::Bind(Side& side, BoundDatabase next) {
  if (side.rebinding.Running()) {
    throw Error("the views are on their way to another database");
  }
  window_.LeaveEdits(side.kind);
  const auto rebind = [&] {
    const OperationLock::Scope rebinding = side.rebinding.TryEnter();
    window_.Rebind(side.kind, next);
  };
  RunOrUndo(rebind, [&] {
    side.previous = std::move(next);
    if (side.bound.connection) {
      window_.Rebind(side.kind, side.bound);
      side.previous = {};
    }
  });
  side.previous = {};
  ++side.binding;
  return std::exchange(side.bound, std::move(next));
}

void DatabaseCommands::GoToTransferTab(const Side& side) {
  if (RulesOf(side.kind).goes_to_transfer_tab) {
    tabs_.SelectTab(kTabDataTransfer);
  }
}

void DatabaseCommands::ShowBusyText(Side& side, std::string_view text) {
  ShowPanel(side, kPanelName, text);
  ClearPanels(side, {kPanelUnit, kPanelCreated, kPanelModified});
}

void DatabaseCommands::ClearPanels(Side& side, std::initializer_list<StatusPanel> panels) {
  for (const StatusPanel panel : panels) {
    ShowPanel(side, panel, {});
  }
}

void DatabaseCommands::ShowPanel(Side& side, StatusPanel panel, std::string_view text) {
  side.panels[panel] = text;
  window_.SetStatusPanel(side.kind, panel, text);
}

void DatabaseCommands::ShowPanels(Side& side, const PanelTexts& texts) {
  if (texts == side.panels) {
    return;
  }
  for (const auto& [panel, text] : texts) {
    ShowPanel(side, panel, text);
  }
}

void DatabaseCommands::EnableCommands(const Side& side) {
  side.kind == DatabaseKind::kRecipe ? commands_.EnableRecipeCommands()
                                     : commands_.EnableTransactionCommands();
}

void DatabaseCommands::DisableCommands(const Side& side) {
  side.kind == DatabaseKind::kRecipe ? commands_.DisableRecipeCommands()
                                     : commands_.DisableTransactionCommands();
}

}  // namespace vrx
