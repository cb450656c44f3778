#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "desktop/records/commit_fixture.h"
#include "support/boxes.h"

namespace vrx::testing {

// The record tabs, on a file that another program may lock.
class UnstoredFixture : public CommitFixture {
 public:
  // Another program locks the file.
  void Lock() {
    Database().setBusyTimeout(1);
    other_ = std::make_unique<SQLite::Database>(OpenDatabase(path_, Access::kWrite));
    lock_.emplace(*other_, SQLite::TransactionBehavior::IMMEDIATE);
  }
  void Unlock() { lock_.reset(); }

  // Unlocks the file before the question is answered.
  void UnlockWhenAsked() {
    operator_.on_message = [this](const MessageBox&) { Unlock(); };
  }
  void Answer(vrx::Answer answer) { operator_.answers.push_back(answer); }

  int CurrentRecord() { return Text(u"lblRecordNumber"_qs).toInt(); }
  bool DatabaseIsOpen() { return !Main().Databases().Bound(DatabaseKind::kRecipe).blank; }
  std::vector<ExitReason>& Exits() { return exits_; }
  std::vector<MessageBox>& Boxes() { return operator_.boxes; }

 protected:
  void ExpectOneQuestion() {
    EXPECT_THAT(OnlyBox(Boxes()),
                IsBox(Icon::kQuestion, "Edit (Error)",
                      ::testing::HasSubstr("could not be stored: YARD.RDB is locked by another"),
                      Buttons::kTryDiscardStay));
  }

 private:
  std::unique_ptr<SQLite::Database> other_;
  std::optional<SQLite::Transaction> lock_;
};

}  // namespace vrx::testing
