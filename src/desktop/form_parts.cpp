#include "desktop/form_parts.h"

#include "desktop/caption_pass.h"

namespace vrx {

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

QString VersionText() { return QStringLiteral(VRX_VERSION); }

}  // namespace vrx
