#include "desktop/insight/insight_page.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMimeData>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "base/translation.h"
#include "chart/charts.h"
#include "database/keep_database.h"
#include "desktop/app/captions.h"
#include "platform/file_chooser.h"
#include "presenter/report_failure.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kPictureShare = 3;  // of the width, beside
constexpr int kTableShare = 2;
constexpr int kLeastSide = 240;

FailureReport PictureFailure(const std::exception& /*failure*/) {
  return {.title = TrMark("Save Picture"), .text = FailureText::kMessage, .icon = Icon::kWarning};
}

// The chart of an answer without its texts, ready to be laid out. It keeps a copy of what it draws.
template <typename Chart>
DrawPicture Drawer(Chart chart, ChartTexts texts) {
  chart.texts = std::move(texts);
  return [chart = std::move(chart)](QSizeF size, const Look& look) {
    return PictureOf(chart, size, look);
  };
}

DrawPicture DrawerOf(const InsightAnswer& answer, const std::optional<std::string>& pen,
                     ChartTexts texts) {
  const auto of_topic = [&](auto chart) {
    chart.deliveries = answer.asked.topic == InsightTopic::kDelivery;
    return Drawer(std::move(chart), std::move(texts));
  };
  switch (answer.asked.Picture()) {
    case InsightPicture::kDeviations:
      return of_topic(DeviationChartOf(*answer.loads, *answer.accuracy));
    case InsightPicture::kDistribution:
      return of_topic(DistributionChartOf(*answer.loads, *answer.accuracy));
    case InsightPicture::kOperators:
      return Drawer(OperatorChartOf(*answer.accuracy), std::move(texts));
    case InsightPicture::kWeights:
      return Drawer(WeightChartOf(*answer.accuracy), std::move(texts));
    case InsightPicture::kBalance:
      return Drawer(BalanceChartOf(*answer.balance), std::move(texts));
    case InsightPicture::kDelivered:
      texts.title += ": " + (pen ? *pen : Tr("(none)"));
      return Drawer(DeliveredChartOf(*answer.delivered, pen), std::move(texts));
    case InsightPicture::kNone:
      break;
  }
  return {};
}

}  // namespace

InsightPage::InsightPage(Services& services)
    : services_(services),
      presenter_(services, *this),
      questions_(new QListWidget(this)),
      sentence_(AddText("lblInsightQuestion")),
      fields_(new InsightFields(services.calendar, this)),
      sides_(new QSplitter(Qt::Horizontal, this)),
      picture_(new PictureView(this)),
      how_picture_(AddText("lblInsightPictureHow")),
      table_(new InsightTable(this)),
      standby_(AddText("lblInsightStandby")),
      how_(new LinkLabel(this)),
      notes_(AddText("lblInsightNotes")),
      save_(AddButton("cmdInsightSave", QTr("Save Picture..."),
                      QTr("Write the picture to an SVG or PNG file"))),
      copy_(AddButton("cmdInsightCopy", QTr("Copy Picture"),
                      QTr("Put the picture on the clipboard"))),
      print_(AddButton("cmdInsightPrint", QTr("Print..."), QTr("Print the picture"))),
      records_(AddButton("cmdInsightRecords", QTr("Show Records"),
                         QTr("Show the records of the selected row on the tab Batched/Fed"))),
      progress_(new QProgressBar(this)),
      cancel_(AddButton("cmdInsightCancel", QTr("Cancel"), QTr("Stop reading the records"))) {
  setObjectName(QStringLiteral("pageInsight"));
  questions_->setObjectName(QStringLiteral("lstInsight"));
  questions_->setAccessibleName(QTr("Questions"));
  for (int topic = 0; topic < kInsightTopics; ++topic) {
    questions_->addItem(QTr(RowOf(static_cast<InsightTopic>(topic)).title));
  }
  questions_->setCurrentRow(0);
  questions_->setSpacing(kSpacing / 4);
  progress_->setObjectName(QStringLiteral("prgInsight"));
  progress_->setAccessibleName(QTr("Progress of the question"));
  progress_->setRange(0, 100);
  picture_->SetTips([this](std::size_t index, std::size_t count) {
    return ToQString(presenter_.TextOfMark(index, count));
  });
  LayOut();
  Connect();
  ShowQuestion();
  ShowProgress();
  ShowAnswer();
}

