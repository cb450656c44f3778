#include "desktop/transfer/import_page.h"

#include <QApplication>
#include <QFont>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <utility>

#include "base/encoding.h"
#include "database/connection.h"
#include "desktop/app/captions.h"
#include "desktop/dialogs/about_and_splash.h"
#include "presenter/report_failure.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

// Specified as 12582911 and 12703664, with blue in the highest byte.
constexpr QColor kOddRow{255, 255, 191};
constexpr QColor kEvenRow{176, 215, 193};

constexpr int kMostCharacters = 40;  // of a column's opening width
constexpr std::size_t kSampleRows = 500;
constexpr qsizetype kMostDrawn = 256;  // characters of a cell

// Text layout takes time in proportion to the length, and a damaged file may have fields of 60,000
// characters.
class ImportCells : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  [[nodiscard]] QString displayText(const QVariant& value,
                                    const QLocale& /*locale*/) const override {
    const QString text = value.toString();
    return text.size() > kMostDrawn ? text.left(kMostDrawn) + QChar(0x2026) : text;
  }
};

QFont GridFont() {
  QFont font(QStringLiteral("Courier New"));
  font.setStyleHint(QFont::Monospace);
  return font;
}

bool IsText(int column) {
  return column == kImportedType || column == kImportedTime || column == kImportedDate;
}

constexpr std::string_view kStoreMeaning =
    TrMark("Store the records in the open transaction database");
constexpr std::string_view kUndoMeaning = TrMark(
    "Take the records of the last store out of the open transaction database; possible "
    "until the next store");
constexpr int kProgressCaption = 1064;
constexpr int kTransactionFileCaption = 1094;
constexpr int kUnitsCaption = 1095;
constexpr int kTransactionsCaption = 1096;
constexpr int kRecordsCaption = 1099;
constexpr int kImportBarWidth = 200;         // where there is room
constexpr int kSmallestImportBarWidth = 60;  // beside a long message
constexpr int kFilenameStretch = 100;        // it takes room before the row has any to spare

// Reserves space for that many characters, so that nothing moves when the text appears.
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

ImportModel::ImportModel(const ImportPresenter& session, QObject* parent)
    : QAbstractTableModel(parent), session_(session) {}

void ImportModel::Reset() {
  beginResetModel();
  endResetModel();
}

int ImportModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : session_.Form().grd_import_rows;
}

int ImportModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kImportColumns;
}

// Ctrl+C asks for the current cell even if there is none.
QVariant ImportModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) {
    return {};
  }
  const int column = index.column() + 1;
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(Windows1252ToUtf8(
          session_.File().Imported().Cell(static_cast<std::size_t>(index.row()) + 1, column)));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter |
                                 (IsText(column) ? Qt::AlignLeft : Qt::AlignRight));
    case Qt::BackgroundRole:
      return index.row() % 2 == 0 ? kOddRow : kEvenRow;
    case Qt::ForegroundRole:
      return QColor(Qt::black);  // both stripes are light, in a dark theme too
    default:
      return {};
  }
}

QVariant ImportModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
    return {};
  }
  return ToQString(
      session_.Form().grd_import_columns.at(static_cast<std::size_t>(section)).caption);
}

int ImportModel::LongestText(int column) const {
  const ImportedData& rows = session_.File().Imported();
  const std::size_t count = rows.FilledCount();
  const std::size_t samples = std::min(count, kSampleRows);
  std::size_t longest = 0;
  for (std::size_t i = 0; i < samples; ++i) {
    const std::size_t row = samples == 1 ? 1 : 1 + i * (count - 1) / (samples - 1);
    longest = std::max(longest, rows.Cell(row, column).size());
  }
  return static_cast<int>(longest);
}

ImportGrid::ImportGrid(const ImportPresenter& session, QWidget* parent)
    : QTableView(parent), session_(session), model_(new ImportModel(session, this)) {
  setObjectName(QStringLiteral("grdIMPORT"));
  setAccessibleName(QTr("Imported transactions"));
  setFont(GridFont());
  setModel(model_);
  setItemDelegate(new ImportCells(this));
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kSpacing / 2);
  horizontalHeader()->setHighlightSections(false);
}

void ImportGrid::ShowImport() {
  model_->Reset();
  ShowColumns();
  FitColumns();
}

