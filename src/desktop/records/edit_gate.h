#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "platform/operator.h"

namespace vrx {

// What stands in a field that is being left, and what becomes of it. Texts UTF-8.
struct FieldEdit {
  const QObject* field = nullptr;  // tells the edits of one gate apart; never dereferenced
  std::string what;                // within a sentence: "'Name' field"
  std::string text;                // as it was entered

  // Throws Error. Returns why the field may not be left although it is stored, else nothing.
  std::function<std::string()> store;
  std::function<void()> discard;  // the field shows what is stored
  std::function<void()> stay;     // the field takes the focus again

  // The operator has entered something. A storage that fails a field nobody changed only beeps.
  bool entered = true;
};

// An edit that is lost when the program ends without its operator.
struct LostEdit {
  std::string what;
  std::string text;
  std::string cause;
};

enum class MayStay { kYes, kNo };

// The way out of the fields of a page. Whatever shows another record, another tab or another
// database, and whatever ends the program, passes Settle or Drop before it does so.
//
// A field stores its edit when it is left. An edit that could not be stored is kept here, and the
// operator is asked what becomes of it: by Settle before anything else acts, or else once the click
// or key that left the field is over. No box comes up from within a focus event, where it would
// take the release of the mouse button away from what was clicked.
class EditGate : public QObject {
 public:
  // The operator outlives it.
  explicit EditGate(Operator& op, QObject* parent = nullptr);

  // A field is left. False: its edit was not stored, or holds the field.
  bool Leave(FieldEdit edit);

  // For who has tried to store the edit already.
  void Keep(FieldEdit edit, std::string cause);

  bool Holds(const QObject* field) const;
  // It is stored, and holds the field nevertheless.
  bool IsStored(const QObject* field) const;

  // The edits are void: they were stored after all, or their record is shown anew.
  void Forget() { kept_.clear(); }
  void Forget(const QObject* field);

  // Asks about what is kept. False: the operator stays in the field, and nothing else may happen.
  // Without the choice to stay, an edit is tried again and given up with a message.
  bool Settle(MayStay may_stay);

  // Forgets what is kept without a question, and returns what of it is lost by that.
  std::vector<LostEdit> Drop();

 private:
  struct Kept {
    FieldEdit edit;
    std::string cause;
    bool stored = false;  // it holds the field nevertheless
  };

  void AskWhenIdle();
  bool Ask(const Kept& kept);
  bool HoldBack(const FieldEdit& edit, const std::string& refusal);
  void GiveUp(const Kept& kept);

  Operator& op_;
  std::vector<Kept> kept_;
  QTimer ask_;
};

}  // namespace vrx
