#include "desktop/dialogs/conversion.h"

#include <QVBoxLayout>

#include "desktop/dialogs/conversion_report_dialog.h"
#include "widgets/main_window_layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kBarWidth = 320;

}  // namespace

ConversionProgress::ConversionProgress(QWidget* owner)
    : QDialog(owner),
      message_(new QLabel(QStringLiteral("Reading the database."), this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(QStringLiteral("Cancel"), this)) {
  setObjectName(QStringLiteral("dlgConversionProgress"));
  setWindowTitle(QStringLiteral("Database Conversion"));
  setModal(true);
  bar_->setAccessibleName(QStringLiteral("Rows converted"));
  bar_->setMinimumWidth(kBarWidth);
  bar_->setRange(0, 0);
  cancel_->setObjectName(QStringLiteral("cmdCancel"));
  connect(cancel_, &QPushButton::clicked, this, &ConversionProgress::reject);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(message_);
  column->addWidget(bar_);
  column->addSpacing(kSpacing);
  column->addWidget(cancel_, 0, Qt::AlignRight);
  column->setSizeConstraint(QLayout::SetFixedSize);
  show();
}

// It stays until the conversion has ended.
void ConversionProgress::reject() {
  cancelled_ = true;
  cancel_->setEnabled(false);
}

void QtConversionDisplay::BeginProgress() { progress_ = new ConversionProgress(&owner_); }

void QtConversionDisplay::EndProgress() { delete progress_; }

void QtConversionDisplay::SetProgressMessage(std::string_view text) {
  if (progress_ != nullptr) {
    progress_->Message().setText(ToQString(text));
  }
}

void QtConversionDisplay::SetProgressRange(int maximum) {
  if (progress_ != nullptr) {
    progress_->Bar().setRange(0, maximum);
    progress_->Bar().setValue(0);
  }
}

void QtConversionDisplay::SetProgressValue(int value) {
  if (progress_ != nullptr) {
    progress_->Bar().setValue(value);
  }
}

void QtConversionDisplay::ShowReport(std::string_view text, const std::string& file_name) {
  ConversionReportDialog(text, file_name, files_, operator_, &owner_).exec();
}

}  // namespace vrx
