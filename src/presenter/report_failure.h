#pragma once

#include <concepts>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "base/error.h"
#include "platform/operator.h"

namespace vrx {

// The text of the message about a failure.
enum class FailureText {
  kErrorNumber,    // "Error: " and the number
  kDatabaseWords,  // the sentence for the number, with a critical icon
  kMessage,        // what(), followed by the words of the report
  kWords,          // the words of the report
  kNone,           // no message
};

// How a failure is shown to the operator. what() is the cause of the message unless it is its text.
struct FailureReport {
  std::string_view title = {};
  FailureText text = FailureText::kErrorNumber;
  std::string_view words = {};
  Icon icon = Icon::kCritical;
  bool beeps = false;  // before the message
};

// For a failure that the caller has handled.
inline constexpr FailureReport kNoReport{.text = FailureText::kNone};

void ReportFailure(Operator& op, const FailureReport& report, const std::exception& failure);

// Shows a critical message with the text of that error number and `cause`.
void ShowDatabaseError(Operator& op, int number, std::string_view title,
                       std::string_view cause = {});

// Runs an action, which returns nothing, or whether it was done. If it throws a `Failure`, reports
// it and returns false. `report` is a FailureReport, or a function that returns it for the failure.
template <typename Failure = std::exception, typename Report = FailureReport, std::invocable Action>
bool RunReported(Operator& op, const Report& report, Action&& action) {
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Action>>) {
      std::forward<Action>(action)();
      return true;
    } else {
      return std::forward<Action>(action)();
    }
  } catch (const Failure& failure) {
    if constexpr (std::is_invocable_v<const Report&, const Failure&>) {
      ReportFailure(op, report(failure), failure);
    } else {
      ReportFailure(op, report, failure);
    }
    return false;
  }
}

// Of a command on a recipe or a cell of its grid: a message box with a beep, whatever the beeper
// setting is.
FailureReport EditFailure(const Error& failure);

// Of any other event of a form: the same, but a database failure only beeps.
FailureReport EventFailure(const Error& failure);

bool IsDatabaseError(const std::exception& failure);

// Shows why a field was refused, without a beep.
void ReportFieldRefusal(Operator& op, std::string_view refusal);

enum class EditEnd { kStored, kDiscarded, kStays };

// Asks what to do with an edit that could not be stored, and asks again if a retry fails. `store`
// throws Error. `what` names the edit within a sentence: "'Name' field".
EditEnd AskAboutEdit(Operator& op, std::string_view what, std::string cause,
                     const std::function<void()>& store);

// Reports that an edit which could not be stored is given up.
void ReportEditGivenUp(Operator& op, std::string_view what, std::string_view cause);

}  // namespace vrx
