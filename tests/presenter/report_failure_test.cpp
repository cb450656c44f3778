#include "presenter/report_failure.h"

#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "database/connection.h"
#include "feed/record_fields.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class Reported : public ::testing::Test {
 protected:
  MessageBox BoxOf(const FailureReport& report, const std::exception& failure) {
    op.boxes.clear();
    ReportFailure(op, report, failure);
    EXPECT_THAT(op.boxes, SizeIs(1));
    return op.boxes.at(0);
  }

  RecordingOperator op;
};

TEST_F(Reported, TheNumberOfAFailureHasItsMessageAsCause) {
  const MessageBox box = BoxOf({.title = "New Error"}, DatabaseError(10, "the disk is gone"));
  EXPECT_EQ(box.icon, Icon::kCritical);
  EXPECT_EQ(box.buttons, Buttons::kOk);
  EXPECT_EQ(box.title, "New Error");
  EXPECT_EQ(box.text, "Error: 10");
  EXPECT_EQ(box.cause, "the disk is gone");
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(Reported, DatabaseWordsAreTheSentenceOfTheNumber) {
  const MessageBox box = BoxOf({.title = "t", .text = FailureText::kDatabaseWords},
                               DatabaseError(kTableLockedError, "YARD.RDB is locked"));
  EXPECT_EQ(box.text, "A table in the specified database is locked.");
  EXPECT_EQ(box.cause, "YARD.RDB is locked");
}

TEST_F(Reported, AMessageIsFollowedByTheWordsAndHasNoCause) {
  const MessageBox box = BoxOf({.title = "t", .text = FailureText::kMessage, .words = " Stopped."},
                               Error("Recipe 3 cannot be computed."));
  EXPECT_EQ(box.text, "Recipe 3 cannot be computed. Stopped.");
  EXPECT_EQ(box.cause, "");
}

TEST_F(Reported, FixedWordsHaveTheMessageAsCause) {
  const MessageBox box = BoxOf(
      {.title = "t", .text = FailureText::kWords, .words = "Not printed.", .icon = Icon::kWarning},
      std::runtime_error("no paper"));
  EXPECT_EQ(box.icon, Icon::kWarning);
  EXPECT_EQ(box.text, "Not printed.");
  EXPECT_EQ(box.cause, "no paper");
}

TEST_F(Reported, ABeepComesBeforeTheMessage) {
  int beeps = -1;
  op.on_message = [&](const MessageBox& /*box*/) { beeps = op.beeps; };
  BoxOf({.title = "t", .beeps = true}, Error("e"));
  EXPECT_EQ(beeps, 1);
}

TEST_F(Reported, NoReportShowsNothing) {
  ReportFailure(op, kNoReport, Error("e"));
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(Reported, AnActionIsDoneUnlessItThrowsOrSaysNo) {
  EXPECT_TRUE(RunReported(op, {.title = "t"}, [] {}));
  EXPECT_TRUE(RunReported(op, {.title = "t"}, [] { return true; }));
  EXPECT_FALSE(RunReported(op, {.title = "t"}, [] { return false; }));
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(RunReported(op, {.title = "t"}, [] { throw std::out_of_range("no row 3"); }));
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(op.boxes[0].cause, "no row 3");
}

TEST_F(Reported, OnlyTheNamedTypeIsCaught) {
  const auto fail = [] { throw Error("not of a file"); };
  EXPECT_THROW(RunReported<FileError>(op, {.title = "t"}, fail), Error);
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(RunReported<Error>(op, {.title = "t"}, fail));
}

TEST_F(Reported, AFunctionChoosesTheReportOfTheFailure) {
  const auto report = [](const Error& failure) -> FailureReport {
    return {.title = failure.what(), .text = FailureText::kMessage};
  };
  EXPECT_FALSE(RunReported<Error>(op, report, [] { throw Error("chosen"); }));
  EXPECT_EQ(op.boxes.at(0).title, "chosen");
}

TEST_F(Reported, AnEventOnlyBeepsForADatabaseFailure) {
  EXPECT_FALSE(RunReported<Error>(op, EventFailure, [] { throw DatabaseError(10, "disk"); }));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(RunReported<Error>(op, EventFailure, [] { throw FieldRefusal("too long"); }));
  EXPECT_EQ(op.beeps, 2);
  EXPECT_EQ(op.boxes.at(0).title, "Field Error");
}

TEST_F(Reported, AnEditShowsADatabaseFailureToo) {
  EXPECT_FALSE(RunReported<Error>(op, EditFailure, [] { throw DatabaseError(10, "disk"); }));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_EQ(op.boxes.at(0).title, "Edit (Error)");
  EXPECT_EQ(op.boxes.at(0).text, "disk");
}

class FailedEdit : public ::testing::Test {
 protected:
  // Each call fails with the next cause, and succeeds after the last one.
  void Store() {
    ++stores_;
    if (!causes_.empty()) {
      const std::string cause = causes_.front();
      causes_.erase(causes_.begin());
      throw Error(cause);
    }
  }
  EditEnd AskAfter(const std::string& cause) {
    return AskAboutEdit(op_, "'Name' field", cause, [this] { Store(); });
  }

  RecordingOperator op_;
  std::vector<std::string> causes_;
  int stores_ = 0;
};

TEST_F(FailedEdit, IsTriedUntilItIsStoredAndEachQuestionHasItsOwnCause) {
  causes_ = {"the disk is full"};
  op_.answers = {Answer::kTryAgain, Answer::kTryAgain};
  EXPECT_EQ(AskAfter("YARD.RDB is locked"), EditEnd::kStored);
  EXPECT_EQ(stores_, 2);
  EXPECT_EQ(op_.beeps, 2);
  ASSERT_THAT(op_.boxes, SizeIs(2));
  EXPECT_EQ(
      op_.boxes[0].text,
      "The 'Name' field could not be stored: YARD.RDB is locked\r\nTry again, discard what was "
      "entered, or stay and keep it?");
  EXPECT_EQ(op_.boxes[1].text,
            "The 'Name' field could not be stored: the disk is full\r\nTry again, discard what was "
            "entered, or stay and keep it?");
}

TEST_F(FailedEdit, IsDiscardedOrKeptAsTheOperatorSays) {
  op_.answers = {Answer::kDiscard, Answer::kStay};
  EXPECT_EQ(AskAfter("locked"), EditEnd::kDiscarded);
  EXPECT_EQ(AskAfter("locked"), EditEnd::kStays);
  EXPECT_EQ(stores_, 0);
}

}  // namespace
}  // namespace vrx::testing
