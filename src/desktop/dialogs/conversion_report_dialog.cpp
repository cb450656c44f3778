#include "desktop/dialogs/conversion_report_dialog.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "base/files.h"
#include "widgets/main_window_layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

// What the report's longest lines of figures need.
constexpr int kColumns = 96;
constexpr int kLines = 28;

}  // namespace

ConversionReportDialog::ConversionReportDialog(std::string_view text, std::string file_name,
                                               FileChooser& files, Operator& op, QWidget* owner)
    : QDialog(owner),
      text_(text),
      file_name_(std::move(file_name)),
      files_(files),
      operator_(op),
      view_(new TextView("txtConversionReport", QStringLiteral("Report of the conversion"), this)) {
  setObjectName(QStringLiteral("dlgConversionReport"));
  setWindowTitle(QStringLiteral("Database Conversion"));
  setModal(true);
  view_->ShowText(text_);
  view_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  // Its text is taken with the keyboard, too.
  view_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  const QFontMetrics metrics(view_->font());
  view_->setMinimumHeight(metrics.lineSpacing() * kLines / 2);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  const auto add_button = [&](const QString& name, const QString& caption) {
    auto* const button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    buttons->addWidget(button);
    return button;
  };
  QPushButton* const save = add_button(QStringLiteral("cmdSave"), QStringLiteral("&Save..."));
  QPushButton* const copy = add_button(QStringLiteral("cmdCopy"), QStringLiteral("&Copy"));
  buttons->addStretch();
  QPushButton* const close = add_button(QStringLiteral("cmdClose"), QStringLiteral("C&lose"));
  close->setDefault(true);
  connect(save, &QPushButton::clicked, this, &ConversionReportDialog::Save);
  connect(copy, &QPushButton::clicked, this, &ConversionReportDialog::CopyText);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  column->addWidget(view_);
  column->addLayout(buttons);
  resize(metrics.averageCharWidth() * kColumns, metrics.lineSpacing() * kLines);
  close->setFocus();
}

void ConversionReportDialog::Save() {
  const FileChoice choice =
      files_.ShowSave({.title = "Save Report As...",
                       .filter = "Text Files (*.TXT)|*.TXT|All Files (*.*)|*.*",
                       .default_extension = "TXT",
                       .start_folder = {},
                       .flags = kHideReadOnly | kOverwritePrompt});
  if (choice.Cancelled()) {
    return;
  }
  try {
    WriteFileBytes(choice.path, text_);
  } catch (const FileError& failure) {
    operator_.ShowMessage(
        {.icon = Icon::kCritical, .title = "Database Conversion Error", .text = failure.what()});
  }
}

void ConversionReportDialog::CopyText() const {
  QGuiApplication::clipboard()->setText(ToQString(text_));
}

}  // namespace vrx
