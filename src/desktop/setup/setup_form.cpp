#include "desktop/setup/setup_form.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QVariant>
#include <utility>

#include "base/encoding.h"
#include "base/files.h"
#include "base/translation.h"
#include "desktop/app/captions.h"
#include "desktop/dialogs/about_and_splash.h"
#include "desktop/setup/setup_limits_tab.h"
#include "desktop/setup/setup_sections.h"
#include "feed/key_filters.h"
#include "presenter/setup.h"
#include "widgets/fields.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

enum SetupTab : int {
  kDatabaseTab,
  kApplicationTab,
  kIniFileTab,
  kTransactionFileTab,
  kOptionsTab,
  kConnectionsTab,
  kModuleTab,
  kLimitsTab,
};

constexpr QSize kSetupSize{800, 480};
constexpr int kSetupCaption = 1038;
constexpr int kRecipeDatabaseCaption = 1070;
constexpr int kTransactionDatabaseCaption = 1071;
constexpr int kFilenameCaption = 1097;
constexpr int kContentsCaption = 1098;
constexpr int kIniInfoCaption = 1117;
constexpr int kToleranceCaption = 2004;
constexpr int kTolerancePercentCaption = 2005;

QVBoxLayout* TabLayout(QWidget& page) {
  auto* const column = new QVBoxLayout(&page);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  return column;
}

QLineEdit* MakePath(const char* name, const QString& meaning) {
  auto* const path = new QLineEdit;
  path->setObjectName(QString::fromLatin1(name));
  path->setAccessibleName(meaning);
  path->setReadOnly(true);
  return path;
}

}  // namespace

SetupForm::SetupForm(Services& services, KRMCOMM& krm, SetupFacts facts, QWidget* owner)
    : QDialog(owner),
      services_(services),
      facts_(std::move(facts)),
      tab_setup_folder_(new QTabWidget(this)),
      module_tab_(new SetupModuleTab(services, krm)),
      limits_tab_(new SetupLimitsTab),
      cmd_ok_(new QPushButton(QTr("OK"), this)) {
  setObjectName(QStringLiteral("SETUP"));
  SetTag(*this, kSetupCaption);
  tab_setup_folder_->setObjectName(QStringLiteral("tabSetupFolder"));
  tab_setup_folder_->setAccessibleName(QTr("Setup"));
  cmd_ok_->setObjectName(QStringLiteral("cmdOK"));
  cmd_ok_->setDefault(true);

  tab_setup_folder_->addTab(MakeDatabaseTab(), QTr("Database"));
  tab_setup_folder_->addTab(MakeApplicationTab(), QTr("Application"));
  tab_setup_folder_->addTab(MakeFileTab("frmOptIniPath", txt_ini_path_, "txtIniPath",
                                        txt_ini_file_data_, "txtIniFileData"),
                            QTr("INI File"));
  QWidget& ini_page = *tab_setup_folder_->widget(kIniFileTab);
  ini_page.layout()->addWidget(AddLabel(ini_page, "lblIniInfo", kIniInfoCaption));
  tab_setup_folder_->addTab(MakeFileTab("frmTransFile", txt_qxt_path_, "txtQxtPath",
                                        txt_qxt_file_data_, "txtQxtFileData"),
                            QTr("Transaction File"));
  tab_setup_folder_->addTab(MakeOptionsTab(), QTr("Options"));
  tab_setup_folder_->addTab(MakeConnectionsTab(), QTr("Data Connections"));
  tab_setup_folder_->addTab(module_tab_, QTr("KRM Setup"));
  tab_setup_folder_->addTab(limits_tab_, QTr("Insight"));

  auto* const column = new QVBoxLayout(this);
  column->setSpacing(kSpacing);
  column->addWidget(MakeScrollArea(tab_setup_folder_), 1);
  column->addWidget(cmd_ok_, 0, Qt::AlignRight);

  ApplyCaptionTable(*this);
  ShowHeadings(*this);
  LoadControls();
  FillTab(kDatabaseTab);
  for (TextView* const view : findChildren<TextView*>()) {
    view->PassFocusTo(*cmd_ok_);
  }
  connect(tab_setup_folder_, &QTabWidget::currentChanged, this, [this](int tab) { FillTab(tab); });
  connect(cmd_ok_, &QPushButton::clicked, this, [this] { ApplyControls(); });
  const QSize around(4 * kSpacing, cmd_ok_->sizeHint().height() + 5 * kSpacing);
  resize(FormSize(*this, *tab_setup_folder_, around, kSetupSize));
}

