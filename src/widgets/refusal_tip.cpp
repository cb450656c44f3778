#include "widgets/refusal_tip.h"

#include <QAccessible>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QToolTip>
#include <algorithm>
#include <chrono>

#include "widgets/layout.h"

namespace vrx {
namespace {

constexpr std::chrono::seconds kShown{2};

class RefusalTip : public QLabel {
 public:
  explicit RefusalTip(QWidget* parent)
      : QLabel(parent, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput) {
    setObjectName(QStringLiteral("lblRefusal"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setTextFormat(Qt::PlainText);
    setPalette(QToolTip::palette());
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setAutoFillBackground(true);
    setFrameShape(QFrame::Box);
    setMargin(kSpacing / 2);
    end_.setSingleShot(true);
    connect(&end_, &QTimer::timeout, this, &QWidget::hide);
  }

  void ShowBelow(const QWidget& widget, const QRect& place) {
    adjustSize();
    const QRect room = widget.screen()->availableGeometry();
    QRect tip(widget.mapToGlobal(place.bottomLeft() + QPoint(0, kSpacing / 2)), size());
    if (tip.bottom() > room.bottom()) {
      tip.moveBottom(widget.mapToGlobal(place.topLeft()).y() - kSpacing / 2);
    }
    tip.moveLeft(std::max(room.left(), std::min(tip.left(), room.right() - tip.width())));
    move(tip.topLeft());
    show();
    raise();
    end_.start(kShown);
  }

 private:
  QTimer end_;
};

}  // namespace

void ShowRefusal(QWidget& widget, const QRect& place, const QString& reason) {
  static QPointer<RefusalTip> shown;
  if (reason.isEmpty()) {
    return;
  }
  if (!shown || shown->parentWidget() != widget.window()) {
    delete shown;
    shown = new RefusalTip(widget.window());
  }
  shown->setText(reason);
  shown->ShowBelow(widget, place);
  QAccessibleEvent alert(&widget, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

}  // namespace vrx
