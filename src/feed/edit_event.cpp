#include "feed/edit_event.h"

#include <exception>
#include <string>
#include <string_view>

#include "database/database_error.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

constexpr std::string_view kEditErrorTitle = "Edit (Error)";

void Tell(Operator& op, std::string_view title, const std::exception& failure) {
  op.Beep();
  op.ShowMessage({.icon = Icon::kCritical, .title = std::string(title), .text = failure.what()});
}

}  // namespace

bool HandleEditEvent(Operator& op, const std::function<void()>& event) {
  try {
    event();
    return true;
  } catch (const DatabaseError&) {
    op.Beep();
  } catch (const FieldRefusal& refusal) {
    Tell(op, kFieldErrorTitle, refusal);
  } catch (const Error& failure) {
    Tell(op, kEditErrorTitle, failure);
  }
  return false;
}

}  // namespace vrx
