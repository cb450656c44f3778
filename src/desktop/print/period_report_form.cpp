#include <QButtonGroup>
#include <QCheckBox>
#include <QDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "desktop/print/print_dialogs.h"
#include "presenter/insight_run.h"
#include "presenter/period_report.h"
#include "report/period_page.h"
#include "widgets/calendar_popup.h"
#include "widgets/fields.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

template <typename Value>
struct Choice {
  Value value;
  const char* name;
  std::string_view caption;
};

constexpr std::array<Choice<PeriodKind>, 3> kPeriodChoices{{
    {PeriodKind::kDay, "optReportDay", TrMark("&Day")},
    {PeriodKind::kWeek, "optReportWeek", TrMark("&Week")},
    {PeriodKind::kMonth, "optReportMonth", TrMark("&Month")},
}};
constexpr std::array<Choice<PageFormat>, 2> kFormatChoices{{
    {PageFormat::kPdf, "optReportPdf", TrMark("&PDF, for the printer")},
    {PageFormat::kHtml, "optReportHtml", TrMark("&HTML, for a browser or a telephone")},
}};

void WritePage(const Services& services, const std::filesystem::path& transactions,
               SQLite::Database& database, const ReportPeriod& period, PageFormat format,
               const std::filesystem::path& file, const InsightProgress& progress) {
  const InsightLimits limits = LimitsOf(services.settings);
  const PeriodPage page = ReadPeriodPage(database,
                                         {.period = period,
                                          .database = FileTitle(transactions),
                                          .made = services.calendar.Today(),
                                          .limits = {.percent = limits.percent,
                                                     .weight = limits.weight,
                                                     .beyond = limits.beyond,
                                                     .division = limits.division},
                                          .balance_percent = limits.balance_percent,
                                          .balance_weight = limits.balance_weight},
                                         progress);
  const BusyCursor busy(services.op);
  if (format == PageFormat::kHtml) {
    WriteHtml(page, file);
  } else {
    PrintPeriodPage(page, *MakePdfFile(file, page.title));
  }
}

class PeriodReportDialog : public QDialog, private PeriodReportView {
 public:
  PeriodReportDialog(Services& services, const std::filesystem::path& transactions, QWidget* owner);

  [[nodiscard]] const WrittenReport& Written() const { return written_; }

  // Ends the page that is being made; closes the form if there is none.
  void reject() override;

 private:
  void ReportChanged() override;
  void ReportWritten(const std::filesystem::path& file) override;

  template <typename Value, std::size_t count, typename Chosen>
  QLayout* AddChoices(const std::array<Choice<Value>, count>& choices, Value first, QBoxLayout* row,
                      const Chosen& chosen);
  void LayOut();
  void AddPeriodAndFile();
  QLayout* AddButtons();
  void Write();

  Services& services_;
  PeriodReport report_;
  WrittenReport written_;
  DayEdit* day_ = nullptr;
  QLabel* period_ = nullptr;
  QCheckBox* opens_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QPushButton* write_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QWidget* choices_;  // all but the buttons and the bar
};

PeriodReportDialog::PeriodReportDialog(Services& services,
                                       const std::filesystem::path& transactions, QWidget* owner)
    : QDialog(owner),
      services_(services),
      report_(
          services, transactions,
          [&services, transactions](auto&&... rest) {
            WritePage(services, transactions, std::forward<decltype(rest)>(rest)...);
          },
          *this),
      choices_(new QWidget(this)) {
  setObjectName(QStringLiteral("dlgPeriodReport"));
  setWindowTitle(QTr("Report"));
  LayOut();
  day_->ShowText(ToQString(report_.Form().day));
  opens_->setChecked(report_.Form().opens);
  connect(&day_->Field(), &QLineEdit::textChanged, this,
          [this](const QString& text) { report_.TypeDay(text.toStdString()); });
  connect(opens_, &QCheckBox::toggled, this, [this](bool on) { report_.TurnOpens(on); });
  connect(write_, &QPushButton::clicked, this, &PeriodReportDialog::Write);
  connect(cancel_, &QPushButton::clicked, this, &PeriodReportDialog::reject);
  ReportChanged();
  day_->setFocus();
}

