#pragma once

#include <QWidget>

namespace vrx {

// The dynamic property that holds the id of a control's caption as a decimal text: the designed
// `Tag`.
inline constexpr const char* kTagProperty = "Tag";

// Sets a tag; to be used where a form is laid out.
void SetTag(QObject& control, int id);

// The caption pass of a form, first thing in its Load. The title comes from the form's tag, the
// texts of labels from theirs; the items of the menu bar hold the id in their own text, the buttons
// of toolbars in their tooltip. Anything else stays as it was laid out.
//
// A label without a numeric tag reads "TBD" until code sets it. An id that is not in the table
// leaves a text as it is.
void ApplyCaptionTable(QWidget& form);

}  // namespace vrx
