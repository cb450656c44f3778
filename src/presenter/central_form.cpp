#include "presenter/central_form.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/files.h"
#include "base/number.h"
#include "base/translation.h"
#include "central/server.h"
#include "database/identity.h"
#include "presenter/database_identity.h"

namespace vrx {
namespace {

constexpr Milliseconds kLookAtTask{50};

// `source` is that of the open file; empty if it was never pushed.
void LookInThread(const CentralSettings& settings, const std::string& source, CentralAnswer& answer,
                  BackgroundWork::Control& control) {
  const CentralProgress progress = ProgressOf(control);
  CentralConnection server(settings.connection, [&] { progress.Check(); });
  answer.target = server.Target();
  answer.login = server.Login();
  answer.protection = server.Protection();
  answer.yards = ReadYardNames(server);
  const std::string yard =
      settings.yard.empty() && answer.yards.size() == 1 ? answer.yards.front() : settings.yard;
  if (!yard.empty()) {
    answer.sources = ReadYardSources(server, yard);
    answer.releases = ListReleases(server, yard);
    if (!source.empty()) {
      answer.last = ReadLastPush(server, yard, source);
    }
  }
}

std::string TlsModeOf(const std::string& connection) {
  try {
    const ConnectionOptions options = ReadConnectionString(connection);
    return options.local ? std::string() : " " + Tr("TLS mode: %1.", {options.sslmode});
  } catch (const ConnectionStringError&) {
    return {};  // the failure says so
  }
}

// Empty if the open file was never pushed.
std::string SourceOf(const CentralPushState& push) {
  if (push.last) {
    return push.last->source;
  }
  return push.here ? push.here->source : std::string();
}

// The first digits of a digest.
std::string HexStart(std::string_view bytes) {
  constexpr std::size_t kBytes = 6;
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes.substr(0, kBytes)) {
    const auto code = static_cast<unsigned char>(byte);
    text += kDigits[code >> 4U];
    text += kDigits[code & 0x0FU];
  }
  return text;
}

}  // namespace

CentralForm::CentralForm(Services& services, CentralPush& push, std::string machine,
                         std::filesystem::path recipes, CentralFormView& view)
    : services_(services),
      push_(push),
      machine_(std::move(machine)),
      recipes_(std::move(recipes)),
      view_(view) {}

bool CentralForm::SetConnection(const std::string& connection) {
  CentralSettings settings = Settings();
  if (settings.connection == connection) {
    return true;
  }
  state_.connection = {};
  try {
    if (!connection.empty()) {
      static_cast<void>(ReadConnectionString(connection));
    }
    settings.connection = connection;
    state_.answer = {};
    state_.compared.reset();
    state_.differences.reset();
    push_.ChangeSettings(settings);
  } catch (const ConnectionStringError& refusal) {
    state_.connection = {.text = AsSentence(refusal.what()), .failed = true};
  }
  view_.CentralFormChanged();
  return !state_.connection.failed;
}

void CentralForm::SetYard(const std::string& yard) {
  CentralSettings settings = Settings();
  settings.yard = yard;
  push_.ChangeSettings(settings);
  view_.CentralFormChanged();
}

void CentralForm::TurnAutomatic(bool on) {
  CentralSettings settings = Settings();
  settings.automatic = on;
  push_.ChangeSettings(settings);
  view_.CentralFormChanged();
}

void CentralForm::Look() {
  if (state_.task != CentralTask::kNone || Settings().connection.empty()) {
    return;
  }
  const auto answer = std::make_shared<CentralAnswer>();
  Begin(
      CentralTask::kLook, state_.connection,
      [settings = Settings(), source = SourceOf(push_.State()), answer](
          BackgroundWork::Control& control) { LookInThread(settings, source, *answer, control); },
      [this, answer] {
        TakeAnswer(*answer);
        return ConnectedText();
      });
}

void CentralForm::TakeAnswer(const CentralAnswer& answer) {
  state_.answer = answer;
  if (!state_.differences) {
    state_.compared.reset();  // it may succeed now
  }
  if (Settings().yard.empty() && answer.yards.size() == 1) {
    CentralSettings settings = Settings();
    settings.yard = answer.yards.front();
    push_.ChangeSettings(settings);
  }
}

std::string CentralForm::ConnectedText() const {
  const CentralAnswer& answer = state_.answer;
  std::string text = Tr("Connected to %1 as %2. Protection: %3.",
                        {answer.target, answer.login, answer.protection});
  if (Settings().yard.empty()) {
    text += " " + Tr("Enter the name of the yard.");
  }
  return text;
}

void CentralForm::Restore(std::size_t source) {
  if (state_.task != CentralTask::kNone || source >= state_.answer.sources.size()) {
    return;
  }
  const KindTexts& words = TextsOf(DatabaseKind::kTransaction);
  const FileChoice choice =
      services_.files.ShowSave({.title = Tr("Restore a Copy"),
                                .filter = std::string(words.filter),
                                .default_extension = std::string(words.extension),
                                .start_folder = services_.folder.DefaultAppPath().string()});
  if (choice.Cancelled() || services_.pump.Closing()) {
    return;
  }
  const auto outcome = std::make_shared<RestoreOutcome>();
  Begin(
      CentralTask::kRestore, state_.restored,
      [connection = Settings().connection,
       order = RestoreOrder{.yard = Settings().yard,
                            .source = state_.answer.sources[source].source.source,
                            .out = choice.path,
                            .machine = machine_},
       now = services_.calendar.Now(), outcome](BackgroundWork::Control& control) {
        const CentralProgress progress = ProgressOf(control);
        CentralConnection server(connection, [&] { progress.Check(); });
        EnterOrStop(control);
        *outcome = vrx::Restore(server, order, StoppedCalendar(now), progress);
      },
      [outcome, name = choice.title] {
        return Tr(
            "%1 has %2 rows now. Count, sums and digest are those of the central database. "
            "Open it with File, Open.",
            {name, std::to_string(outcome->proof.rows)});
      });
}

