#include "support/boxes.h"

#include <ostream>
#include <stdexcept>

namespace vrx {
namespace {

const char* NameOf(Icon icon) {
  switch (icon) {
    case Icon::kNone:
      return "no icon";
    case Icon::kCritical:
      return "critical";
    case Icon::kQuestion:
      return "question";
    case Icon::kWarning:
      return "warning";
    case Icon::kInformation:
      return "information";
  }
  return "unknown icon";
}

const char* NameOf(Buttons buttons) {
  switch (buttons) {
    case Buttons::kOk:
      return "OK";
    case Buttons::kOkCancel:
      return "OK, Cancel";
    case Buttons::kYesNo:
      return "Yes, No";
    case Buttons::kTryDiscardStay:
      return "Try Again, Discard, Stay";
    case Buttons::kNewAllNothing:
      return "Store What Is New, Store All Again, Store Nothing";
  }
  return "unknown buttons";
}

}  // namespace

void PrintTo(const MessageBox& box, std::ostream* out) {
  *out << NameOf(box.icon) << " \"" << box.title << "\": \"" << box.text << "\" ["
       << NameOf(box.buttons) << "]";
  if (!box.cause.empty()) {
    *out << " cause: \"" << box.cause << '"';
  }
}

}  // namespace vrx

namespace vrx::testing {

using ::testing::AllOf;
using ::testing::Field;

const MessageBox& LastBox(const std::vector<MessageBox>& boxes) {
  if (boxes.empty()) {
    throw std::logic_error("no box was shown");
  }
  return boxes.back();
}

const MessageBox& OnlyBox(const std::vector<MessageBox>& boxes) {
  if (boxes.size() != 1) {
    throw std::logic_error(std::to_string(boxes.size()) +
                           " boxes were shown: " + ::testing::PrintToString(boxes));
  }
  return boxes.front();
}

::testing::Matcher<const MessageBox&> IsBox(Icon icon, const std::string& title,
                                            const ::testing::Matcher<std::string>& text,
                                            Buttons buttons) {
  return AllOf(Field("icon", &MessageBox::icon, icon), Field("title", &MessageBox::title, title),
               Field("text", &MessageBox::text, text),
               Field("buttons", &MessageBox::buttons, buttons));
}

}  // namespace vrx::testing
