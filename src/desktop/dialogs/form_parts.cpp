#include "desktop/dialogs/form_parts.h"

#include "desktop/app/caption_pass.h"
#include "presenter/about_form.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kCopyrightCaption = 1030;
constexpr int kVisitCaption = 1083;
constexpr int kRightsCaption = 1105;
constexpr int kUrlCaption = 1116;

}  // namespace

QLabel* AddLabel(QWidget& parent, const char* name, int caption) {
  auto* const label = new QLabel(&parent);
  label->setObjectName(QString::fromLatin1(name));
  label->setTextFormat(Qt::PlainText);
  if (caption != 0) {
    SetTag(*label, caption);
  }
  return label;
}

void SetFontScale(QWidget& widget, double scale, QFont::Weight weight) {
  QFont font = widget.font();
  font.setPointSizeF(font.pointSizeF() * scale);
  font.setWeight(weight);
  widget.setFont(font);
}

QString VersionText() { return ToQString(ProgramVersion()); }

void AddMakersWords(QWidget& form, QBoxLayout& column) {
  column.addWidget(AddLabel(form, "lblCopyright", kCopyrightCaption));
  column.addWidget(AddLabel(form, "lblRights", kRightsCaption));
  column.addSpacing(kSpacing);
  column.addWidget(AddLabel(form, "lblVisit", kVisitCaption));
  QLabel* const url = AddLabel(form, "lblURL", kUrlCaption);
  url->setTextInteractionFlags(Qt::TextSelectableByMouse);
  column.addWidget(url);
}

}  // namespace vrx