QWidget* SetupForm::MakeDatabaseTab() {
  auto* const page = new QWidget;
  QVBoxLayout* const column = TabLayout(*page);
  const SetupSection paths = AddSection(*column, "frmPaths", QTr("Paths"));
  txt_recipe_path_ = MakePath("txtRecipePath", QTr("Recipe Database"));
  txt_transaction_path_ = MakePath("txtTransactionPath", QTr("Transaction Database"));
  auto* const rows = new QFormLayout;
  rows->setSpacing(kSpacing);
  rows->addRow(AddLabel(*paths.frame, "lblRecipePath", kRecipeDatabaseCaption), txt_recipe_path_);
  rows->addRow(AddLabel(*paths.frame, "lblTransactionPath", kTransactionDatabaseCaption),
               txt_transaction_path_);
  paths.content->addLayout(rows);

  const SetupSection units = AddSection(*column, "frmWeightUnits", QTr("Weight Units"));
  lst_system_uom_ = new ChoiceList;
  lst_system_uom_->setObjectName(QStringLiteral("lstSystemUoM"));
  lst_system_uom_->setAccessibleName(QTr("Weight Units"));
  for (const std::string_view unit : kSystemUnitsList) {
    lst_system_uom_->addItem(ToQString(unit));
  }
  units.content->addWidget(lst_system_uom_, 0, Qt::AlignLeft);
  column->addStretch();
  return page;
}

QWidget* SetupForm::MakeApplicationTab() {
  auto* const page = new QWidget;
  QVBoxLayout* const column = TabLayout(*page);
  txt_app_path_ = MakePath("txtAppPath", QTr("Application"));
  AddSection(*column, "frmApp", QTr("Application")).content->addWidget(txt_app_path_);
  txt_associations_ = new TextView("txtAssociations", QTr("Document Viewers"), nullptr);
  txt_associations_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  AddSection(*column, "frmAssociation", QTr("Document Viewers"), 1)
      .content->addWidget(txt_associations_);
  return page;
}

QWidget* SetupForm::MakeFileTab(const char* frame_name, QLineEdit*& path, const char* path_name,
                                TextView*& contents, const char* data_name) {
  auto* const page = new QWidget;
  page->setObjectName(QString::fromLatin1(frame_name));
  QVBoxLayout* const column = TabLayout(*page);
  column->setSpacing(kSpacing);
  column->addWidget(AddLabel(*page, "lblFilename", kFilenameCaption));
  path = MakePath(path_name, QTr("Filename"));
  column->addWidget(path);
  column->addWidget(AddLabel(*page, "lblContents", kContentsCaption));
  contents = new TextView(data_name, QTr("File Contents"), page);
  column->addWidget(contents, 1);
  return page;
}

QWidget* SetupForm::MakeOptionsTab() {
  auto* const page = new QWidget;
  page->setObjectName(QStringLiteral("frmDisplaySettings"));
  QVBoxLayout* const column = TabLayout(*page);
  column->setSpacing(kSpacing);
  for (std::size_t i = 0; i < kSetupOptionCount; ++i) {
    const SetupOption& option = SetupOptions().at(i);
    options_.at(i) = new QCheckBox(QTr(option.caption), page);
    options_.at(i)->setObjectName(ToQString(option.control));
    column->addWidget(options_.at(i));
  }
  column->addSpacing(kSpacing);
  column->addLayout(MakeToleranceRow(*page));
  column->addStretch();
  return page;
}

QBoxLayout* SetupForm::MakeToleranceRow(QWidget& page) {
  constexpr std::size_t kMostCharacters = 6;
  txt_difference_tolerance_ =
      MakeBox([](std::string_view, int key) { return FilterDecimalKey(key); }, kMostCharacters,
              "txtDifferenceTolerance", &page);
  txt_difference_tolerance_->setAccessibleName(QTr("Tolerance of the differences, in percent"));
  txt_difference_tolerance_->setAlignment(Qt::AlignRight);
  txt_difference_tolerance_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  txt_difference_tolerance_->Explain(
      [](std::string_view, int) { return Tr("Only digits and a point"); },
      FilteredEdit::Takes::kNumber);
  QLabel* const caption = AddLabel(page, "lblDifferenceTolerance", kToleranceCaption);
  caption->setBuddy(txt_difference_tolerance_);
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(caption);
  row->addWidget(txt_difference_tolerance_);
  row->addWidget(AddLabel(page, "lblDifferencePercent", kTolerancePercentCaption));
  row->addStretch();
  return row;
}

