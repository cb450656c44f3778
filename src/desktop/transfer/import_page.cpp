#include "desktop/transfer/import_page.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>

#include "presenter/tell_failure.h"
#include "widgets/labels.h"
#include "widgets/main_window_layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr const char* kStoreMeaning = "Store the records in the open transaction database";
constexpr int kProgressCaption = 1064;
constexpr int kTransactionFileCaption = 1094;
constexpr int kUnitsCaption = 1095;
constexpr int kTransactionsCaption = 1096;
constexpr int kRecordsCaption = 1099;
constexpr int kBarWidth = 200;
constexpr int kFilenameStretch = 100;  // it takes room before the row has any to spare

void KeepPlace(QWidget& control) {
  QSizePolicy policy = control.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  control.setSizePolicy(policy);
}

// What is told has room for so many characters, so that nothing moves when it is.
void AddFact(QHBoxLayout& row, QWidget& page, const char* caption_name, int caption, QLabel& fact,
             int characters) {
  row.addWidget(AddLabel(page, caption_name, caption));
  MakeDemiBold(fact);
  fact.setMinimumWidth(fact.fontMetrics().averageCharWidth() * characters);
  KeepPlace(fact);
  row.addWidget(&fact);
  row.addSpacing(kSpacing);
}

void Show(QLabel& label, const ImportLabel& held) {
  label.setText(ToQString(held.caption));
  label.setVisible(held.visible);
}

}  // namespace

ImportPage::ImportPage(const Ports& ports)
    : ports_(ports),
      session_({.op = ports.op,
                .files = ports.files,
                .system = ports.system,
                .settings = ports.settings,
                .identity = ports.identity,
                .progress = *this,
                .host = *this}),
      grd_import_(new ImportGrid(session_, this)) {
  setObjectName(QStringLiteral("pageImport"));
  LayOut();
  FillPicImport();
  ImportChanged();
}

void ImportPage::LayOut() {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addLayout(LayOutFacts());
  column->addWidget(grd_import_, 1);
}

QLayout* ImportPage::LayOutFacts() {
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  lbl_trans_filename_ = new ElidedLabel(this);
  lbl_trans_filename_->setObjectName(QStringLiteral("lblTransFilename"));
  lbl_trans_uom_ = AddLabel(*this, "lblTransUoM");
  lbl_records_ = AddLabel(*this, "lblRecords");
  lbl_transactions_ = AddLabel(*this, "lblTransactions");
  AddFact(*row, *this, "lblTransFile", kTransactionFileCaption, *lbl_trans_filename_, 8);
  lbl_trans_filename_->setMaximumWidth(3 * lbl_trans_filename_->minimumWidth());
  row->setStretchFactor(lbl_trans_filename_, kFilenameStretch);
  AddFact(*row, *this, "lblTransUnits", kUnitsCaption, *lbl_trans_uom_, 4);
  AddFact(*row, *this, "lblRecordsCaption", kRecordsCaption, *lbl_records_, 6);
  AddFact(*row, *this, "lblTransactionsCaption", kTransactionsCaption, *lbl_transactions_, 6);
  row->addStretch(1);
  chk_imp_fit_page_ = new QCheckBox(QStringLiteral("Fit/&Print All Columns on Page"), this);
  chk_imp_fit_page_->setObjectName(QStringLiteral("chkImpFitPage"));
  row->addWidget(chk_imp_fit_page_);
  return row;
}

