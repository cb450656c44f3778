#include "desktop/setup/setup_sections.h"

#include <QLabel>
#include <QVariant>

#include "desktop/app/captions.h"
#include "widgets/layout.h"

namespace vrx {
namespace {

constexpr const char* kHeadingProperty = "Heading";

}  // namespace

SetupSection AddSection(QBoxLayout& tab, const char* name, const QString& heading, int stretch) {
  auto* const frame = new QWidget;
  frame->setObjectName(QString::fromLatin1(name));
  tab.addWidget(frame, stretch);
  auto* const content = new QVBoxLayout(frame);
  content->setContentsMargins(0, 0, 0, 0);
  content->setSpacing(kSpacing);
  QLabel* const label = AddLabel(*frame, "lblHeading");
  label->setProperty(kHeadingProperty, heading);
  MakeDemiBold(*label);
  content->addWidget(label);
  return {frame, content};
}

void ShowHeadings(const QWidget& form) {
  for (QLabel* const label : form.findChildren<QLabel*>()) {
    if (const QVariant heading = label->property(kHeadingProperty); heading.isValid()) {
      label->setText(heading.toString());
    }
  }
}

}  // namespace vrx
