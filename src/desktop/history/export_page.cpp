#include "desktop/history/export_page.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <array>
#include <string>
#include <utility>

#include "base/text.h"
#include "desktop/app/captions.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kExportingCaption = 1091;
constexpr int kFieldWidth = 480;

struct FormatChoice {
  ExportFormat format;
  const char* name;
  const char* caption;
  std::string_view meaning;
};

constexpr std::array<FormatChoice, 3> kFormats{{
    {ExportFormat::kCsv, "optCSV", "&CSV", TrMark("A table for a spreadsheet")},
    {ExportFormat::kXml, "optXML", "X&ML", TrMark("A document with its stylesheet beside it")},
    {ExportFormat::kHtml, "optHTML", "HTM&L",
     TrMark("One page for a browser that needs nothing else")},
}};

// Texts that the caption table lacks, by label.
constexpr std::array<std::pair<const char*, std::string_view>, 4> kTexts{{
    {"lblFName", TrMark("File &Name")},
    {"lblFPath", TrMark("File P&ath")},
    {"lblFormat", TrMark("File Format")},
    {"Label4",
     "Note: - Data will be formatted in same format as the Data Group selection in the "
     "Batched/Fed Tab."},
}};

}  // namespace

ExportPage::ExportPage(Services& services, const DatabaseCommands& databases,
                       const StyleSheets& style_sheets, HistoryPage& history,
                       std::function<void()> configure_import_columns)
    : services_(services),
      databases_(databases),
      history_(history),
      configure_import_columns_(std::move(configure_import_columns)),
      tab_(services, style_sheets, *this),
      txt_f_name_(new FilteredEdit(
          [](std::string_view, int key) { return ExportPresenter::KeyPressInFName(key); },
          static_cast<int>(kLongestExportName), this)),
      txt_f_path_(new QLineEdit(this)),
      cmd_browse_(AddButton("cmdBrowse", QTr("&Browse"), QTr("Choose the folder of the file"))),
      formats_(new QButtonGroup(this)),
      cmd_export_(AddButton("cmdExport", QTr("Ex&port"), QTr("Write the data group to the file"))),
      cmd_reset_(AddButton("cmdReset", QTr("&Reset"), QTr("Clear the name and the path"))),
      lbl_export_(AddLabel(*this, "lblExport", kExportingCaption)),
      lbl_data_group_(AddLabel(*this, "lblDataGroup")),
      prg_export_(new QProgressBar(this)) {
  setObjectName(QStringLiteral("pageExport"));
  txt_f_name_->setObjectName(QStringLiteral("txtFName"));
  txt_f_name_->Explain(
      [](std::string_view text, int /*key*/) { return ExportPresenter::KeyRefusalInFName(text); });
  txt_f_name_->setAccessibleName(QTr("File Name"));
  txt_f_path_->setObjectName(QStringLiteral("txtFPath"));
  txt_f_path_->setAccessibleName(QTr("File Path"));
  prg_export_->setObjectName(QStringLiteral("prgExport"));
  prg_export_->setAccessibleName(QTr("Progress of the export"));
  LayOut();
  Connect();
  ExportChanged();
}

QPushButton* ExportPage::AddButton(const char* name, const QString& caption,
                                   const QString& meaning) {
  auto* const button = new QPushButton(caption, this);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(meaning);
  return button;
}

void ExportPage::LayOut() {
  auto* const grid = new QGridLayout;
  grid->setHorizontalSpacing(kSpacing);
  grid->setVerticalSpacing(kSpacing);
  int row = 0;
  for (const auto& [name, field] : {std::pair<const char*, QLineEdit*>{"lblFName", txt_f_name_},
                                    std::pair<const char*, QLineEdit*>{"lblFPath", txt_f_path_}}) {
    QLabel* const label = AddLabel(*this, name);
    label->setBuddy(field);
    field->setMinimumWidth(kFieldWidth);
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row++, 1);
  }
  grid->addWidget(cmd_browse_, 1, 2);
  grid->addWidget(AddLabel(*this, "lblFormat"), row, 0);
  grid->addWidget(MakeFormats(), row, 1);
  grid->setColumnStretch(3, 1);
  auto* const note = AddLabel(*this, "Label4");
  note->setWordWrap(true);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  column->addLayout(grid);
  column->addWidget(note);
  column->addLayout(LayOutButtons());
  column->addWidget(MakeProgress(), 0, Qt::AlignLeft);
  column->addStretch();
}