void ImportPage::FillPicImport() {
  QFrame& panel = ports_.pic_import;
  pic_import_progress_ = new QFrame(&panel);
  pic_import_progress_->setObjectName(QStringLiteral("picImportProgress"));
  KeepPlace(*pic_import_progress_);
  lbl_progress_msg_ = new ElidedLabel(pic_import_progress_);
  lbl_progress_msg_->setObjectName(QStringLiteral("lblProgressMsg"));
  lbl_progress_msg_->setAccessibleDescription(QStringLiteral("Progress of the import"));
  prg_import_ = new QProgressBar(pic_import_progress_);
  prg_import_->setObjectName(QStringLiteral("prgImport"));
  prg_import_->setAccessibleName(QStringLiteral("Progress of the import"));
  prg_import_->setFixedWidth(kBarWidth);
  auto* const progress = new QHBoxLayout(pic_import_progress_);
  progress->setContentsMargins(0, 0, 0, 0);
  progress->setSpacing(kSpacing);
  progress->addWidget(AddLabel(*pic_import_progress_, "lblProgress", kProgressCaption));
  progress->addWidget(prg_import_);
  progress->addWidget(lbl_progress_msg_, 1);

  auto* const row = panel.layout();
  row->addWidget(pic_import_progress_);
  const auto add = [&](const char* name, const QString& caption, const QString& meaning) {
    auto* const button = new QPushButton(caption, &panel);
    button->setObjectName(QString::fromLatin1(name));
    button->setToolTip(meaning);
    row->addWidget(button);
    return button;
  };
  cmd_import_file_ = add("cmdImportFile", QStringLiteral("&Import"),
                         QStringLiteral("Choose a transaction file and show its records"));
  cmd_import_store_ =
      add("cmdImportStore", QStringLiteral("&Store"), QString::fromUtf8(kStoreMeaning));
  connect(cmd_import_file_, &QPushButton::clicked, this, [this] { ImportXFile(); });
  connect(cmd_import_store_, &QPushButton::clicked, this,
          [this] { Run([this] { session_.ClickImportStore(); }); });
}

void ImportPage::SetTabOrder() {
  setTabOrder(cmd_import_file_, chk_imp_fit_page_);
  setTabOrder(chk_imp_fit_page_, grd_import_);
  setTabOrder(grd_import_, cmd_import_store_);
}

void ImportPage::ImportXFile() {
  Run([this] { session_.ImportXFile(); });
}

void ImportPage::ConfigureImportColumns() {
  Run([this] { session_.ConfigureImportColumns(); });
}

void ImportPage::Prepare() {
  Run([this] { session_.EnterImportTab(); });
}

void ImportPage::StripFocused() {
  Run([this] { session_.ShowOrHideProgress(); });
}

void ImportPage::Run(const std::function<void()>& flow) {
  try {
    flow();
  } catch (const std::exception& failure) {
    TellFailure(ports_.op, "Import Error", failure);
  }
}

void ImportPage::FocusControl(std::string_view name) {
  auto* const control = ports_.pic_import.findChild<QWidget*>(ToQString(name));
  if (control != nullptr && control->isEnabled() && control->isVisible()) {
    control->setFocus();
  }
}

void ImportPage::ImportChanged() {
  const ImportForm& form = session_.Form();
  vrx::Show(*lbl_trans_filename_, form.lbl_trans_filename);
  vrx::Show(*lbl_trans_uom_, form.lbl_trans_uom);
  vrx::Show(*lbl_records_, form.lbl_records);
  vrx::Show(*lbl_transactions_, form.lbl_transactions);
  EnableStore();
  pic_import_progress_->setVisible(form.pic_import_progress_visible);
  grd_import_->setVisible(form.grd_import_visible);
  grd_import_->ShowImport();
}

void ImportPage::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  if (kind == DatabaseKind::kTransaction) {
    read_only_note_ = ToQString(database.read_only_note);
    EnableStore();
  }
}

void ImportPage::EnableStore() {
  const bool read_only = !read_only_note_.isEmpty();
  cmd_import_store_->setEnabled(session_.Form().cmd_import_store_enabled && !read_only);
  cmd_import_store_->setToolTip(read_only ? read_only_note_ : QString::fromUtf8(kStoreMeaning));
}

// Nothing lets events run meanwhile: what is told is drawn at once.
void ImportPage::SetProgressMessage(std::string_view text) {
  const QString message = ToQString(text);
  if (message == lbl_progress_msg_->text()) {
    return;  // repeated for each batch of a file
  }
  lbl_progress_msg_->setText(message);
  lbl_progress_msg_->repaint();
}

// A bar without a range would only tell that something goes on.
void ImportPage::SetProgressRange(int maximum) {
  prg_import_->setRange(0, std::max(maximum, 1));
  prg_import_->setValue(0);
}

void ImportPage::SetProgressValue(int value) { prg_import_->setValue(value); }

}  // namespace vrx
