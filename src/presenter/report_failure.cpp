#include "presenter/report_failure.h"

#include <exception>
#include <string>

#include "database/connection.h"
#include "feed/record_fields.h"

namespace vrx {

namespace {

constexpr std::string_view kEditErrorTitle = "Edit (Error)";

void Tell(Operator& op, std::string_view title, std::string_view text) {
  op.Beep();
  op.ShowMessage({.icon = Icon::kCritical, .title = std::string(title), .text = std::string(text)});
}

std::string NotStored(std::string_view what, std::string_view cause) {
  return "The " + std::string(what) + " could not be stored: " + std::string(cause) + "\r\n";
}

}  // namespace

bool HandleEditEvent(Operator& op, const std::function<void()>& event) {
  try {
    event();
    return true;
  } catch (const DatabaseError&) {
    op.Beep();
  } catch (const FieldRefusal& refusal) {
    Tell(op, kFieldErrorTitle, refusal.what());
  } catch (const Error& failure) {
    Tell(op, kEditErrorTitle, failure.what());
  }
  return false;
}

void ReportEditFailure(Operator& op, const std::exception& failure) {
  const bool refused = dynamic_cast<const FieldRefusal*>(&failure) != nullptr;
  Tell(op, refused ? kFieldErrorTitle : kEditErrorTitle, failure.what());
}

void ReportFieldRefusal(Operator& op, std::string_view refusal) {
  op.ShowMessage({.icon = Icon::kCritical,
                  .title = std::string(kFieldErrorTitle),
                  .text = std::string(refusal)});
}

EditEnd AskAboutEdit(Operator& op, std::string_view what, std::string cause,
                     const std::function<void()>& store) {
  while (true) {
    op.Beep();
    const Answer answer =
        op.ShowMessage({.icon = Icon::kQuestion,
                        .buttons = Buttons::kTryDiscardStay,
                        .title = std::string(kEditErrorTitle),
                        .text = NotStored(what, cause) +
                                "Try again, discard what was entered, or stay and keep it?"});
    if (answer != Answer::kTryAgain) {
      return answer == Answer::kDiscard ? EditEnd::kDiscarded : EditEnd::kStays;
    }
    try {
      store();
      return EditEnd::kStored;
    } catch (const Error& failure) {
      cause = failure.what();
    }
  }
}

void ReportEditGivenUp(Operator& op, std::string_view what, std::string_view cause) {
  Tell(op, kEditErrorTitle, NotStored(what, cause) + "It is given up.");
}

bool RunFeedAction(const SQLite::Database& database, Services& services, std::string_view title,
                   const std::function<bool()>& action) {
  try {
    return WithDatabaseErrors(database, action);
  } catch (const std::exception& failure) {
    services.identity.ShowDatabaseError(FailureNumber(failure), title, failure.what());
    return false;
  }
}

void ReportFailure(Operator& op, std::string_view title, const std::exception& failure) {
  op.ShowMessage({.icon = Icon::kCritical,
                  .title = std::string(title),
                  .text = "Error: " + std::to_string(FailureNumber(failure)),
                  .cause = failure.what()});
}

}  // namespace vrx
