#include "desktop/central/central_dialog.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPalette>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/app/captions.h"
#include "widgets/drawing.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr QSize kCentralSize{700, 540};
constexpr int kSteps = 1000;

enum SourceColumn : int { kFileColumn, kRowsColumn, kUnitsColumn, kPushedColumn };

QLineEdit* AddField(QWidget& form, const char* name, const QString& hint) {
  auto* const field = new QLineEdit(&form);
  field->setObjectName(QString::fromLatin1(name));
  field->setPlaceholderText(hint);
  return field;
}

QProgressBar* AddBar(QWidget& page, const char* name, const QString& meaning) {
  auto* const bar = new QProgressBar(&page);
  bar->setObjectName(QString::fromLatin1(name));
  bar->setAccessibleName(meaning);
  KeepPlace(*bar);
  return bar;
}

// What is ended by a button of its own, not with the form.
bool MakesFile(CentralTask task) {
  return task == CentralTask::kRestore || task == CentralTask::kFetch;
}

void ShowProgress(QProgressBar& bar, bool running, const BackgroundWork::Progress& progress) {
  const bool known = progress.total > 0;
  bar.setRange(0, known || !running ? kSteps : 0);
  bar.setValue(known ? static_cast<int>(progress.done * kSteps / progress.total) : 0);
  bar.setVisible(running);
}

}  // namespace

QString LocalTimeText(const std::string& iso) {
  const QDateTime time = QDateTime::fromString(ToQString(iso), Qt::ISODate).toLocalTime();
  return time.isValid() ? time.toString(QStringLiteral("M/d/yyyy h:mm AP")) : QString();
}

void ShowNote(QLabel& label, const CentralNote& note) {
  label.setText(ToQString(note.text));
  QPalette colors = label.parentWidget()->palette();
  if (note.failed) {
    colors.setColor(QPalette::WindowText,
                    StatusTextColor(StatusColor::kRed, colors.color(QPalette::Window)));
  }
  label.setPalette(colors);
}

QLabel* AddNote(QWidget& page, const char* name) {
  QLabel* const label = AddLabel(page, name);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  label->setMinimumHeight(2 * label->fontMetrics().lineSpacing());
  return label;
}

QPushButton* AddFormButton(QWidget& page, const char* name, const QString& caption,
                           const QString& meaning) {
  auto* const button = new QPushButton(caption, &page);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(meaning);
  button->setAutoDefault(false);
  return button;
}

QVBoxLayout* LayOutPage(QWidget& page) {
  auto* const column = new QVBoxLayout(&page);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  return column;
}

QTableWidget* AddTable(QWidget& page, const char* name, const QString& meaning,
                       const QStringList& captions, int stretched) {
  auto* const table = new QTableWidget(0, static_cast<int>(captions.size()), &page);
  table->setObjectName(QString::fromLatin1(name));
  table->setAccessibleName(meaning);
  table->setHorizontalHeaderLabels(captions);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setSelectionMode(QAbstractItemView::SingleSelection);
  table->setTabKeyNavigation(false);
  table->setWordWrap(false);
  table->verticalHeader()->hide();
  table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + kSpacing);
  table->horizontalHeader()->setHighlightSections(false);
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table->horizontalHeader()->setSectionResizeMode(stretched, QHeaderView::Stretch);
  return table;
}

void SetCell(QTableWidget& table, int row, int column, const QString& text,
             Qt::Alignment alignment) {
  auto* const item = new QTableWidgetItem(text);
  item->setTextAlignment(alignment | Qt::AlignVCenter);
  item->setToolTip(text);
  table.setItem(row, column, item);
}

CentralDialog::CentralDialog(Services& services, CentralPush& push, const std::string& machine,
                             const std::filesystem::path& recipes, QWidget* owner)
    : QDialog(owner), services_(services), form_(services, push, machine, recipes, *this) {
  setObjectName(QStringLiteral("dlgCentral"));
  setWindowTitle(QTr("Central Database"));
  LayOut();
  connection_->setText(ToQString(form_.Settings().connection));
  yard_->setText(ToQString(form_.Settings().yard));
  automatic_->setChecked(form_.Settings().automatic);
  ConnectControls();
  CentralFormChanged();
  resize(kCentralSize.expandedTo(minimumSizeHint()));
}

void CentralDialog::LayOut() {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addLayout(LayOutConnection());
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName(QStringLiteral("tabCentral"));
  tabs_->setAccessibleName(QTr("Central Database"));
  tabs_->addTab(MakePushTab(), QTr("Push"));
  tabs_->addTab(MakeRestoreTab(), QTr("Restore"));
  tabs_->addTab(MakeReleasesTab(), QTr("Released Recipes"));
  column->addWidget(tabs_, 1);
  column->addLayout(LayOutButtons());
}