QPushButton* InsightPage::AddButton(const char* name, const QString& caption,
                                    const QString& meaning) {
  auto* const button = new QPushButton(caption, this);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(meaning);
  return button;
}

QLabel* InsightPage::AddText(const char* name) {
  QLabel* const text = AddLabel(*this, name);
  text->setWordWrap(true);
  return text;
}

void InsightPage::LayOut() {
  questions_->setFixedWidth(questions_->sizeHintForColumn(0) + 4 * kSpacing);
  questions_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  auto* const whole = new QHBoxLayout(this);
  whole->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  whole->setSpacing(kGroupSpacing);
  whole->addWidget(questions_);
  whole->addWidget(LayOutQuestion(), 1);
}

QWidget* InsightPage::LayOutQuestion() {
  auto* const question = new QWidget(this);
  MakeDemiBold(*sentence_);
  sides_->setObjectName(QStringLiteral("splInsight"));
  sides_->setChildrenCollapsible(false);
  sides_->setHandleWidth(kGroupSpacing);
  sides_->addWidget(LayOutPicture());
  sides_->addWidget(LayOutTable());
  sides_->setStretchFactor(0, kPictureShare);
  sides_->setStretchFactor(1, kTableShare);
  auto* const progress = new QHBoxLayout;
  progress->setSpacing(kSpacing);
  progress->addWidget(progress_, 1);
  progress->addWidget(cancel_);
  auto* const column = new QVBoxLayout(question);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addWidget(sentence_);
  column->addWidget(fields_);
  column->addLayout(progress);
  column->addWidget(sides_, 1);
  column->addWidget(notes_);
  return question;
}

QWidget* InsightPage::LayOutPicture() {
  auto* const side = new QWidget(sides_);
  side->setMinimumWidth(kLeastSide);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  for (QPushButton* const button : {save_, copy_, print_}) {
    buttons->addWidget(button);
  }
  buttons->addStretch();
  auto* const column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addWidget(picture_, 1);
  column->addWidget(how_picture_);
  column->addLayout(buttons);
  return side;
}

QWidget* InsightPage::LayOutTable() {
  auto* const side = new QWidget(sides_);
  side->setMinimumWidth(kLeastSide);
  standby_->setAlignment(Qt::AlignCenter);
  table_or_standby_ = new QStackedLayout;
  table_or_standby_->addWidget(table_);
  table_or_standby_->addWidget(standby_);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(records_);
  buttons->addStretch();
  how_->setObjectName(QStringLiteral("lblInsightHow"));
  how_->setWordWrap(true);
  auto* const column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addLayout(table_or_standby_, 1);
  column->addWidget(how_);
  column->addLayout(buttons);
  return side;
}

