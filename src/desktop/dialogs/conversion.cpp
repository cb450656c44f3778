#include "desktop/dialogs/conversion.h"

#include <QClipboard>
#include <QDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <string>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "presenter/legacy_conversion.h"
#include "presenter/report_failure.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr int kConversionBarWidth = 320;

// Shows the report of a conversion, which can be copied and saved as a text file.
class ConversionReportDialog : public QDialog {
  Q_OBJECT

 public:
  // The text is UTF-8 with LF. All references outlive the object.
  ConversionReportDialog(std::string_view text, std::string file_name, FileChooser& files,
                         Operator& op, QWidget* owner);

 private:
  void Save();
  void CopyText() const;

  std::string text_;
  std::string file_name_;
  FileChooser& files_;
  Operator& operator_;
  TextView* view_;
};

// The length of the report's longest lines of figures.
constexpr int kColumns = 96;
constexpr int kLines = 28;
constexpr int kLeastLines = 4;

ConversionReportDialog::ConversionReportDialog(std::string_view text, std::string file_name,
                                               FileChooser& files, Operator& op, QWidget* owner)
    : QDialog(owner),
      text_(text),
      file_name_(std::move(file_name)),
      files_(files),
      operator_(op),
      view_(new TextView("txtConversionReport", QTr("Report of the conversion"), this)) {
  setObjectName(QStringLiteral("dlgConversionReport"));
  setWindowTitle(QTr("Database Conversion"));
  setModal(true);
  view_->ShowText(text_);
  view_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  // The text can also be selected with the keyboard.
  view_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  const QFontMetrics metrics(view_->font());
  view_->setMinimumHeight(metrics.lineSpacing() * kLeastLines);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  const auto add_button = [&](const QString& name, const QString& caption) {
    auto* const button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    buttons->addWidget(button);
    return button;
  };
  QPushButton* const save = add_button(QStringLiteral("cmdSave"), QTr("&Save..."));
  QPushButton* const copy = add_button(QStringLiteral("cmdCopy"), QTr("&Copy"));
  buttons->addStretch();
  QPushButton* const close = add_button(QStringLiteral("cmdClose"), QTr("C&lose"));
  close->setDefault(true);
  connect(save, &QPushButton::clicked, this, &ConversionReportDialog::Save);
  connect(copy, &QPushButton::clicked, this, &ConversionReportDialog::CopyText);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  column->addWidget(view_);
  column->addLayout(buttons);
  resize(QSize(metrics.averageCharWidth() * kColumns, metrics.lineSpacing() * kLines)
             .boundedTo(screen()->availableSize() - kFrameSize));
  close->setFocus();
}

void ConversionReportDialog::Save() {
  const FileChoice choice =
      files_.ShowSave({.title = Tr("Save Report As..."),
                       .filter = "Text Files (*.TXT)|*.TXT|All Files (*.*)|*.*",
                       .default_extension = "TXT",
                       .start_folder = {},
                       .flags = kHideReadOnly | kOverwritePrompt});
  if (choice.Cancelled()) {
    return;
  }
  RunReported<FileError>(operator_, {.title = kConversionErrorTitle, .text = FailureText::kMessage},
                         [&] { WriteFileBytes(choice.path, text_); });
}

void ConversionReportDialog::CopyText() const {
  QGuiApplication::clipboard()->setText(ToQString(text_));
}

}  // namespace

ConversionProgress::ConversionProgress(QWidget* owner)
    : QDialog(owner),
      message_(new QLabel(QTr("Reading the database."), this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(QTr("Cancel"), this)) {
  setObjectName(QStringLiteral("dlgConversionProgress"));
  setWindowTitle(QTr("Database Conversion"));
  setModal(true);
  bar_->setAccessibleName(QTr("Rows converted"));
  bar_->setMinimumWidth(kConversionBarWidth);
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

// The dialog stays open until the conversion has ended.
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

#include "conversion.moc"