void ImportGrid::ShowColumns() {
  const auto& columns = session_.Form().grd_import_columns;
  for (int i = 0; i < kImportColumns; ++i) {
    setColumnHidden(i, !columns.at(static_cast<std::size_t>(i)).visible);
  }
}

// The font has a fixed width, so the longest text is the widest.
void ImportGrid::FitColumns() {
  const int character = fontMetrics().horizontalAdvance(u'0');
  const QFontMetrics header = horizontalHeader()->fontMetrics();
  for (int i = 0; i < kImportColumns; ++i) {
    const QString caption = model_->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString();
    const int text = std::min(model_->LongestText(i + 1), kMostCharacters) * character;
    least_.at(static_cast<std::size_t>(i)) =
        std::max(text, header.horizontalAdvance(caption)) + 2 * kSpacing;
  }
  FillWidth();
}

void ImportGrid::FillWidth() {
  ShareWidth(*horizontalHeader(), viewport()->width(),
             [this](int column) { return least_.at(static_cast<std::size_t>(column)); });
}

void ImportGrid::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  FillWidth();
}

bool ImportGrid::Empty() const {
  const ImportedData& rows = session_.File().Imported();
  return rows.RowCount() == 0 || !rows.Filled(1);
}

void ImportGrid::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (Empty()) {
    QPainter painter(viewport());
    painter.setFont(QApplication::font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     QTr("Import a transaction file (.QXT) to see its records here."));
  }
}

ImportPage::ImportPage(Services& services, DatabaseCommands& databases, TabFolder& tabs,
                       std::function<bool()> active_ingredients_only, QFrame& pic_import)
    : services_(services),
      databases_(databases),
      tabs_(tabs),
      active_ingredients_only_(std::move(active_ingredients_only)),
      pic_import_(pic_import),
      session_(services, *this, *this),
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
  AddFact(*row, *this, "lblTransUnits", kUnitsCaption, *lbl_trans_uom_, 2);
  AddFact(*row, *this, "lblRecordsCaption", kRecordsCaption, *lbl_records_, 5);
  AddFact(*row, *this, "lblTransactionsCaption", kTransactionsCaption, *lbl_transactions_, 4);
  row->addStretch(1);
  chk_imp_fit_page_ = new QCheckBox(QTr("Fit/&Print All Columns on Page"), this);
  chk_imp_fit_page_->setObjectName(QStringLiteral("chkImpFitPage"));
  row->addWidget(chk_imp_fit_page_);
  return row;
}

void ImportPage::FillPicImport() {
  QFrame& panel = pic_import_;
  pic_import_progress_ = new QFrame(&panel);
  pic_import_progress_->setObjectName(QStringLiteral("picImportProgress"));
  KeepPlace(*pic_import_progress_);
  lbl_progress_msg_ = new ElidedLabel(pic_import_progress_);
  lbl_progress_msg_->setObjectName(QStringLiteral("lblProgressMsg"));
  lbl_progress_msg_->setAccessibleDescription(QTr("Progress of the import"));
  prg_import_ = new QProgressBar(pic_import_progress_);
  prg_import_->setObjectName(QStringLiteral("prgImport"));
  prg_import_->setAccessibleName(QTr("Progress of the import"));
  prg_import_->setMinimumWidth(kSmallestImportBarWidth);
  prg_import_->setMaximumWidth(kImportBarWidth);
  prg_import_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  auto* const progress = new QHBoxLayout(pic_import_progress_);
  progress->setContentsMargins(0, 0, 0, 0);
  progress->setSpacing(kSpacing);
  progress->addWidget(AddLabel(*pic_import_progress_, "lblProgress", kProgressCaption));
  progress->addWidget(prg_import_, 1);
  progress->addWidget(lbl_progress_msg_);

  auto* const row = panel.layout();
  row->addWidget(pic_import_progress_);
  const auto add = [&](const char* name, const QString& caption, const QString& meaning) {
    auto* const button = new QPushButton(caption, &panel);
    button->setObjectName(QString::fromLatin1(name));
    button->setToolTip(meaning);
    row->addWidget(button);
    return button;
  };
  cmd_import_file_ =
      add("cmdImportFile", QTr("&Import"), QTr("Choose a transaction file and show its records"));
  cmd_import_undo_ = add("cmdImportUndo", QTr("&Undo the Last Store"), QTr(kUndoMeaning));
  cmd_import_store_ = add("cmdImportStore", QTr("&Store"), QTr(kStoreMeaning));
  connect(cmd_import_file_, &QPushButton::clicked, this, [this] { ImportXFile(); });
  connect(cmd_import_store_, &QPushButton::clicked, this, [this] { Write([this] { Store(); }); });
  connect(cmd_import_undo_, &QPushButton::clicked, this, [this] { Write([this] { Undo(); }); });
}

