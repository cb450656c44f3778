// The releases of the form: what they would change in the open recipe database, and fetching them.

#include <algorithm>
#include <array>
#include <utility>

#include "base/files.h"
#include "base/translation.h"
#include "central/releases.h"
#include "central/server.h"
#include "database/identity.h"
#include "presenter/central_form.h"

namespace vrx {
namespace {

// Columns of the recipe database as the tabs call them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 9> kFieldCaptions{{
    {"BatchType", "Batch By"},
    {"HeadCount", "Head Count"},
    {"RationTarget", "Ration Target"},
    {"AdjBatTotIndex", "Adjust Batch Total"},
    {"Ration%", "Ration (%) DM"},
    {"DryMatter%", "Dry Matter (%)"},
    {"DryMatter", "Dry Matter"},
    {"BatchTarget", "Batch Target"},
    {"HandAdd", "Hand-Add"},
}};

std::string CaptionOfField(const std::string& field) {
  const auto found = std::find_if(kFieldCaptions.begin(), kFieldCaptions.end(),
                                  [&](const auto& row) { return row.first == field; });
  return found == kFieldCaptions.end() ? field : std::string(found->second);
}

std::string RecordName(ReleaseRecord record, int id, const std::string& name) {
  const std::string number = std::to_string(id);
  switch (record) {
    case ReleaseRecord::kIngredient:
      return Tr("Ingredient %1: %2", {number, name});
    case ReleaseRecord::kPen:
      return Tr("Pen %1: %2", {number, name});
    case ReleaseRecord::kRecipe:
    case ReleaseRecord::kLine:
      break;
  }
  return Tr("Recipe %1: %2", {number, name});
}

DifferenceRow RowOf(const RecordDifference& difference) {
  DifferenceRow row{.record = RecordName(difference.record, difference.id, difference.name),
                    .field = CaptionOfField(difference.field),
                    .here = difference.here.value_or(Tr("(no line)")),
                    .release = difference.release.value_or(Tr("(no line)"))};
  if (difference.record == ReleaseRecord::kLine) {
    row.record +=
        ", " + Tr("line %1: %2", {std::to_string(difference.place), difference.ingredient});
  }
  row.new_file = difference.kept ? row.here : row.release;
  return row;
}

std::string NewNames(const std::vector<RenamedRecord>& renamed) {
  constexpr std::size_t kMostNames = 10;
  std::string text;
  for (std::size_t i = 0; i < std::min(renamed.size(), kMostNames); ++i) {
    text += "\r\n" +
            Tr("%1 becomes %2",
               {RecordName(renamed[i].record, renamed[i].id, renamed[i].here), renamed[i].release});
  }
  if (renamed.size() > kMostNames) {
    text += "\r\n" + Tr("and %1 more", {std::to_string(renamed.size() - kMostNames)});
  }
  return text;
}

}  // namespace

void CentralForm::Compare(std::size_t release) {
  if (state_.task != CentralTask::kNone || release >= state_.answer.releases.size()) {
    return;
  }
  const int number = state_.answer.releases[release].number;
  if (state_.compared == number) {
    return;
  }
  state_.compared = number;
  state_.differences.reset();
  if (recipes_.empty()) {
    state_.release = {.text = Tr("Open a recipe database to compare a release with it.")};
    view_.CentralFormChanged();
    return;
  }
  const auto differences = std::make_shared<ReleaseDifferences>();
  Begin(
      CentralTask::kCompare, state_.release,
      [connection = Settings().connection, question = Question(number),
       differences](BackgroundWork::Control& control) {
        const CentralProgress progress = ProgressOf(control);
        CentralConnection server(connection, [&] { progress.Check(); });
        EnterOrStop(control);
        *differences = DifferencesTo(server, question, progress);
      },
      [this, differences] {
        state_.differences = *differences;
        return DifferencesText();
      });
}

ReleaseQuestion CentralForm::Question(int release) const {
  return {.yard = Settings().yard, .file = recipes_, .release = release};
}

std::string CentralForm::DifferencesText() const {
  const std::size_t count = state_.differences->differences.size();
  const std::string file = FileTitle(recipes_);
  std::string text = count == 0 ? Tr("The release is the same as %1.", {file})
                                : Tr("Differences from %1: %2.", {file, std::to_string(count)});
  for (const std::string& recipe : state_.differences->not_computed) {
    text += " " + AsSentence(recipe);
  }
  return text;
}

std::vector<DifferenceRow> CentralForm::DifferenceRows() const {
  std::vector<DifferenceRow> rows;
  if (state_.differences) {
    for (const RecordDifference& difference : state_.differences->differences) {
      rows.push_back(RowOf(difference));
    }
  }
  return rows;
}

// Batches in a data module bear IDs, so their records would get the new names.
bool CentralForm::AcceptsNewNames() {
  const std::vector<RenamedRecord>& renamed = state_.differences->renamed;
  return renamed.empty() ||
         services_.op.ShowMessage(
             {.icon = Icon::kQuestion,
              .buttons = Buttons::kYesNo,
              .title = Tr("Fetch Recipes"),
              .text =
                  Tr("The release gives other names to IDs that are in use here. The records of "
                     "batches that are in a data module now would get the new names. Do you "
                     "want to fetch it?") +
                  "\r\n" + NewNames(renamed),
              .refuses_by_default = true}) == Answer::kYes;
}

void CentralForm::Fetch() {
  if (state_.task != CentralTask::kNone || !state_.differences || !AcceptsNewNames()) {
    return;
  }
  const KindTexts& words = TextsOf(DatabaseKind::kRecipe);
  const FileChoice choice =
      services_.files.ShowSave({.title = Tr("Fetch Recipes"),
                                .filter = std::string(words.filter),
                                .default_extension = std::string(words.extension),
                                .start_folder = services_.folder.DefaultAppPath().string()});
  if (choice.Cancelled() || services_.pump.Closing()) {
    return;
  }
  const int number = state_.differences->release.number;
  Begin(
      CentralTask::kFetch, state_.release,
      [connection = Settings().connection,
       order = FetchOrder{.what = Question(number),
                          .out = choice.path,
                          .accepted = state_.differences->renamed},
       now = services_.calendar.Now()](BackgroundWork::Control& control) {
        const CentralProgress progress = ProgressOf(control);
        CentralConnection server(connection, [&] { progress.Check(); });
        EnterOrStop(control);
        vrx::Fetch(server, order, StoppedCalendar(now), progress);
      },
      [number, name = choice.title] {
        return Tr(
            "%1 has the recipes of release %2, with this yard's own pens, head counts and dry "
            "matter. Open it with File, Open.",
            {name, std::to_string(number)});
      });
}

}  // namespace vrx
