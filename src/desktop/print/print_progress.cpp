#include "desktop/print/print_progress.h"

#include <QVBoxLayout>

#include "widgets/main_window_layout.h"

namespace vrx {
namespace {

constexpr int kBarWidth = 320;

}  // namespace

PrintProgress::PrintProgress(QWidget* owner)
    : QDialog(owner),
      page_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(QStringLiteral("Cancel"), this)) {
  setObjectName(QStringLiteral("dlgPrinting"));
  setWindowTitle(QStringLiteral("Print"));
  setModal(true);
  bar_->setAccessibleName(QStringLiteral("Pages printed"));
  bar_->setMinimumWidth(kBarWidth);
  cancel_->setObjectName(QStringLiteral("cmdCancel"));
  connect(cancel_, &QPushButton::clicked, this, &PrintProgress::reject);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(page_);
  column->addWidget(bar_);
  column->addSpacing(kSpacing);
  column->addWidget(cancel_, 0, Qt::AlignRight);
  column->setSizeConstraint(QLayout::SetFixedSize);
  show();
}

void PrintProgress::ShowPage(std::int64_t page, std::int64_t pages) {
  page_->setText(QStringLiteral("Printing page %1 of %2").arg(page).arg(pages));
  bar_->setRange(0, static_cast<int>(pages));
  bar_->setValue(static_cast<int>(page));
}

// It stays until the page at hand is done.
void PrintProgress::reject() {
  cancelled_ = true;
  cancel_->setEnabled(false);
}

}  // namespace vrx