void InsightPage::Connect() {
  connect(questions_, &QListWidget::currentRowChanged, this,
          [this](int row) { presenter_.ChooseTopic(row); });
  connect(fields_, &InsightFields::PeriodChosen, this,
          [this](PeriodChoice choice) { presenter_.ChoosePeriod(choice); });
  connect(fields_, &InsightFields::DaysTyped, this, [this](const QString& from, const QString& to) {
    presenter_.TypeDays(from.toStdString(), to.toStdString());
  });
  connect(fields_, &InsightFields::NameChosen, this,
          [this](int kind, int item) { presenter_.ChooseName(static_cast<NameKind>(kind), item); });
  connect(fields_, &InsightFields::HoldingTyped, this,
          [this](const QString& days, const QString& on) {
            presenter_.TypeHolding(days.toStdString(), on.toStdString());
          });
  connect(fields_, &InsightFields::TableChosen, this,
          [this](int table) { presenter_.ChooseTable(table); });
  connect(fields_, &InsightFields::PictureChosen, this,
          [this](int picture) { presenter_.ChoosePicture(picture); });
  connect(cancel_, &QPushButton::clicked, this, [this] { presenter_.Stop(); });
  connect(table_, &InsightTable::RowChosen, this, &InsightPage::GoToRow);
  connect(table_, &InsightTable::RowChanged, this, [this] {
    if (table_->CurrentRow() >= 0) {
      const std::optional<std::string> before = presenter_.ShownPen();
      presenter_.SelectRow(static_cast<std::size_t>(table_->CurrentRow()));
      if (presenter_.ShownPen() != before) {
        ShowPicture();
      }
    }
    TurnCommands();
  });
  connect(records_, &QPushButton::clicked, this, [this] { GoToRow(table_->CurrentRow()); });
  connect(picture_, &PictureView::MarkChosen, this,
          [this](qulonglong index) { GoToMark(static_cast<std::size_t>(index)); });
  connect(picture_, &PictureView::CopyChosen, this, &InsightPage::CopyPicture);
  connect(save_, &QPushButton::clicked, this, &InsightPage::SavePicture);
  connect(copy_, &QPushButton::clicked, this, &InsightPage::CopyPicture);
  connect(print_, &QPushButton::clicked, this, &InsightPage::PrintChosen);
  connect(how_, &QLabel::linkActivated, this, &InsightPage::ManualChosen);
  picture_->setContextMenuPolicy(Qt::ActionsContextMenu);
  for (QPushButton* const button : {save_, copy_, print_}) {
    auto* const action = new QAction(button->text(), picture_);
    connect(action, &QAction::triggered, button, &QPushButton::click);
    picture_->addAction(action);
  }
}

// MainTabPage.

void InsightPage::TabChanged(int tab, int /*previous*/) {
  if (tab != kTabInsight) {
    presenter_.Hide();
  }
}

void InsightPage::Prepare() { presenter_.Show(); }

void InsightPage::Activated() { presenter_.FollowSettings(); }

void InsightPage::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  if (kind == DatabaseKind::kTransaction) {
    presenter_.SetDatabase(database);
  }
}

void InsightPage::EndReads(DatabaseKind kind) {
  if (kind == DatabaseKind::kTransaction) {
    presenter_.EndReads();
  }
}

void InsightPage::Return() { table_->setFocus(); }

// The shown state.

void InsightPage::InsightChanged(InsightPart part) {
  switch (part) {
    case InsightPart::kQuestion:
    case InsightPart::kNames:
      ShowQuestion();
      break;
    case InsightPart::kProgress:
      ShowProgress();
      break;
    case InsightPart::kAnswer:
      ShowAnswer();
      break;
  }
}

void InsightPage::ShowQuestion() {
  const InsightState& state = presenter_.State();
  const QSignalBlocker silent(questions_);
  questions_->setCurrentRow(static_cast<int>(state.asked.topic));
  sentence_->setText(QTr(RowOf(state.asked.topic).sentence));
  fields_->Show(state);
}

void InsightPage::ShowProgress() {
  const int percent = presenter_.State().percent;
  if (percent < 0 && cancel_->hasFocus()) {
    questions_->setFocus();
  }
  progress_->setValue(std::max(percent, 0));
  progress_->setVisible(percent >= 0);
  cancel_->setVisible(percent >= 0);
}

void InsightPage::ShowAnswer() {
  const InsightAnswer* const answer = presenter_.Answer();
  const InsightState& state = presenter_.State();
  table_->Show(answer == nullptr ? nullptr : &answer->table,
               answer == nullptr ? std::string() : answer->units);
  standby_->setText(ToQString(state.standby));
  table_or_standby_->setCurrentWidget(answer != nullptr && state.standby.empty()
                                          ? static_cast<QWidget*>(table_)
                                          : static_cast<QWidget*>(standby_));
  QString notes;
  for (const std::string& note : answer == nullptr ? std::vector<std::string>() : answer->notes) {
    notes += (notes.isEmpty() ? QString() : QStringLiteral("\n")) + QTr(note);
  }
  notes_->setText(notes);
  notes_->setVisible(!notes.isEmpty());
  ShowHow();
  ShowPicture();
  TurnCommands();
}

