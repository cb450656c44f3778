#include "desktop/recipes/scan_panel.h"

#include <QVBoxLayout>

#include "database/records.h"
#include "widgets/main_window_layout.h"

namespace vrx {
namespace {

constexpr int kBarWidth = 320;

}  // namespace

ScanPanel::ScanPanel(QWidget* parent)
    : QWidget(parent), text_(new QLabel(this)), bar_(new QProgressBar(this)) {
  text_->setObjectName(QStringLiteral("lblScanPrint"));
  bar_->setObjectName(QStringLiteral("prgScanPrint"));
  bar_->setAccessibleName(QStringLiteral("Recipes looked through"));
  bar_->setRange(1, kRecipeCount);
  bar_->setFixedWidth(kBarWidth);
  auto* const column = new QVBoxLayout(this);
  column->setSpacing(kSpacing);
  column->addWidget(text_, 0, Qt::AlignHCenter);
  column->addWidget(bar_, 0, Qt::AlignHCenter);
}

void ScanPanel::Tell(const QString& text) {
  text_->setText(text);
  repaint();
}

void ScanPanel::GoTo(int position) {
  bar_->setValue(position);
  bar_->repaint();
}

}  // namespace vrx
