#pragma once

#include <QObject>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/operator.h"

namespace vrx {

// An edit of a field that is being left, and its possible outcomes. Texts are UTF-8.
struct FieldEdit {
  const QObject* field = nullptr;  // identifies the edit; never dereferenced
  std::string what;                // within a sentence: "'Name' field"
  std::string text;                // as it was entered

  // Stores the edit; throws Error. Returns the reason if the field must not be left despite that.
  std::function<std::string()> store;
  std::function<void()> discard;  // the field shows what is stored
  std::function<void()> stay;     // the field takes the focus again

  // The operator has changed the field. A failure to store an unchanged field only beeps.
  bool entered = true;
};

// A field as FieldEdit names it.
[[nodiscard]] std::string FieldName(std::string_view field);

// Sets the focus on a field that the operator can enter.
void TakeFocus(QWidget& field);

// An edit that is lost when the program ends without its operator.
struct LostEdit {
  std::string what;
  std::string text;
  std::string cause;
};

enum class MayStay { kYes, kNo };

// Keeps the edits of a page that could not be stored. Call Settle or Drop before showing another
// record, tab or database, and before ending the program.
//
// A field stores its edit when it is left. If that fails, the edit is kept here and the operator is
// asked what to do: by Settle before any other action, or otherwise after the click or key that
// left the field. No message box opens within a focus event, where it would take the release of the
// mouse button from the clicked control.
class EditGate : public QObject {
 public:
  // The operator outlives it.
  explicit EditGate(Operator& op, QObject* parent = nullptr);

  // A field is being left. Returns false if its edit was not stored or keeps the focus in the
  // field.
  bool Leave(FieldEdit edit);

  // For a caller that has already tried to store the edit.
  void Keep(FieldEdit edit, std::string cause);

  bool Holds(const QObject* field) const;
  // Whether the edit is stored but still keeps the focus in the field.
  bool IsStored(const QObject* field) const;

  // The edits are obsolete: they were stored after all, or their record was reloaded.
  void Forget() { kept_.clear(); }
  void Forget(const QObject* field);

  // Asks about the kept edits. Returns false if the operator stays in the field; the caller must
  // then do nothing else. Without the choice to stay, retries an edit and gives it up with a
  // message.
  bool Settle(MayStay may_stay);

  // Drops the kept edits without a question and returns those that are lost.
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
