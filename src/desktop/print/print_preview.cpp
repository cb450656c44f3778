#include "desktop/print/print_preview.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "presenter/operation.h"
#include "presenter/report_failure.h"
#include "report/print_questions.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr double kMetersPerInch = 0.0254;
constexpr QSize kWantedSize{900, 860};  // within the screen

enum Zoom { kWholePage, kPageWidth, kActualSize, kDoubleSize };

QRect Sheet(const QPagedPaintDevice& paper) {
  return paper.pageLayout().fullRectPixels(paper.logicalDpiX());
}

}  // namespace

PrintPreview::PrintPreview(Operator& op, std::vector<Report> reports,
                           std::unique_ptr<QPagedPaintDevice> paper, QWidget* owner)
    : QDialog(owner),
      operator_(op),
      reports_(std::move(reports)),
      paper_(std::move(paper)),
      page_(new QSpinBox(this)),
      zoom_(new QComboBox(this)),
      note_(new QLabel(this)),
      sheet_(new QLabel),
      room_(new QScrollArea(this)) {
  setObjectName(QStringLiteral("dlgPrintPreview"));
  setWindowTitle(QTr("Print Preview"));
  std::int64_t count = 0;
  bool small_letters = false;
  for (const Report& report : reports_) {
    pages_.push_back(std::make_unique<PagedReport>(report, *paper_));
    count += pages_.back()->Count();
    small_letters = small_letters || pages_.back()->LetterPoints() < kSmallestLetterPoints;
  }
  page_->setRange(1, static_cast<int>(count));
  page_->setSuffix(QTr(" of %1").arg(count));
  note_->setText(small_letters ? QTr("The letters are too small to read; Print offers "
                                     "pages side by side.")
                               : QString());
  LayOut();
  const QSize free = screen()->availableSize() * 0.9;
  resize(kWantedSize.boundedTo(free));
  ShowPage();
}

QWidget* PrintPreview::MakeBar() {
  auto* const bar = new QWidget(this);
  auto* const row = new QHBoxLayout(bar);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing);
  auto* const caption = new QLabel(QTr("P&age"), bar);
  caption->setBuddy(page_);
  row->addWidget(caption);
  previous_ =
      AddTurn(*row, "cmdPreviousPage", QStringLiteral("<"), QTr("Previous page (Page Up)"), -1);
  row->addWidget(page_);
  next_ = AddTurn(*row, "cmdNextPage", QStringLiteral(">"), QTr("Next page (Page Down)"), 1);
  row->addSpacing(kGroupSpacing - kSpacing);
  auto* const zoom = new QLabel(QTr("&Zoom"), bar);
  zoom->setBuddy(zoom_);
  row->addWidget(zoom);
  row->addWidget(zoom_);
  row->addStretch();
  return bar;
}

QPushButton* PrintPreview::AddTurn(QLayout& row, const char* name, const QString& caption,
                                   const QString& meaning, int step) {
  auto* const button = new QPushButton(caption, this);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(meaning);
  button->setAccessibleName(meaning);
  button->setAutoDefault(false);
  button->setFixedWidth(button->sizeHint().height() + kSpacing);
  connect(button, &QPushButton::clicked, this, [this, step] { Turn(step); });
  row.addWidget(button);
  return button;
}

void PrintPreview::LayOut() {
  page_->setObjectName(QStringLiteral("txtPage"));
  page_->setAccessibleName(QTr("Page"));
  page_->setKeyboardTracking(false);
  zoom_->setObjectName(QStringLiteral("lstZoom"));
  zoom_->addItems(
      {QTr("Whole page"), QTr("Page width"), QStringLiteral("100 %"), QStringLiteral("200 %")});
  note_->setObjectName(QStringLiteral("lblPreviewNote"));
  note_->setVisible(!note_->text().isEmpty());
  sheet_->setObjectName(QStringLiteral("picPage"));
  room_->setAccessibleName(QTr("Printed page"));
  room_->setBackgroundRole(QPalette::Mid);
  room_->setAlignment(Qt::AlignCenter);
  room_->setWidget(sheet_);
  room_->installEventFilter(this);
  room_->viewport()->installEventFilter(this);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  auto* const print = buttons->addButton(QTr("&Print"), QDialogButtonBox::AcceptRole);
  print->setObjectName(QStringLiteral("cmdPrint"));
  print->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(page_, &QSpinBox::valueChanged, this, [this] {
    ShowPage();
    room_->verticalScrollBar()->setValue(0);
  });
  connect(zoom_, &QComboBox::currentIndexChanged, this, &PrintPreview::ShowPage);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(MakeBar());
  column->addWidget(note_);
  column->addWidget(room_, 1);
  column->addWidget(buttons);
  room_->setFocus();
}