void CentralForm::PushCopy() {
  const Answer answer = services_.op.ShowMessage(
      {.icon = Icon::kQuestion,
       .buttons = Buttons::kYesNo,
       .title = Tr("Central Database"),
       .text = Tr("%1 is a copy of a file that is in the central database. Do you want to push it "
                  "from now on instead of that file? Rows that both have count once; the other "
                  "file can still be pushed, and its new rows count, too.",
                  {push_.State().file}),
       .refuses_by_default = true});
  if (answer == Answer::kYes && push_.State().is_copy) {
    push_.PushAsNewSource();
  }
}

std::string CentralForm::WaitingText() const {
  const CentralPushState& push = push_.State();
  if (!push.here) {
    return {};
  }
  std::string text =
      Tr("%1 of %2 rows", {std::to_string(push.here->waiting), std::to_string(push.here->rows)});
  if (push.here->changes > 0) {
    text += "; " + Tr("changed or deleted after they were pushed: %1",
                      {std::to_string(push.here->changes)});
  }
  return text;
}

std::string CentralForm::ProofText() const {
  const auto& here = push_.State().here;
  const auto& last = state_.answer.last;
  if (!here || here->pushed_at.empty() || !last || last->last_row != here->pushed_to) {
    return {};
  }
  const RowProof& proof = last->proof;
  return Tr(
      "Rows %1 to %2: the file and the central database have the same %3 rows, the same sums "
      "(called %4, loaded %5, fed %6) and the same digest (%7...).",
      {std::to_string(last->first_row), std::to_string(last->last_row), std::to_string(proof.rows),
       DefaultText(proof.target.ToDouble()), DefaultText(proof.actual_batch.ToDouble()),
       DefaultText(proof.actual_feed.ToDouble()), HexStart(proof.digest)});
}

std::string CentralForm::ResultText() const {
  const auto& last = push_.State().last;
  if (!last) {
    return {};
  }
  if (last->rows == 0) {
    return Tr("There was nothing to push.");
  }
  return last->rows == 1 ? Tr("1 row was pushed.")
                         : Tr("%1 rows were pushed.", {std::to_string(last->rows)});
}

std::string CentralForm::SourceName(std::size_t source) const {
  const std::vector<YardSource>& sources = state_.answer.sources;
  const ServerSource& one = sources.at(source).source;
  const auto parent = std::find_if(sources.begin(), sources.end(), [&](const YardSource& other) {
    return other.source.source == one.parent;
  });
  return parent == sources.end() || one.parent.empty()
             ? one.file
             : Tr("%1, a copy of %2", {one.file, parent->source.file});
}

CentralNote CentralForm::RestoreNote() const {
  if (!state_.restored.text.empty() || !state_.answer.sources.empty()) {
    return state_.restored;
  }
  return {.text = state_.answer.target.empty()
                      ? Tr("Test the connection to see what is there.")
                      : Tr("The central database has no rows of this yard yet.")};
}

CentralNote CentralForm::ReleaseNote() const {
  if (!state_.release.text.empty() || !state_.answer.releases.empty()) {
    return state_.release;
  }
  return {.text = state_.answer.target.empty()
                      ? Tr("Test the connection to see what is there.")
                      : Tr("No recipes were published for this yard yet.")};
}

std::string CentralForm::DoingText() const {
  switch (state_.task) {
    case CentralTask::kNone:
      return {};
    case CentralTask::kLook:
      return Tr("Connecting");
    case CentralTask::kRestore:
    case CentralTask::kCompare:
    case CentralTask::kFetch:
      break;
  }
  return state_.progress.doing.empty() ? Tr("Connecting") : state_.progress.doing;
}

void CentralForm::Begin(CentralTask task, CentralNote& note, Job job,
                        std::function<std::string()> finish) {
  state_.task = task;
  state_.progress = {};
  note = {};
  note_ = &note;
  finish_ = std::move(finish);
  work_ = std::make_unique<BackgroundWork>(std::move(job));
  ticker_ = services_.pump.StartTicker(kLookAtTask, [this] { Tick(); });
  view_.CentralFormChanged();
}

void CentralForm::Cancel() {
  work_.reset();
  ticker_.reset();
  state_.task = CentralTask::kNone;
  view_.CentralFormChanged();
}

void CentralForm::Tick() {
  if (!work_->Ended()) {
    state_.progress = work_->Shown();
    view_.CentralFormChanged();
    return;
  }
  const std::unique_ptr<BackgroundWork> done = std::move(work_);
  ticker_.reset();
  const CentralTask task = std::exchange(state_.task, CentralTask::kNone);
  const std::function<std::string()> finish = std::move(finish_);
  try {
    done->Rethrow();
    *note_ = {.text = finish()};
  } catch (const std::exception& failure) {
    *note_ = {.text = AsSentence(failure.what()), .failed = true};
    if (task == CentralTask::kLook) {
      note_->text = Tr("Not connected: %1", {note_->text}) + TlsModeOf(Settings().connection);
    }
  }
  view_.CentralFormChanged();
  if (task == CentralTask::kFetch && !state_.release.failed) {
    Look();  // the server has noted the fetch
  }
}

}  // namespace vrx
