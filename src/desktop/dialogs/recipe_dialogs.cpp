#include "desktop/dialogs/recipe_dialogs.h"

#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "base/files.h"
#include "desktop/app/captions.h"
#include "widgets/fields.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

QPushButton* AddDialogButton(QDialog& dialog, const char* name, const QString& caption) {
  auto* const button = new QPushButton(caption, &dialog);
  button->setObjectName(QString::fromLatin1(name));
  button->setAutoDefault(false);
  return button;
}

class CopyDialog : public QDialog {
 public:
  CopyDialog(const CopyOffer& offer, QWidget* owner);

  [[nodiscard]] int Chosen() const { return list_->currentItem()->data(Qt::UserRole).toInt(); }

 private:
  QListWidget* list_;
};

CopyDialog::CopyDialog(const CopyOffer& offer, QWidget* owner)
    : QDialog(owner), list_(new QListWidget(this)) {
  setObjectName(QStringLiteral("dlgCopyRecipe"));
  setWindowTitle(QTr("Copy Recipe"));
  QLabel* const question = AddLabel(*this, "lblCopyRecipe");
  question->setText(ToQString(offer.question));
  question->setBuddy(list_);
  list_->setObjectName(QStringLiteral("lstFreeRecipes"));
  list_->setAccessibleName(QTr("Free recipes"));
  for (const RecipeItem& recipe : offer.free) {
    auto* const item = new QListWidgetItem(ToQString(recipe.text), list_);
    item->setData(Qt::UserRole, recipe.id);
  }
  list_->setCurrentRow(static_cast<int>(offer.proposed));
  QPushButton* const copy = AddDialogButton(*this, "cmdCopy", QTr("&Copy"));
  QPushButton* const cancel = AddDialogButton(*this, "cmdCancel", QTr("Cancel"));
  copy->setDefault(true);
  connect(copy, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(list_, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
  connect(list_, &QListWidget::currentItemChanged, copy,
          [copy](const QListWidgetItem* now) { copy->setEnabled(now != nullptr); });
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addStretch();
  buttons->addWidget(copy);
  buttons->addWidget(cancel);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(question);
  column->addWidget(list_, 1);
  column->addSpacing(kSpacing);
  column->addLayout(buttons);
  list_->setFocus();
  list_->scrollToItem(list_->currentItem(), QAbstractItemView::PositionAtCenter);
}

constexpr int kLeastValueLetters = 16;  // of a description

constexpr std::array<std::pair<const char*, const char*>, 6> kHeadRows{{
    {"lblName", "Name"},
    {"lblDescription", "Description"},
    {"lblBatchType", "Batch By"},
    {"lblHeadCount", "Head Count"},
    {"lblRationTarget", "Ration Target"},
    {"lblAdjustBatchTotal", "Adjust Batch Total"},
}};

void ShowMarked(QLabel& label, const ComparedText& text) {
  label.setText(ToQString(text.text));
  QFont font;
  font.setBold(text.marked);
  label.setFont(font);
}

// One of the two recipes: its choice, its head and its list.
class ComparisonSide : public QWidget {
 public:
  // The names of its controls end with the letter of the side.
  ComparisonSide(QChar side, ComparedFile file, QWidget* parent);

  [[nodiscard]] const ComparedFile& File() const { return file_; }
  void SetFile(ComparedFile file, int recipe);

  [[nodiscard]] int Recipe() const { return recipes_->currentData().toInt(); }
  QComboBox& Recipes() { return *recipes_; }
  QTableWidget& List() { return *list_; }
  QHBoxLayout& FileRow() { return *file_row_; }

  void Show(const ComparedSide& texts);
  void Clear();

 private:
  void SetUpList();
  [[nodiscard]] QString NameOf(const char* control) const { return QLatin1String(control) + side_; }

  QChar side_;
  ComparedFile file_;
  ChoiceList* recipes_;
  QLabel* title_;
  std::vector<QLabel*> head_;
  QHBoxLayout* file_row_;
  QTableWidget* list_;
};

ComparisonSide::ComparisonSide(QChar side, ComparedFile file, QWidget* parent)
    : QWidget(parent),
      side_(side),
      recipes_(new ChoiceList(this)),
      title_(new ElidedLabel(this)),
      file_row_(new QHBoxLayout),
      list_(new QTableWidget(this)) {
  recipes_->setObjectName(NameOf("cboRecipe"));
  recipes_->setAccessibleName(QTr("Recipe"));
  title_->setObjectName(NameOf("lblFile"));
  auto* const head = new QGridLayout;
  head->setHorizontalSpacing(kGroupSpacing);
  head->setVerticalSpacing(kSpacing / 2);
  head->setColumnStretch(1, 1);
  head->setColumnMinimumWidth(1, fontMetrics().averageCharWidth() * kLeastValueLetters);
  for (const auto& [name, caption] : kHeadRows) {
    const int row = static_cast<int>(head_.size());
    auto* const words = new QLabel(QTr(caption), this);
    auto* const value = new ElidedLabel(this);
    value->setObjectName(NameOf(name));
    value->setTextFormat(Qt::PlainText);
    head->addWidget(words, row, 0);
    head->addWidget(value, row, 1);
    head_.push_back(value);
  }
  SetUpList();
  file_row_->addWidget(title_, 1);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addLayout(file_row_);
  column->addWidget(recipes_);
  column->addLayout(head);
  column->addWidget(list_, 1);
  SetFile(std::move(file), 0);
}

void ComparisonSide::SetUpList() {
  list_->setObjectName(NameOf("grdRecipe"));
  list_->setAccessibleName(QTr("Ingredients and totals"));
  list_->setHorizontalHeader(new PaddedHeader(list_));
  list_->verticalHeader()->hide();
  list_->setSelectionMode(QAbstractItemView::NoSelection);
  list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list_->setTabKeyNavigation(false);
  list_->setWordWrap(false);
  list_->setCornerButtonEnabled(false);
  list_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  list_->setFont(TabularFigures(list_->font()));
  list_->verticalHeader()->setDefaultSectionSize(list_->fontMetrics().height() + kSpacing);
}

void ComparisonSide::SetFile(ComparedFile file, int recipe) {
  file_ = std::move(file);
  title_->setText(ToQString(FileTitle(file_.path)));
  title_->setToolTip(ToQString(file_.path.string()));
  recipes_->clear();
  for (const RecipeItem& item : file_.items) {
    recipes_->addItem(ToQString(item.text), item.id);
  }
  recipes_->setCurrentIndex(std::max(0, recipes_->findData(recipe)));
}

void ComparisonSide::Show(const ComparedSide& texts) {
  for (std::size_t row = 0; row < head_.size(); ++row) {
    ShowMarked(*head_[row], texts.head.at(row));
  }
  list_->clear();
  list_->setColumnCount(static_cast<int>(texts.captions.size()));
  list_->setRowCount(static_cast<int>(texts.rows.size()));
  for (int column = 0; column < list_->columnCount(); ++column) {
    const Qt::Alignment align = (column == 0 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter;
    auto* const caption =
        new QTableWidgetItem(ToQString(texts.captions.at(static_cast<std::size_t>(column))));
    caption->setTextAlignment(align);
    list_->setHorizontalHeaderItem(column, caption);
    for (int row = 0; row < list_->rowCount(); ++row) {
      const ComparedText& text =
          texts.rows.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column));
      auto* const cell = new QTableWidgetItem(PaddedHeader::Padded(ToQString(text.text)));
      cell->setTextAlignment(align);
      QFont font = list_->font();
      font.setBold(text.marked);
      cell->setFont(font);
      list_->setItem(row, column, cell);
    }
  }
}

void ComparisonSide::Clear() {
  for (QLabel* const label : head_) {
    label->clear();
  }
  list_->setRowCount(0);
}

class ComparisonDialog : public QDialog {
 public:
  ComparisonDialog(const ComparedFile& file, int recipe, Services& services, QWidget* owner);

 private:
  void ScrollTogether();
  void LayOut();
  void ChooseFile();
  void Compare();
  void FitColumns();

  Services& services_;
  ComparisonSide* a_;
  ComparisonSide* b_;
  QPushButton* this_file_;
  QPushButton* other_file_;
  QPushButton* close_;
  QLabel* summary_;
  QLabel* note_;
};

int RecipeAfter(const ComparedFile& file, int recipe) {
  const auto next = std::find_if(file.items.begin(), file.items.end(),
                                 [&](const RecipeItem& item) { return item.id > recipe; });
  return next == file.items.end() ? file.items.front().id : next->id;
}

ComparisonDialog::ComparisonDialog(const ComparedFile& file, int recipe, Services& services,
                                   QWidget* owner)
    : QDialog(owner),
      services_(services),
      a_(new ComparisonSide(QLatin1Char('A'), file, this)),
      b_(new ComparisonSide(QLatin1Char('B'), file, this)),
      this_file_(AddDialogButton(*this, "cmdThisFile", QTr("&This Database"))),
      other_file_(AddDialogButton(*this, "cmdOtherFile", QTr("&Another Database..."))),
      close_(AddDialogButton(*this, "cmdClose", QTr("C&lose"))),
      summary_(AddLabel(*this, "lblSummary")),
      note_(AddLabel(*this, "lblUnits")) {
  setObjectName(QStringLiteral("dlgCompareRecipes"));
  setWindowTitle(QTr("Compare Recipes"));
  a_->SetFile(file, recipe);
  b_->SetFile(file, RecipeAfter(file, recipe));
  LayOut();
  ScrollTogether();
  this_file_->setEnabled(false);
  connect(this_file_, &QPushButton::clicked, this, [this] {
    b_->SetFile(a_->File(), a_->Recipe());
    this_file_->setEnabled(false);
    other_file_->setFocus();
    Compare();
  });
  connect(other_file_, &QPushButton::clicked, this, &ComparisonDialog::ChooseFile);
  connect(close_, &QPushButton::clicked, this, &QDialog::accept);
  for (ComparisonSide* const side : {a_, b_}) {
    connect(&side->Recipes(), &QComboBox::activated, this, &ComparisonDialog::Compare);
  }
  Compare();
  b_->Recipes().setFocus();
}

void ComparisonDialog::LayOut() {
  b_->FileRow().setSpacing(kSpacing);
  b_->FileRow().addWidget(this_file_);
  b_->FileRow().addWidget(other_file_);
  // The choices of both sides are at the same height.
  a_->FileRow().addStrut(other_file_->sizeHint().height());
  auto* const both = new QWidget;
  auto* const sides = new QHBoxLayout(both);
  sides->setContentsMargins({});
  sides->setSpacing(kGroupSpacing);
  sides->addWidget(a_, 1);
  sides->addWidget(b_, 1);
  auto* const bottom = new QHBoxLayout;
  auto* const words = new QVBoxLayout;
  summary_->setWordWrap(true);
  note_->setWordWrap(true);
  words->addWidget(summary_);
  words->addWidget(note_);
  bottom->addLayout(words, 1);
  bottom->addWidget(close_, 0, Qt::AlignBottom);
  close_->setDefault(true);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  column->addWidget(MakeScrollArea(both), 1);
  column->addLayout(bottom);
  constexpr QSize kOpening{1180, 640};
  const QSize around(2 * kGroupSpacing, 3 * kGroupSpacing + bottom->sizeHint().height());
  resize(FormSize(*this, *both, around, kOpening));
}

void ComparisonDialog::ScrollTogether() {
  for (const auto& [from, to] : {std::pair(a_, b_), std::pair(b_, a_)}) {
    connect(from->List().verticalScrollBar(), &QScrollBar::valueChanged,
            to->List().verticalScrollBar(), &QScrollBar::setValue);
    connect(from->List().horizontalScrollBar(), &QScrollBar::valueChanged,
            to->List().horizontalScrollBar(), &QScrollBar::setValue);
    connect(from->List().horizontalHeader(), &QHeaderView::sectionResized, &to->List(),
            [list = &to->List()](int column, int /*before*/, int width) {
              list->setColumnWidth(column, width);
            });
  }
}

void ComparisonDialog::ChooseFile() {
  if (std::optional<ComparedFile> file = AskForComparedFile(services_)) {
    b_->SetFile(*std::move(file), a_->Recipe());
    this_file_->setEnabled(true);
    Compare();
  }
}

void ComparisonDialog::Compare() {
  const std::optional<ComparedTexts> texts =
      vrx::Compare(a_->File(), a_->Recipe(), b_->File(), b_->Recipe(), services_);
  summary_->setText(texts ? ToQString(texts->summary) : QString());
  note_->setText(texts ? ToQString(texts->note) : QString());
  note_->setVisible(!note_->text().isEmpty());
  if (!texts) {
    a_->Clear();
    b_->Clear();
    return;
  }
  a_->Show(texts->sides.front());
  b_->Show(texts->sides.back());
  FitColumns();
}

// The columns of both lists are equally wide. A width of one list is set in the other one at once.
void ComparisonDialog::FitColumns() {
  std::vector<int> widths(static_cast<std::size_t>(a_->List().columnCount()));
  for (ComparisonSide* const side : {a_, b_}) {
    side->List().resizeColumnsToContents();
    for (std::size_t column = 0; column < widths.size(); ++column) {
      const int width = side->List().columnWidth(static_cast<int>(column));
      widths[column] = std::max(widths[column], width);
    }
  }
  for (std::size_t column = 0; column < widths.size(); ++column) {
    a_->List().setColumnWidth(static_cast<int>(column), widths[column]);
  }
}

}  // namespace

std::optional<int> AskForCopy(const CopyOffer& offer, QWidget* owner) {
  CopyDialog dialog(offer, owner);
  return dialog.exec() == QDialog::Accepted ? std::optional(dialog.Chosen()) : std::nullopt;
}

void ShowComparison(const ComparedFile& file, int recipe, Services& services, QWidget* owner) {
  ComparisonDialog(file, recipe, services, owner).exec();
}

}  // namespace vrx
