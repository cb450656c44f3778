#include "desktop/main_window/panels.h"

#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "desktop/app/captions.h"
#include "desktop/main_window/tabs.h"
#include "widgets/drawing.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr std::array<PanelButton, 3> kActions{{{"Update"}, {"Cancel"}, {"Default"}}};
constexpr std::array<PanelButton, 4> kMoves{{{"|<<", TrMark("First record")},
                                             {"<", TrMark("Previous record")},
                                             {">", TrMark("Next record")},
                                             {">>|", TrMark("Last record")}}};
constexpr int kStatusCaption = 1107;
constexpr int kMemoryCaption = 1113;
constexpr int kStatusWindowCaption = 1091;

QHBoxLayout* RowLayout(QWidget& panel) {
  auto* layout = new QHBoxLayout(&panel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kSpacing);
  return layout;
}

}  // namespace

ButtonPanel::ButtonPanel(QWidget* parent, std::string_view name, std::string_view array,
                         std::span<const PanelButton> buttons)
    : QFrame(parent) {
  setObjectName(ToQString(name));
  QHBoxLayout* layout = RowLayout(*this);
  int width = 0;
  for (const PanelButton& row : buttons) {
    const int index = static_cast<int>(buttons_.size());
    auto* button = new QPushButton(QTr(row.caption), this);
    button->setObjectName(QStringLiteral("%1(%2)").arg(ToQString(array)).arg(index));
    button->setToolTip(QTr(row.meaning));
    button->setAccessibleName(QTr(row.meaning.empty() ? row.caption : row.meaning));
    button->setEnabled(false);
    connect(button, &QPushButton::clicked, [this, index] { handler_(index); });
    layout->addWidget(button);
    width = std::max(width, button->fontMetrics().horizontalAdvance(button->text()));
    buttons_.push_back(button);
  }
  for (QPushButton* button : buttons_) {
    button->setFixedWidth(width + 2 * kGroupSpacing);
  }
}

void ButtonPanel::SetHandler(Handler handler) {
  handler_ = std::move(handler);
  for (QPushButton* button : buttons_) {
    button->setEnabled(static_cast<bool>(handler_));
  }
}

TransferStatusPanel::TransferStatusPanel(QWidget* parent) : QFrame(parent) {
  setObjectName(QStringLiteral("picTransferStatus"));
  QHBoxLayout* layout = RowLayout(*this);
  layout->addWidget(AddLabel(*this, "lblStatus", kStatusCaption));
  status_window_ = new ElidedLabel(this);
  status_window_->setObjectName(QStringLiteral("lblStatusWindow"));
  status_window_->setAccessibleDescription(QTr("Status of the transfer"));
  SetTag(*status_window_, kStatusWindowCaption);
  layout->addWidget(status_window_, 1);
  cancel_ = new QPushButton(QTr("Cancel"), this);
  cancel_->setObjectName(QStringLiteral("cmdTransferCancel"));
  cancel_->setToolTip(QTr("End the transfer (Esc)"));
  cancel_->setShortcut(Qt::Key_Escape);
  cancel_->hide();
  connect(cancel_, &QPushButton::clicked, this, &TransferStatusPanel::CancelRequested);
  layout->addWidget(cancel_);
  layout->addSpacing(kSpacing);
  AddMemory();
  PaintStatus();
}

void TransferStatusPanel::AddMemory() {
  memory_ = AddLabel(*this, "lblMemory", kMemoryCaption);
  memory_size_ = AddLabel(*this, "lblMemorySize");
  memory_size_->setToolTip(QTr("Click for percent full"));
  memory_bar_ = new QProgressBar(this);
  memory_bar_->setObjectName(QStringLiteral("prgMemorySize"));
  memory_bar_->setRange(0, kMemoryBytes);
  memory_bar_->setToolTip(QTr("Click for total bytes"));
  memory_bar_->setAccessibleName(QTr("Memory in use"));
  const int width = fontMetrics().horizontalAdvance(QStringLiteral("0")) * 16;
  for (QWidget* part : {static_cast<QWidget*>(memory_), static_cast<QWidget*>(memory_size_),
                        static_cast<QWidget*>(memory_bar_)}) {
    layout()->addWidget(part);
    if (part != memory_) {
      part->setFixedWidth(width);
      part->installEventFilter(this);
    }
  }
  ShowMemory(false);
}

void TransferStatusPanel::SetStatusLine(const QString& text) {
  status_window_->setText(text);
  status_window_->setToolTip({});
}

void TransferStatusPanel::SetStatusCause(const QString& cause) {
  status_window_->setToolTip(cause);
}

void TransferStatusPanel::SetStatusColor(StatusColor color) {
  color_ = color;
  PaintStatus();
}

