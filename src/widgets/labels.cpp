#include "widgets/labels.h"

#include <QFocusEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QString>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QToolTip>
#include <algorithm>

#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
  constexpr int kShortestText = 4;
  return {fontMetrics().averageCharWidth() * kShortestText, QLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
    const auto* const help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(), IsCut() ? text() : QString(), this);
    return true;
  }
  return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent* event) {
  if (!IsCut()) {
    QLabel::paintEvent(event);
    return;
  }
  QPainter painter(this);
  drawFrame(&painter);
  const QRect room = Room();
  style()->drawItemText(&painter, room, static_cast<int>(alignment()), palette(), isEnabled(),
                        fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width()),
                        foregroundRole());
}

bool ElidedLabel::IsCut() const { return fontMetrics().horizontalAdvance(text()) > Room().width(); }

// The indent is on the side of the alignment.
QRect ElidedLabel::Room() const {
  const int indented = std::max(0, indent());
  return (alignment() & Qt::AlignRight) != 0 ? contentsRect().adjusted(0, 0, -indented, 0)
                                             : contentsRect().adjusted(indented, 0, 0, 0);
}

LinkLabel::LinkLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::RichText);
  setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
}

// The link is no longer selected after another window had the focus. Without a link the focus goes
// to the next field.
bool LinkLabel::EnterPressed() {
  if (!hasSelectedText()) {
    focusNextPrevChild(true);
  }
  if (hasFocus() && hasSelectedText()) {
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    keyPressEvent(&enter);
  }
  return true;
}

// By itself the label takes a further Tab to its link.
void LinkLabel::focusInEvent(QFocusEvent* event) {
  QLabel::focusInEvent(event);
  if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) {
    focusNextPrevChild(event->reason() == Qt::TabFocusReason);
  }
}

TextView::TextView(const char* name, const QString& meaning, QWidget* parent)
    : QPlainTextEdit(parent) {
  setObjectName(QString::fromLatin1(name));
  setAccessibleName(meaning);
  setReadOnly(true);
  setLineWrapMode(NoWrap);
  setTabChangesFocus(true);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void TextView::ShowText(std::string_view text) { setPlainText(ToScreenLines(text)); }

void TextView::focusInEvent(QFocusEvent* event) {
  QPlainTextEdit::focusInEvent(event);
  if (heir_ != nullptr && heir_->isVisible() && heir_->isEnabled()) {
    heir_->setFocus();
  }
}

QFont TabularFigures(const QFont& font) {
  const QFontMetricsF metrics(font);
  const QString digits = QStringLiteral("0123456789");
  const qreal width = metrics.horizontalAdvance(digits.front());
  const bool equal = std::all_of(digits.begin(), digits.end(), [&](QChar digit) {
    return qFuzzyCompare(metrics.horizontalAdvance(digit), width);
  });
  if (equal) {
    return font;
  }
  QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  fixed.setPointSizeF(font.pointSizeF());
  fixed.setWeight(font.weight());
  return fixed;
}

PaddedHeader::PaddedHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setHighlightSections(false);
  setSectionsClickable(false);
  setMinimumSectionSize(3 * kSpacing);
}

QString PaddedHeader::Padded(const QString& text) {
  constexpr QChar kThirdOfEm(0x2004);
  return kThirdOfEm + text + kThirdOfEm;
}

void PaddedHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int logical_index) const {
  QHeaderView::initStyleOptionForIndex(option, logical_index);
  option->text = Padded(option->text);
}

}  // namespace vrx
