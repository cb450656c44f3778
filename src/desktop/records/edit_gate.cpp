#include "desktop/records/edit_gate.h"

#include <QApplication>
#include <algorithm>
#include <chrono>
#include <utility>

#include "base/error.h"
#include "base/translation.h"
#include "database/connection.h"
#include "presenter/report_failure.h"

namespace vrx {
namespace {

constexpr std::chrono::milliseconds kIdlePoll{20};

// A message box would interrupt the operator's use of the mouse, a list or another message box.
bool OperatorIsBusy() {
  return QGuiApplication::mouseButtons() != Qt::NoButton ||
         QApplication::activePopupWidget() != nullptr ||
         QApplication::activeModalWidget() != nullptr;
}

}  // namespace

std::string FieldName(std::string_view field) { return Tr("'%1' field", {std::string(field)}); }

void TakeFocus(QWidget& field) {
  if (field.isVisible() && field.isEnabled()) {
    field.setFocus();
  }
}

EditGate::EditGate(Operator& op, QObject* parent) : QObject(parent), op_(op) {
  ask_.setSingleShot(true);
  connect(&ask_, &QTimer::timeout, this, &EditGate::AskWhenIdle);
}

bool EditGate::Leave(FieldEdit edit) {
  try {
    std::string refusal = edit.store();
    Forget(edit.field);
    if (refusal.empty()) {
      return true;
    }
    kept_.push_back({.edit = std::move(edit), .cause = std::move(refusal), .stored = true});
    ask_.start(0);
  } catch (const Error& failure) {
    if (!edit.entered && IsDatabaseError(failure)) {
      op_.Beep();
      return true;
    }
    Keep(std::move(edit), failure.what());
  }
  return false;
}

void EditGate::Keep(FieldEdit edit, std::string cause) {
  Forget(edit.field);
  kept_.push_back({.edit = std::move(edit), .cause = std::move(cause)});
  ask_.start(0);
}

bool EditGate::Holds(const QObject* field) const {
  return std::any_of(kept_.begin(), kept_.end(),
                     [field](const Kept& kept) { return kept.edit.field == field; });
}

bool EditGate::IsStored(const QObject* field) const {
  return std::any_of(kept_.begin(), kept_.end(),
                     [field](const Kept& kept) { return kept.edit.field == field && kept.stored; });
}

void EditGate::Forget(const QObject* field) {
  std::erase_if(kept_, [field](const Kept& kept) { return kept.edit.field == field; });
}

void EditGate::AskWhenIdle() {
  if (OperatorIsBusy()) {
    ask_.start(kIdlePoll);
  } else {
    Settle(MayStay::kYes);
  }
}

bool EditGate::Settle(MayStay may_stay) {
  ask_.stop();
  while (!kept_.empty()) {
    // A copy, because events run while a message box is shown.
    const Kept kept = std::move(kept_.front());
    kept_.erase(kept_.begin());
    if (may_stay == MayStay::kNo) {
      GiveUp(kept);
    } else if (!Ask(kept)) {
      return false;
    }
  }
  return true;
}

bool EditGate::Ask(const Kept& kept) {
  if (kept.stored) {
    return HoldBack(kept.edit, kept.cause);
  }
  std::string refusal;
  switch (AskAboutEdit(op_, kept.edit.what, kept.cause, [&] { refusal = kept.edit.store(); })) {
    case EditEnd::kDiscarded:
      kept.edit.discard();
      return true;
    case EditEnd::kStays:
      kept.edit.stay();
      return false;
    case EditEnd::kStored:
      break;
  }
  return refusal.empty() || HoldBack(kept.edit, refusal);
}

bool EditGate::HoldBack(const FieldEdit& edit, const std::string& refusal) {
  ReportFieldRefusal(op_, refusal);
  edit.stay();
  return false;
}

void EditGate::GiveUp(const Kept& kept) {
  if (kept.stored) {
    return;
  }
  try {
    kept.edit.store();
  } catch (const Error& failure) {
    kept.edit.discard();
    ReportEditGivenUp(op_, kept.edit.what, failure.what());
  }
}

std::vector<LostEdit> EditGate::Drop() {
  ask_.stop();
  std::vector<LostEdit> lost;
  for (Kept& kept : kept_) {
    if (!kept.stored) {
      lost.push_back({.what = std::move(kept.edit.what),
                      .text = std::move(kept.edit.text),
                      .cause = std::move(kept.cause)});
    }
  }
  kept_.clear();
  return lost;
}

}  // namespace vrx