void TransferStatusPanel::PaintStatus() {
  const QColor color = StatusTextColor(color_, palette().color(QPalette::Window));
  if (status_window_->palette().color(QPalette::WindowText) != color) {
    QPalette colours = status_window_->palette();
    colours.setColor(QPalette::WindowText, color);
    status_window_->setPalette(colours);
  }
}

void TransferStatusPanel::ShowMemory(bool shown) {
  memory_->setVisible(shown);
  memory_size_->setVisible(shown);
  memory_bar_->hide();
}

void TransferStatusPanel::SetMemorySize(int bytes) {
  memory_size_->setText(QString::number(bytes));
  memory_bar_->setValue(bytes);
}

void TransferStatusPanel::ShowCancel(bool shown) { cancel_->setVisible(shown); }

// The second click of a double click hits the control that the first one has shown there, so both
// are treated as one click.
bool TransferStatusPanel::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonDblClick) {
    second_click_ = true;
    return true;
  }
  if (event->type() == QEvent::MouseButtonRelease) {
    if (std::exchange(second_click_, false)) {
      return true;
    }
    const bool on_label = watched == memory_size_;
    memory_size_->setVisible(!on_label);
    memory_bar_->setVisible(on_label);
    return true;
  }
  return QFrame::eventFilter(watched, event);
}

void TransferStatusPanel::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) {
    PaintStatus();
  }
}

ResultPanel::ResultPanel(QWidget* parent)
    : QFrame(parent), text_(new ElidedLabel(this)), open_(new QPushButton(QTr("&Open"), this)) {
  setObjectName(QStringLiteral("picResult"));
  text_->setObjectName(QStringLiteral("lblResult"));
  text_->setAccessibleDescription(QTr("Result of the last command"));
  open_->setObjectName(QStringLiteral("cmdResultOpen"));
  open_->setToolTip(QTr("Open the file that was written"));
  QHBoxLayout* layout = RowLayout(*this);
  layout->addWidget(text_, 1);
  layout->addWidget(open_);
  connect(open_, &QPushButton::clicked, this, [this] { Q_EMIT OpenRequested(path_); });
  hide();
}

void ResultPanel::ShowText(const QString& text) {
  path_.clear();
  text_->setText(text);
  text_->setToolTip({});
  open_->hide();
  setVisible(!text.isEmpty());
}

void ResultPanel::ShowFile(const QString& action, const QString& path) {
  ShowText(action + QChar(u' ') + QFileInfo(path).fileName());
  path_ = path;
  text_->setToolTip(path);
  open_->show();
}

PanelRow::PanelRow(QWidget* parent)
    : QWidget(parent),
      action_(new ButtonPanel(this, "picAction", "cmdAction", kActions)),
      navigate_(new ButtonPanel(this, "picNavigate", "cmdNavigate", kMoves)),
      transfer_status_(new TransferStatusPanel(this)),
      result_(new ResultPanel(this)),
      import_(new QFrame(this)) {
  import_->setObjectName(QStringLiteral("picImport"));
  RowLayout(*import_);
  QHBoxLayout* layout = RowLayout(*this);
  layout->addWidget(action_);
  layout->addWidget(transfer_status_, 1);
  layout->addWidget(result_, 1);
  layout->addStretch();
  layout->addWidget(import_, 1);
  layout->addWidget(navigate_);
  AddRecordNumber();
  KeepHeight();
}

void PanelRow::AddRecordNumber() {
  record_ = AddLabel(*navigate_, "lblRecord");
  record_number_ = AddLabel(*navigate_, "lblRecordNumber");
  record_number_->setAccessibleDescription(QTr("Record number"));
  auto* layout = static_cast<QHBoxLayout*>(navigate_->layout());
  layout->insertWidget(0, record_);
  layout->insertWidget(1, record_number_);
  layout->insertSpacing(2, kSpacing);
}

void PanelRow::ShowRecordNumber(int position) {
  const bool any = position != 0;
  record_->setText(any ? QTr("Record") : QString());
  record_number_->setText(any ? QString::number(position) : QString());
}

void PanelRow::ShowPanels(unsigned panels) {
  result_->Clear();
  action_->setVisible((panels & kPicAction) != 0);
  navigate_->setVisible((panels & kPicNavigate) != 0);
  transfer_status_->setVisible((panels & kPicTransferStatus) != 0);
  import_->setVisible((panels & kPicImport) != 0);
}

void PanelRow::KeepHeight() {
  setFixedHeight(std::max({action_->sizeHint().height(), navigate_->sizeHint().height(),
                           transfer_status_->sizeHint().height()}));
}

void PanelRow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    KeepHeight();
  }
}

}  // namespace vrx
