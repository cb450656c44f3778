#include "presenter/report_failure.h"

#include <exception>
#include <string>

#include "base/translation.h"
#include "database/connection.h"
#include "feed/record_fields.h"

namespace vrx {

namespace {

constexpr std::string_view kEditErrorTitle = TrMark("Edit (Error)");

std::string TextOf(const FailureReport& report, const std::exception& failure) {
  switch (report.text) {
    case FailureText::kErrorNumber:
      return "Error: " + std::to_string(FailureNumber(failure));
    case FailureText::kMessage:
      return failure.what() + std::string(report.words);
    case FailureText::kDatabaseWords:
    case FailureText::kWords:
    case FailureText::kNone:
      break;
  }
  return std::string(report.words);
}

std::string NotStored(std::string_view what, std::string_view cause) {
  return Tr("The %1 could not be stored: %2", {std::string(what), std::string(cause)}) + "\r\n";
}

}  // namespace

void ReportFailure(Operator& op, const FailureReport& report, const std::exception& failure) {
  if (report.beeps) {
    op.Beep();
  }
  if (report.text == FailureText::kDatabaseWords) {
    ShowDatabaseError(op, FailureNumber(failure), report.title, failure.what());
  } else if (report.text != FailureText::kNone) {
    op.ShowMessage({.icon = report.icon,
                    .title = std::string(report.title),
                    .text = TextOf(report, failure),
                    .cause = report.text == FailureText::kMessage ? "" : failure.what()});
  }
}

void ShowDatabaseError(Operator& op, int number, std::string_view title, std::string_view cause) {
  op.ShowMessage({.icon = Icon::kCritical,
                  .title = std::string(title),
                  .text = DatabaseErrorText(number),
                  .cause = std::string(cause)});
}

FailureReport EditFailure(const Error& failure) {
  const bool refused = dynamic_cast<const FieldRefusal*>(&failure) != nullptr;
  return {.title = refused ? kFieldErrorTitle : kEditErrorTitle,
          .text = FailureText::kMessage,
          .beeps = true};
}

FailureReport EventFailure(const Error& failure) {
  return IsDatabaseError(failure) ? FailureReport{.text = FailureText::kNone, .beeps = true}
                                  : EditFailure(failure);
}

bool IsDatabaseError(const std::exception& failure) {
  return dynamic_cast<const DatabaseError*>(&failure) != nullptr;
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
                                Tr("Try again, discard what was entered, or stay and keep it?")});
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
  op.Beep();
  op.ShowMessage({.icon = Icon::kCritical,
                  .title = std::string(kEditErrorTitle),
                  .text = NotStored(what, cause) + Tr("It is given up.")});
}

}  // namespace vrx