QLayout* CentralDialog::LayOutConnection() {
  connection_ = AddField(*this, "txtCentralConnection",
                         QStringLiteral("host=db.example dbname=central user=north"));
  connection_->setToolTip(QTr(
      "A URI, words such as host=NAME dbname=NAME user=NAME, or service=NAME; never a password"));
  yard_ = AddField(*this, "txtCentralYard", {});
  yard_->setToolTip(QTr("The name that the administrator has given this yard"));
  test_ = AddFormButton(*this, "cmdCentralTest", QTr("&Test"),
                        QTr("Connect to the server, and show what it has of this yard"));
  test_->setDefault(true);
  connection_note_ = AddNote(*this, "lblCentralConnection");
  auto* const grid = new QGridLayout;
  grid->setSpacing(kSpacing);
  const auto add = [&](int row, const QString& caption, QWidget* field) {
    auto* const label = new QLabel(caption, this);
    label->setBuddy(field);
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row, 1);
  };
  add(0, QTr("C&onnection"), connection_);
  grid->addWidget(test_, 0, 2);
  add(1, QTr("&Yard"), yard_);
  grid->addWidget(connection_note_, 2, 1, 1, 2);
  grid->setColumnStretch(1, 1);
  return grid;
}

QWidget* CentralDialog::MakePushTab() {
  auto* const page = new QWidget;
  QVBoxLayout* const column = LayOutPage(*page);
  auto* const grid = new QGridLayout;
  grid->setHorizontalSpacing(kGroupSpacing);
  grid->setVerticalSpacing(kSpacing);
  const auto add = [&](const char* name, const QString& caption) {
    const int row = grid->rowCount();
    grid->addWidget(new QLabel(caption, page), row, 0, Qt::AlignTop);
    QLabel* const value = AddLabel(*page, name);
    value->setWordWrap(true);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grid->addWidget(value, row, 1);
    return value;
  };
  file_ = add("lblCentralFile", QTr("Open file"));
  waiting_ = add("lblCentralWaiting", QTr("Waiting"));
  last_push_ = add("lblCentralLast", QTr("Last push"));
  proof_ = add("lblCentralProof", QTr("Proof"));
  proof_->setMinimumHeight(3 * proof_->fontMetrics().lineSpacing());
  proof_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  grid->setColumnStretch(1, 1);
  column->addLayout(grid);
  column->addSpacing(kSpacing);
  column->addLayout(LayOutPushButtons(*page));
  push_note_ = AddNote(*page, "lblCentralPush");
  column->addWidget(push_note_);
  automatic_ = new QCheckBox(QTr("Push &automatically after each store"), page);
  automatic_->setObjectName(QStringLiteral("chkCentralAutomatic"));
  column->addWidget(automatic_);
  column->addStretch(1);
  return page;
}

QLayout* CentralDialog::LayOutPushButtons(QWidget& page) {
  push_now_ = AddFormButton(page, "cmdCentralPush", QTr("&Push Now"),
                            QTr("Take the rows that wait to the central database"));
  push_copy_ = AddFormButton(page, "cmdCentralPushCopy", QTr("&New Source..."),
                             QTr("The file goes on beside the one that it is a copy of"));
  push_progress_ = AddBar(page, "prgCentralPush", QTr("Progress of the push"));
  stop_ = AddFormButton(page, "cmdCentralStop", QTr("&Stop"),
                        QTr("End the push; what is there already stays there"));
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(push_now_);
  row->addWidget(push_copy_);
  row->addWidget(push_progress_, 1);
  row->addWidget(stop_);
  return row;
}

QWidget* CentralDialog::MakeRestoreTab() {
  auto* const page = new QWidget;
  QVBoxLayout* const column = LayOutPage(*page);
  auto* const caption = new QLabel(QTr("F&iles whose rows are in the central database"), page);
  column->addWidget(caption);
  sources_ =
      AddTable(*page, "grdCentralSources", QTr("Files whose rows are in the central database"),
               {QTr("File"), QTr("Rows"), QTr("Units"), QTr("Last push")}, kFileColumn);
  caption->setBuddy(sources_);
  column->addWidget(sources_, 1);
  restore_ = AddFormButton(*page, "cmdCentralRestore", QTr("&Restore a Copy..."),
                           QTr("Make a new file of the rows that the central database has"));
  column->addWidget(restore_, 0, Qt::AlignLeft);
  restore_note_ = AddNote(*page, "lblCentralRestore");
  column->addWidget(restore_note_);
  return page;
}

QLayout* CentralDialog::LayOutButtons() {
  doing_ = new ElidedLabel(this);
  doing_->setObjectName(QStringLiteral("lblCentralDoing"));
  progress_ = AddBar(*this, "prgCentral", QTr("Progress"));
  close_ = AddFormButton(*this, "cmdCentralClose", QTr("Close"), {});
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(doing_, 1);
  row->addWidget(progress_, 1);
  row->addWidget(close_);
  return row;
}