bool PrintPreview::TurnByKey(int key) {
  switch (key) {
    case Qt::Key_PageDown:
      ScrollOrTurn(1);
      return true;
    case Qt::Key_PageUp:
      ScrollOrTurn(-1);
      return true;
    case Qt::Key_Home:
      page_->setValue(page_->minimum());
      return true;
    case Qt::Key_End:
      page_->setValue(page_->maximum());
      return true;
    default:
      return false;
  }
}

void PrintPreview::keyPressEvent(QKeyEvent* event) {
  if (!TurnByKey(event->key())) {
    QDialog::keyPressEvent(event);
  }
}

void PrintPreview::Turn(int step) { page_->setValue(page_->value() + step); }

void PrintPreview::ScrollOrTurn(int step) {
  QScrollBar& bar = *room_->verticalScrollBar();
  const int before = bar.value();
  bar.setValue(before + step * bar.pageStep());
  if (bar.value() != before) {
    return;
  }
  const int page = page_->value();
  Turn(step);
  if (page_->value() != page) {
    bar.setValue(step > 0 ? bar.minimum() : bar.maximum());
  }
}

void PrintPreview::ShowPage() {
  const bool fits = zoom_->currentIndex() == kWholePage;
  room_->setHorizontalScrollBarPolicy(zoom_->currentIndex() <= kPageWidth ? Qt::ScrollBarAlwaysOff
                                                                          : Qt::ScrollBarAsNeeded);
  room_->setVerticalScrollBarPolicy(fits ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAlwaysOn);
  previous_->setEnabled(page_->value() > page_->minimum());
  next_->setEnabled(page_->value() < page_->maximum());
  sheet_->clear();
  RunReported(operator_,
              FailureReport{.title = "Print Error",
                            .text = FailureText::kWords,
                            .words = TrMark("The page could not be shown.")},
              [this] {
                const BusyCursor busy(operator_);
                sheet_->setPixmap(QPixmap::fromImage(DrawPage(page_->value())));
              });
  sheet_->adjustSize();
}

QImage PrintPreview::DrawPage(int page) {
  const double scale = Scale() * devicePixelRatioF();
  QImage image((QSizeF(Sheet(*paper_).size()) * scale).toSize(), QImage::Format_RGB32);
  image.fill(Qt::white);
  // The fonts have the size of the paper's pixels and are drawn to scale.
  const int dots_per_meter = qRound(paper_->logicalDpiX() / kMetersPerInch);
  image.setDotsPerMeterX(dots_per_meter);
  image.setDotsPerMeterY(dots_per_meter);
  QPainter painter(&image);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  painter.scale(scale, scale);
  painter.translate(paper_->pageLayout().paintRectPixels(paper_->logicalDpiX()).topLeft());
  std::int64_t left = page;
  for (const std::unique_ptr<PagedReport>& report : pages_) {
    if (left <= report->Count()) {
      report->Draw(left, painter);
      break;
    }
    left -= report->Count();
  }
  painter.end();
  image.setDevicePixelRatio(devicePixelRatioF());
  return image;
}

double PrintPreview::Scale() const {
  const QSizeF sheet = Sheet(*paper_).size();
  const QSizeF room = room_->viewport()->size() - QSize(kGroupSpacing, kGroupSpacing);
  const double actual = static_cast<double>(logicalDpiX()) / paper_->logicalDpiX();
  switch (zoom_->currentIndex()) {
    case kWholePage:
      return std::min(room.width() / sheet.width(), room.height() / sheet.height());
    case kPageWidth:
      return room.width() / sheet.width();
    case kActualSize:
      return actual;
    default:
      return 2 * actual;
  }
}

bool PrintPreview::eventFilter(QObject* watched, QEvent* event) {
  if (watched == room_ && event->type() == QEvent::KeyPress) {
    return TurnByKey(static_cast<QKeyEvent*>(event)->key());
  }
  if (watched == room_->viewport() && event->type() == QEvent::Resize &&
      zoom_->currentIndex() <= kPageWidth && isVisible()) {
    ShowPage();
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace vrx
