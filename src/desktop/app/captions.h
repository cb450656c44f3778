#pragma once

#include <QLabel>
#include <QString>
#include <QStringList>
#include <QTranslator>
#include <QWidget>
#include <optional>
#include <string_view>

namespace vrx {

// The language of the window while the object lives. It needs an application and precedes every
// widget.
class Language {
 public:
  // The first of these locales, best first, that has a catalogue or is English. Qt's own texts
  // follow where its catalogues are installed.
  explicit Language(const QStringList& locales);
  ~Language();
  Language(const Language&) = delete;
  Language& operator=(const Language&) = delete;

  [[nodiscard]] const QString& Code() const { return code_; }  // "de"; "en" for English

 private:
  QString code_ = QStringLiteral("en");
  QTranslator texts_;
  QTranslator qt_texts_;
};

// The text of a row of the caption table, ids 1000 to 1134 and from 2000; nothing for an id without
// a row.
std::optional<std::string_view> CaptionText(int id);

// Captions of several forms.
inline constexpr int kIdCaption = 1054;
inline constexpr int kDescriptionCaption = 1055;  // not in the table: the label keeps its own text
inline constexpr int kNameCaption = 1056;

// The dynamic property that holds the id of a control's caption as a decimal text: the designed
// `Tag`.
inline constexpr const char* kTagProperty = "Tag";

// Sets a tag; to be used where a form is laid out.
void SetTag(QObject& control, int id);

// A label of that objectName; an id of 0 leaves it without a tag.
QLabel* AddLabel(QWidget& parent, const char* name, int caption = 0);

// The caption pass of a form, first thing in its Load. The title comes from the form's tag, the
// texts of labels from theirs; the items of the menu bar hold the id in their own text, the buttons
// of toolbars in their tooltip. Anything else stays as it was laid out.
//
// A label without a numeric tag reads "TBD" until code sets it. An id that is not in the table
// leaves a text as it is.
void ApplyCaptionTable(QWidget& form);

}  // namespace vrx