void CentralDialog::ConnectControls() {
  const auto take = [this] {
    const std::string yard = yard_->text().trimmed().toStdString();
    const bool taken = form_.SetConnection(connection_->text().trimmed().toStdString());
    form_.SetYard(yard);
    return taken;
  };
  connect(connection_, &QLineEdit::editingFinished, this, take);
  connect(yard_, &QLineEdit::editingFinished, this, take);
  connect(automatic_, &QCheckBox::toggled, this, [this](bool on) { form_.TurnAutomatic(on); });
  connect(test_, &QPushButton::clicked, this, [this, take] {
    if (take()) {
      form_.Look();
    }
  });
  connect(connection_, &QLineEdit::textChanged, this, [this] { ShowTask(); });
  connect(push_now_, &QPushButton::clicked, this, [this] { form_.Pushes().Push(); });
  connect(push_copy_, &QPushButton::clicked, this, [this] { form_.PushCopy(); });
  connect(stop_, &QPushButton::clicked, this, [this] { form_.Pushes().Stop(); });
  connect(restore_, &QPushButton::clicked, this,
          [this] { form_.Restore(static_cast<std::size_t>(sources_->currentRow())); });
  connect(sources_, &QTableWidget::itemSelectionChanged, this, [this] { ShowTask(); });
  connect(releases_, &QTableWidget::itemSelectionChanged, this, [this] { CompareRelease(); });
  connect(tabs_, &QTabWidget::currentChanged, this, [this] { CompareRelease(); });
  connect(fetch_, &QPushButton::clicked, this, [this] { form_.Fetch(); });
  connect(close_, &QPushButton::clicked, this, &CentralDialog::reject);
}

void CentralDialog::ShowPush() {
  const CentralPushState& push = form_.Pushes().State();
  if (std::exchange(was_running_, push.running) && !push.running) {
    form_.Look();  // the journal has another entry
  }
  ShowFacts();
}

void CentralDialog::ShowFacts() {
  const CentralPushState& push = form_.Pushes().State();
  const bool failed = push.sign == CentralSign::kRefused || push.sign == CentralSign::kNotReached;
  file_->setText(push.file.empty() ? QTr("No transaction database is open.")
                                   : ToQString(push.file));
  waiting_->setText(ToQString(form_.WaitingText()));
  last_push_->setText(push.here ? LocalTimeText(push.here->pushed_at) : QString());
  proof_->setText(ToQString(form_.ProofText()));
  const bool says_more = failed || push.sign == CentralSign::kPushing;
  const std::string result = push.obstacle.empty() ? form_.ResultText() : push.obstacle;
  ShowNote(*push_note_, {.text = says_more ? push.why : result, .failed = failed});
  push_now_->setEnabled(push.obstacle.empty() && !push.running);
  push_copy_->setVisible(push.is_copy);
  stop_->setEnabled(push.running);
  ShowProgress(*push_progress_, push.sign == CentralSign::kPushing, push.progress);
}

void CentralDialog::CentralFormChanged() {
  const CentralFormState& state = form_.State();
  ShowNote(*connection_note_, state.connection);
  ShowNote(*restore_note_, form_.RestoreNote());
  if (!yard_->hasFocus() || yard_->text().isEmpty()) {
    yard_->setText(ToQString(form_.Settings().yard));
  }
  ShowSources();
  ShowReleases();
  ShowTask();
  ShowFacts();
}

void CentralDialog::ShowSources() {
  const std::vector<YardSource>& sources = form_.State().answer.sources;
  if (sources_->rowCount() == static_cast<int>(sources.size()) &&
      form_.State().task != CentralTask::kNone) {
    return;  // the selection stays
  }
  const int selected = std::max(sources_->currentRow(), 0);
  sources_->setRowCount(static_cast<int>(sources.size()));
  for (int row = 0; row < sources_->rowCount(); ++row) {
    const YardSource& source = sources[static_cast<std::size_t>(row)];
    SetCell(*sources_, row, kFileColumn,
            ToQString(form_.SourceName(static_cast<std::size_t>(row))));
    SetCell(*sources_, row, kRowsColumn, QString::number(source.rows), Qt::AlignRight);
    SetCell(*sources_, row, kUnitsColumn, ToQString(source.source.unit));
    SetCell(*sources_, row, kPushedColumn, LocalTimeText(source.source.pushed_at));
  }
  if (selected < sources_->rowCount()) {
    sources_->selectRow(selected);
  }
}

void CentralDialog::ShowTask() {
  const CentralFormState& state = form_.State();
  const bool free = state.task == CentralTask::kNone;
  test_->setEnabled(free && !connection_->text().trimmed().isEmpty());
  restore_->setEnabled(free && sources_->currentRow() >= 0);
  fetch_->setEnabled(free && state.differences.has_value());
  doing_->setText(ToQString(form_.DoingText()));
  ShowProgress(*progress_, !free, state.progress);
  close_->setText(MakesFile(state.task) ? QTr("Cancel") : QTr("Close"));
}

void CentralDialog::reject() {
  if (MakesFile(form_.State().task) && !services_.pump.Closing()) {
    form_.Cancel();
    return;
  }
  QDialog::reject();
}

// Ctrl+Tab switches to another tab also from the controls around them.
void CentralDialog::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::NextChild) || event->matches(QKeySequence::PreviousChild)) {
    QCoreApplication::sendEvent(tabs_, event);
    return;
  }
  QDialog::keyPressEvent(event);
}

void CentralDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  QTimer::singleShot(0, this, [this] { form_.Look(); });
}

}  // namespace vrx