QWidget* SetupForm::MakeConnectionsTab() {
  auto* const page = new QWidget;
  QVBoxLayout* const column = TabLayout(*page);
  const auto add = [&](const char* frame, const char* name, const QString& caption) {
    auto* const view = new TextView(name, caption, nullptr);
    AddSection(*column, frame, caption, 1).content->addWidget(view);
    return view;
  };
  txt_rec_ctrl_ = add("frm1", "txtRecCtrl", QTr("Recipe Controls"));
  txt_trans_ctrl_ = add("frm2", "txtTransCtrl", QTr("Transaction Controls"));
  return page;
}

void SetupForm::LoadControls() {
  const SetupControls controls = LoadSetupControls(services_.settings);
  lst_system_uom_->setCurrentIndex(controls.system_units);
  module_tab_->Show(controls);
  txt_associations_->ShowText(AssociationsText(services_.system));
  for (std::size_t i = 0; i < kSetupOptionCount; ++i) {
    options_.at(i)->setChecked(controls.options.at(i));
  }
  txt_difference_tolerance_->setText(ToQString(controls.tolerance));
  limits_tab_->Show(controls.limits);
}

void SetupForm::FillTab(int tab) {
  switch (tab) {
    case kDatabaseTab:
      txt_recipe_path_->setText(ToQString(facts_.recipe_path));
      txt_transaction_path_->setText(ToQString(facts_.transaction_path));
      break;
    case kApplicationTab:
      txt_app_path_->setText(ToQString(ApplicationPath(services_.system)));
      break;
    case kIniFileTab:
      FillIniFile();
      break;
    case kTransactionFileTab:
      txt_qxt_path_->setText(ToQString(facts_.qxt_path));
      txt_qxt_file_data_->ShowText(TransactionFileText(Windows1252ToUtf8(facts_.qxt_text)));
      break;
    case kConnectionsTab:
      txt_rec_ctrl_->ShowText(facts_.connections.recipe_controls);
      txt_trans_ctrl_->ShowText(facts_.connections.transaction_controls);
      break;
    case kModuleTab:
      module_tab_->Survey();
      break;
    default:
      break;
  }
}

void SetupForm::FillIniFile() {
  txt_ini_path_->setText(ToQString(services_.folder.IniFilePath().string()));
  try {
    txt_ini_file_data_->ShowText(IniFileText(services_.folder.IniFilePath()));
  } catch (const FileError& failure) {
    txt_ini_file_data_->ShowText(failure.what());
  }
}

void SetupForm::ApplyControls() {
  SetupControls controls;
  controls.tolerance = txt_difference_tolerance_->Text();
  if (!IsToleranceUsable(controls.tolerance, services_.op)) {
    tab_setup_folder_->setCurrentIndex(kOptionsTab);
    txt_difference_tolerance_->setFocus();
    txt_difference_tolerance_->selectAll();
    return;
  }
  controls.limits = limits_tab_->Typed();
  if (const auto limit = UnusableLimit(controls.limits, services_.op)) {
    tab_setup_folder_->setCurrentIndex(kLimitsTab);
    limits_tab_->GoTo(*limit);
    return;
  }
  controls.system_units = lst_system_uom_->currentIndex();
  module_tab_->Take(controls);
  for (std::size_t i = 0; i < kSetupOptionCount; ++i) {
    controls.options.at(i) = options_.at(i)->isChecked();
  }
  ApplySetupControls(controls, facts_.recipe_unit, facts_.transaction_unit, services_.settings,
                     services_.op);
  accept();
}

void SetupForm::ShowPort() {
  tab_setup_folder_->setCurrentIndex(kModuleTab);
  module_tab_->setFocus();
}

void SetupForm::done(int result) {
  module_tab_->Abandon();
  QDialog::done(result);
}

// Ctrl+Tab switches to another tab also from the button below them.
void SetupForm::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::NextChild) || event->matches(QKeySequence::PreviousChild)) {
    QCoreApplication::sendEvent(tab_setup_folder_, event);
    return;
  }
  QDialog::keyPressEvent(event);
}

// Runs when the form is visible, because a modal form then prevents opening another one.
void SetupForm::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (!std::exchange(link_reset_, true)) {
    QTimer::singleShot(0, this, [this] { module_tab_->ResetLink(); });
  }
}

}  // namespace vrx