void ImportPage::Write(const std::function<void()>& flow) {
  Q_EMIT WriteBegins();
  Run(flow);
  Q_EMIT WriteEnds();
}

void ImportPage::Store() {
  const StoreOutcome outcome = session_.ClickImportStore();
  const std::string summary = StoredSummary(outcome);
  if (!summary.empty()) {
    Q_EMIT Done(ToQString(summary), static_cast<std::int64_t>(outcome.stored));
  }
  if (outcome.complete && session_.ImportNext()) {
    Q_EMIT WentOn(ToQString(summary) +
                  QTr(" Next: %1.").arg(ToQString(session_.File().FileName())));
  }
}

void ImportPage::Undo() {
  if (session_.ClickImportUndo()) {
    Q_EMIT Done(lbl_progress_msg_->text(), 0);
  }
}

void ImportPage::SetTabOrder() {
  setTabOrder(cmd_import_file_, chk_imp_fit_page_);
  setTabOrder(chk_imp_fit_page_, grd_import_);
  setTabOrder(grd_import_, cmd_import_store_);
  setTabOrder(cmd_import_store_, cmd_import_undo_);
}

void ImportPage::ImportXFile() {
  Run([this] { session_.ImportXFile(); });
}

void ImportPage::ImportFile(const std::string& path) {
  Run([&] {
    session_.ImportFile({.path = path, .title = std::filesystem::path(path).filename()});
  });
}

void ImportPage::ImportFiles(const std::vector<FileChoice>& files) {
  Run([&] { session_.ImportFiles(files); });
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
  RunReported(services_.op, {.title = "Import Error"}, flow);
}

std::vector<IngredientRecord> ImportPage::GridIngredients() {
  const BoundDatabase& bound = databases_.Bound(DatabaseKind::kRecipe);
  if (bound.blank) {
    return {};
  }
  std::vector<IngredientRecord> records =
      WithDatabaseErrors(*bound.connection, [&] { return ReadIngredients(*bound.connection); });
  if (active_ingredients_only_()) {
    std::erase_if(records,
                  [](const IngredientRecord& record) { return record.description.empty(); });
  }
  return records;
}

void ImportPage::FocusControl(std::string_view name) {
  auto* const control = pic_import_.findChild<QWidget*>(ToQString(name));
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
    // The database that is being bound; Databases() has the one before until all views have it.
    OpenDatabases next = Databases();
    next.trans_db_path = database.blank ? std::filesystem::path() : database.path;
    next.trans_db_read_only_note = database.read_only_note;
    session_.UpdateUndo(next);
  }
}

void ImportPage::EnableStore() {
  const bool read_only = !read_only_note_.isEmpty();
  cmd_import_store_->setEnabled(session_.Form().cmd_import_store_enabled && !read_only);
  cmd_import_store_->setToolTip(read_only ? read_only_note_
                                : session_.Form().cmd_import_store_enabled
                                    ? QTr(kStoreMeaning)
                                    : QTr("Import a transaction file first"));
  cmd_import_undo_->setEnabled(session_.Form().cmd_import_undo_enabled);
  cmd_import_undo_->setToolTip(
      session_.Form().cmd_import_undo_enabled
          ? QTr(kUndoMeaning)
          : QTr("There is no store to undo in an open transaction database"));
}

// No events run during the import, so repaint immediately.
void ImportPage::SetProgressMessage(std::string_view text) {
  const QString message = ToQString(text);
  if (message == lbl_progress_msg_->text()) {
    return;  // repeated for each batch of a file
  }
  lbl_progress_msg_->setText(message);
  lbl_progress_msg_->repaint();
}

// A bar without a range would only show that something is running.
void ImportPage::SetProgressRange(int maximum) {
  prg_import_->setRange(0, std::max(maximum, 1));
  prg_import_->setValue(0);
}

void ImportPage::SetProgressValue(int value) { prg_import_->setValue(value); }

}  // namespace vrx