template <typename Value, std::size_t count, typename Chosen>
QLayout* PeriodReportDialog::AddChoices(const std::array<Choice<Value>, count>& choices,
                                        Value first, QBoxLayout* row, const Chosen& chosen) {
  auto* const group = new QButtonGroup(this);
  row->setSpacing(row->direction() == QBoxLayout::LeftToRight ? kGroupSpacing : kSpacing / 2);
  for (const Choice<Value>& choice : choices) {
    auto* const button = new QRadioButton(QTr(choice.caption), choices_);
    button->setObjectName(QString::fromLatin1(choice.name));
    button->setChecked(choice.value == first);
    connect(button, &QRadioButton::clicked, this,
            [chosen, value = choice.value] { chosen(value); });
    group->addButton(button);
    row->addWidget(button);
  }
  row->addStretch();
  return row;
}

// Tab goes through the controls in the order in which they are made.
void PeriodReportDialog::LayOut() {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  AddPeriodAndFile();
  column->addWidget(choices_);
  column->addLayout(AddButtons());
  column->setSizeConstraint(QLayout::SetFixedSize);
}

void PeriodReportDialog::AddPeriodAndFile() {
  auto* const grid = new QGridLayout(choices_);
  grid->setContentsMargins({});
  grid->setHorizontalSpacing(kGroupSpacing);
  grid->setVerticalSpacing(kSpacing);
  grid->addWidget(new QLabel(QTr("Period"), choices_), 0, 0);
  grid->addLayout(AddChoices(kPeriodChoices, report_.Form().kind, new QHBoxLayout,
                             [this](PeriodKind kind) { report_.ChooseKind(kind); }),
                  0, 1);
  day_ = new DayEdit("txtReportDay", QTr("Any day of the period"), services_.calendar, choices_);
  auto* const caption = new QLabel(QTr("&Any day of it"), choices_);
  caption->setBuddy(&day_->Field());
  period_ = new QLabel(choices_);
  period_->setObjectName(QStringLiteral("lblReportPeriod"));
  period_->setAccessibleName(QTr("Period of the report"));
  grid->addWidget(caption, 1, 0);
  grid->addWidget(day_, 1, 1, Qt::AlignLeft);
  grid->addWidget(period_, 2, 1);
  grid->setRowMinimumHeight(3, kSpacing);
  grid->addWidget(new QLabel(QTr("File"), choices_), 4, 0, Qt::AlignTop);
  grid->addLayout(AddChoices(kFormatChoices, report_.Form().format, new QVBoxLayout,
                             [this](PageFormat format) { report_.ChooseFormat(format); }),
                  4, 1);
  opens_ = new QCheckBox(QTr("&Open the file afterwards"), choices_);
  opens_->setObjectName(QStringLiteral("chkReportOpen"));
  grid->addWidget(opens_, 5, 1);
}

QLayout* PeriodReportDialog::AddButtons() {
  progress_ = new QProgressBar(this);
  progress_->setObjectName(QStringLiteral("prgReport"));
  progress_->setAccessibleName(QTr("Progress of the report"));
  KeepPlace(*progress_);
  write_ = new QPushButton(QTr("&Save..."), this);
  write_->setObjectName(QStringLiteral("cmdReportSave"));
  write_->setDefault(true);
  cancel_ = new QPushButton(QTr("Cancel"), this);
  cancel_->setObjectName(QStringLiteral("cmdReportCancel"));
  cancel_->setAutoDefault(false);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(progress_, 1);
  buttons->addWidget(write_);
  buttons->addWidget(cancel_);
  return buttons;
}

void PeriodReportDialog::ReportChanged() {
  const PeriodReportForm& form = report_.Form();
  period_->setText(ToQString(form.period));
  choices_->setEnabled(!form.running);
  write_->setEnabled(form.may_write && !form.running);
  progress_->setVisible(form.running);
  progress_->setValue(form.percent);
}

void PeriodReportDialog::ReportWritten(const std::filesystem::path& file) {
  written_ = {.file = file, .opens = report_.Form().opens};
}

void PeriodReportDialog::Write() {
  report_.ClickWrite();
  if (!written_.file.empty()) {
    accept();
  } else if (services_.pump.Closing()) {
    QDialog::reject();
  } else {
    write_->setFocus();
  }
}

void PeriodReportDialog::reject() {
  if (!report_.ClickCancel()) {
    QDialog::reject();
  }
}

}  // namespace

WrittenReport AskForReport(Services& services, const std::filesystem::path& transactions,
                           QWidget* owner) {
  PeriodReportDialog dialog(services, transactions, owner);
  return dialog.exec() == QDialog::Accepted ? dialog.Written() : WrittenReport();
}

}  // namespace vrx