QWidget* ExportPage::MakeFormats() {
  auto* const frame = new QWidget(this);
  frame->setObjectName(QStringLiteral("Frame1"));
  frame->setAccessibleName(QTr("File Format"));
  auto* const row = new QHBoxLayout(frame);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kGroupSpacing);
  for (const FormatChoice& choice : kFormats) {
    auto* const button = new QRadioButton(QString::fromLatin1(choice.caption), frame);
    button->setObjectName(QString::fromLatin1(choice.name));
    button->setToolTip(QTr(choice.meaning));
    button->setAccessibleDescription(QTr(choice.meaning));
    formats_->addButton(button, static_cast<int>(choice.format));
    row->addWidget(button);
  }
  row->addStretch();
  return frame;
}

QLayout* ExportPage::LayOutButtons() {
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(cmd_export_);
  row->addWidget(cmd_reset_);
  row->addStretch();
  return row;
}

QWidget* ExportPage::MakeProgress() {
  progress_ = new QWidget(this);
  progress_->setMinimumWidth(kFieldWidth);
  auto* const words = new QHBoxLayout;
  words->setSpacing(kSpacing);
  words->addWidget(lbl_export_);
  words->addWidget(lbl_data_group_);
  words->addStretch();
  auto* const column = new QVBoxLayout(progress_);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addLayout(words);
  column->addWidget(prg_export_);
  return progress_;
}

void ExportPage::Connect() {
  connect(txt_f_name_, &QLineEdit::textChanged, this,
          [this](const QString& text) { tab_.SetFName(text.toStdString()); });
  connect(txt_f_name_, &FilteredEdit::Refused, this,
          [this] { BeepIfEnabled(services_.op, services_.settings); });
  connect(txt_f_path_, &QLineEdit::textChanged, this,
          [this](const QString& text) { tab_.SetFPath(text.toStdString()); });
  connect(formats_, &QButtonGroup::idClicked, this,
          [this](int format) { tab_.SetFormat(static_cast<ExportFormat>(format)); });
  connect(cmd_browse_, &QPushButton::clicked, this,
          [this] { Run([this] { tab_.ClickBrowse(); }); });
  connect(cmd_export_, &QPushButton::clicked, this,
          [this] { Run([this] { tab_.ClickExport(); }); });
  connect(cmd_reset_, &QPushButton::clicked, this, [this] { Run([this] { tab_.ClickReset(); }); });
}

void ExportPage::Run(const std::function<void()>& flow) {
  RunReported(services_.op, {.title = kExportTitle}, flow);
}

void ExportPage::Prepare() {
  for (const auto& [name, text] : kTexts) {
    findChild<QLabel*>(QLatin1String(name))->setText(QTr(text));
  }
  Run([this] { tab_.EnterExportTab(); });
}

void ExportPage::FocusControl(std::string_view name) {
  auto* const control = findChild<QWidget*>(ToQString(name));
  if (control != nullptr && control->isEnabled() && control->isVisible()) {
    control->setFocus();
  }
}

void ExportPage::ExportChanged() {
  const ExportForm& form = tab_.Form();
  for (const auto& [field, text] :
       {std::pair<QLineEdit*, QString>{txt_f_name_, ToQString(form.txt_f_name)},
        std::pair<QLineEdit*, QString>{txt_f_path_, ToQString(form.txt_f_path)}}) {
    if (field->text() != text) {
      field->setText(text);
    }
  }
  formats_->button(static_cast<int>(form.format))->setChecked(true);
  lbl_data_group_->setText(ToQString(form.lbl_data_group));
  prg_export_->setMaximum(form.prg_export_max);
  prg_export_->setValue(form.prg_export);
  for (QWidget* const part :
       {static_cast<QWidget*>(lbl_export_), static_cast<QWidget*>(lbl_data_group_),
        static_cast<QWidget*>(prg_export_)}) {
    part->setVisible(form.progress_visible);
  }
}

}  // namespace vrx