void InsightPage::ShowHow() {
  const InsightAnswer* const answer = presenter_.Answer();
  const QString how = answer == nullptr ? QString() : QTr(answer->table.how);
  const QString link = QStringLiteral("<a href=\"%1\">%2</a>")
                           .arg(ToQString(RowOf(presenter_.State().asked.topic).section),
                                QTr("What this means")
                                    .toHtmlEscaped()
                                    .replace(QStringLiteral(" "), QStringLiteral("&nbsp;")));
  how_->setText(how.toHtmlEscaped() + QStringLiteral(" ") + link);
}

void InsightPage::ShowPicture() {
  const DrawPicture drawing = Drawing(false);
  picture_->parentWidget()->setVisible(static_cast<bool>(drawing));
  picture_->Show(drawing);
  const InsightAnswer* const answer = presenter_.Answer();
  if (drawing && answer != nullptr) {
    const InsightAsked& asked = answer->asked;
    how_picture_->setText(
        QTr(RowOf(asked.topic).pictures[static_cast<std::size_t>(asked.picture)].how));
  }
}

DrawPicture InsightPage::Drawing(bool leaves_window) const {
  const InsightAnswer* const answer = presenter_.Answer();
  if (answer == nullptr || answer->asked.Picture() == InsightPicture::kNone) {
    return {};
  }
  const InsightTopicRow& topic = RowOf(answer->asked.topic);
  const InsightPictureChoice& picture =
      topic.pictures[static_cast<std::size_t>(answer->asked.picture)];
  return DrawerOf(
      *answer, presenter_.ShownPen(),
      {.title = Tr(topic.title) + ": " + Tr(picture.caption),
       .how = leaves_window ? presenter_.AnsweredText() + ". " + Tr(picture.how) : std::string()});
}

DrawPicture InsightPage::WholePicture() const { return Drawing(true); }

void InsightPage::TurnCommands() {
  const int row = table_->CurrentRow();
  records_->setEnabled(row >= 0 &&
                       presenter_.PlaceOfRow(static_cast<std::size_t>(row)).has_value());
}

void InsightPage::GoToRow(int row) {
  if (row < 0) {
    return;
  }
  if (const auto place = presenter_.PlaceOfRow(static_cast<std::size_t>(row))) {
    Q_EMIT RecordsChosen(*place);
  }
}

void InsightPage::GoToMark(std::size_t index) {
  if (const auto place = presenter_.PlaceOfMark(index)) {
    Q_EMIT RecordsChosen(*place);
  }
}

void InsightPage::SavePicture() {
  const DrawPicture drawing = WholePicture();
  if (!drawing) {
    return;
  }
  const FileChoice choice =
      services_.files.ShowSave({.title = Tr("Save Picture"),
                                .filter = "SVG (*.svg)|*.svg|PNG (*.png)|*.png",
                                .default_extension = "svg",
                                .flags = kOverwritePrompt | kHideReadOnly});
  if (choice.Cancelled()) {
    return;
  }
  const std::filesystem::path path(choice.path);
  if (RunReported(services_.op, PictureFailure, [&] { WritePicture(drawing, path); })) {
    Q_EMIT FileWritten(QTr("Saved as"), ToQString(choice.path));
  }
}

void InsightPage::CopyPicture() {
  if (const DrawPicture drawing = WholePicture()) {
    auto* const both = new QMimeData;  // the clipboard owns it
    both->setImageData(ImageOf(drawing));
    both->setData(QStringLiteral("image/svg+xml"), QByteArray::fromStdString(SvgOf(drawing)));
    QGuiApplication::clipboard()->setMimeData(both);
  }
}

}  // namespace vrx
