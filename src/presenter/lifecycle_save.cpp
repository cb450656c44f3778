// Close, Save and Save As, and the question about an open database's unit.

#include <system_error>
#include <utility>

#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/copy_database.h"
#include "database/identity.h"
#include "presenter/database_commands.h"
#include "presenter/report_failure.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kAllFiles = "|All Files (*.*)|*.*";

std::string UnitQuestion(const BoundDatabase& database, const std::string& system_unit) {
  const std::string name = FileTitle(database.path);
  return database.unit.empty()
             ? Tr("The weights of %1 have no unit; this system works in %2. Label them %2 from now "
                  "on? No figure is converted.",
                  {name, system_unit})
             : Tr("The weights of %1 are labelled %3; this system works in %2. Label them %2 from "
                  "now on? No figure is converted.",
                  {name, system_unit, database.unit});
}

}  // namespace

// Close and Save.

// Completes even after a failure, so that the side is not left half open.
void DatabaseCommands::Close(Side& side) {
  const FailureReport report{.title = TextsOf(side.kind).close_failure};
  side.current = {};
  RunReported(services_.op, report, [&] { BindBlank(side); });
  ClearPanels(side, {kPanelName, kPanelUnit, kPanelCreated, kPanelModified});
  window_.ShowUnit(side.kind, side.bound.unit);
  DisableCommands(side);
  RunReported(services_.op, report, [&] { tabs_.SelectTab(kTabDataTransfer); });
}

void DatabaseCommands::BindBlank(Side& side) {
  const KindTexts& words = TextsOf(side.kind);
  const bool bound = RunReported(services_.op, {.title = words.close_failure}, [&] {
    const fs::path directory = services_.system.ProgramDirectory();
    Bind(side, BindBlankTemplate(directory / words.template_name, services_.identity.Wait()));
  });
  if (!bound) {
    Bind(side, BindBlankInMemory(side.kind));
  }
}

// Reopens the bound database, whatever path and name are. Checks the file before closing it, so
// that one which cannot be reopened stays open.
void DatabaseCommands::Save(Side& side) {
  if (!IsOpen(side.kind)) {
    return;
  }
  const CurrentDatabase kept = side.current;
  const FileToOpen file{
      .path = side.bound.path, .name = FileTitle(side.bound.path), .unit_asked = side.unit_asked};
  if (!IsUserDatabase(side, file)) {
    return;
  }
  Close(side);
  side.current.path = kept.path;
  side.current.name = kept.name;
  Open(side, file);
}

// Save As.

bool DatabaseCommands::AskSaveAs(Side& side) {
  const KindTexts& words = TextsOf(side.kind);
  bool chosen = false;
  RunReported(services_.op, {.title = words.save_as_failure}, [&] {
    const FileChoice choice =
        services_.files.ShowSave({.title = std::string(words.save_as_dialog_title),
                                  .filter = std::string(words.filter).append(kAllFiles),
                                  .default_extension = std::string(words.extension),
                                  .flags = kShortNames | kHideReadOnly | kOverwritePrompt});
    const KindRules& rules = RulesOf(side.kind);
    if (choice.Cancelled() || !delay_.Wait(rules.save_as_delay) ||
        (rules.save_as_tests_name && !AcceptDatabaseName(choice.title, services_.op))) {
      return;
    }
    save_as_path_ = choice.path;
    save_as_name_ = UnicodeUpperCase(choice.title);
    chosen = true;
  });
  return chosen;
}

void DatabaseCommands::SaveAs(Side& side) {
  if (!IsOpen(side.kind) || !AskSaveAs(side)) {
    return;
  }
  RunReported(services_.op, {.title = TextsOf(side.kind).save_as_failure}, [&] {
    const fs::path source = side.bound.path;
    const fs::path target = save_as_path_;
    const std::string name = save_as_name_;
    Close(side);
    RequireUnbound(target);
    CopyDatabaseFile(source, target, services_.identity.Wait());
    Open(side, {.path = target, .name = name});
  });
}

// The views of the other database must not be bound to a file that no longer exists.
void DatabaseCommands::RequireUnbound(const fs::path& target) const {
  for (const Side* side : {&recipe_, &transaction_}) {
    std::error_code not_there;
    if (!side->bound.path.empty() && fs::equivalent(target, side->bound.path, not_there)) {
      throw FileError(Tr("%1 is in use by this program", {target.string()}));
    }
  }
}

// Units.

void DatabaseCommands::WarnIfUnitsDiffer(std::string_view unit) {
  if (unit != services_.settings.SystemUnits()) {
    services_.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = "Weight Units Error",
         .text = "The weight units-of-measure of the database file you have selected is not the "
                 "same as the current system setting. If you continue, this will likely result in "
                 "invalid weight totals being calculated."});
  }
}

void DatabaseCommands::AskAboutUnits() {
  AskAboutUnit(recipe_);
  AskAboutUnit(transaction_);
}

bool DatabaseCommands::MayRelabel(const Side& side) const {
  return IsOpen(side.kind) && !side.rebinding.Running() && side.bound.read_only_note.empty() &&
         side.bound.unit != services_.settings.SystemUnits();
}

// An event may open another database while the question is shown.
void DatabaseCommands::AskAboutUnit(Side& side) {
  if (side.unit_asked || !MayRelabel(side)) {
    return;
  }
  side.unit_asked = true;
  const std::string unit = services_.settings.SystemUnits();
  const int binding = side.binding;
  const Answer answer = services_.op.ShowMessage({.icon = Icon::kQuestion,
                                                  .buttons = Buttons::kYesNo,
                                                  .title = "Weight Units",
                                                  .text = UnitQuestion(side.bound, unit),
                                                  .refuses_by_default = true});
  if (answer != Answer::kYes || binding != side.binding) {
    return;
  }
  window_.EndReads(side.kind);
  if (!services_.identity.SetDatabaseUoM(*side.bound.connection, unit)) {
    return;
  }
  side.bound.unit = unit;
  side.current.unit = unit;
  ShowPanel(side, kPanelUnit, unit);
  window_.ShowUnit(side.kind, unit);
}

// Start and end of the program.

void DatabaseCommands::Recall(DatabaseKind kind, const fs::path& path, const std::string& name) {
  Side& side = SideOf(kind);
  side.current.path = path;
  side.current.name = name;
}

void DatabaseCommands::Release() {
  window_.ReleaseViews();
  for (Side* side : {&recipe_, &transaction_}) {
    side->bound = {};
    side->previous = {};
  }
}

}  // namespace vrx
