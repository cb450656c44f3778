// The page of the releases, with what each would change in the open recipe database.

#include <algorithm>

#include "desktop/central/central_dialog.h"
#include "presenter/central_form.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

enum ReleaseColumn : int { kNumberColumn, kPublishedColumn, kNoteColumn, kFetchedColumn };
enum FieldColumn : int { kRecordColumn, kFieldColumn, kHereColumn, kReleaseColumn, kNewFileColumn };

// Of the yard's own fetches, the only ones that its login sees.
QString LastFetch(const Release& release) {
  return release.fetches.empty() ? QString() : LocalTimeText(release.fetches.back().at);
}

}  // namespace

QWidget* CentralDialog::MakeReleasesTab() {
  auto* const page = new QWidget;
  QVBoxLayout* const column = LayOutPage(*page);
  auto* const caption = new QLabel(QTr("Releases &for this yard"), page);
  column->addWidget(caption);
  releases_ = AddTable(*page, "grdCentralReleases", QTr("Releases for this yard"),
                       {QTr("Number"), QTr("Published"), QTr("Note"), QTr("Fetched")}, kNoteColumn);
  caption->setBuddy(releases_);
  column->addWidget(releases_, 1);
  release_note_ = AddNote(*page, "lblCentralRelease");
  column->addWidget(release_note_);
  differences_ = AddTable(
      *page, "grdCentralDifferences", QTr("What differs from the open recipe database"),
      {QTr("Record"), QTr("Field"), QTr("Here"), QTr("Release"), QTr("New file")}, kRecordColumn);
  column->addWidget(differences_, 2);
  fetch_ = AddFormButton(*page, "cmdCentralFetch", QTr("Fetc&h..."),
                         QTr("Make a new recipe database of the release; the open one stays as it "
                             "is"));
  column->addWidget(fetch_, 0, Qt::AlignLeft);
  return page;
}

void CentralDialog::CompareRelease() {
  if (releases_->currentRow() >= 0 && releases_->isVisibleTo(this)) {
    form_.Compare(static_cast<std::size_t>(releases_->currentRow()));
  }
}

void CentralDialog::ShowReleases() {
  const CentralFormState& state = form_.State();
  ShowNote(*release_note_, form_.ReleaseNote());
  const std::vector<Release>& releases = state.answer.releases;
  if (state.task == CentralTask::kNone) {
    const int selected = std::max(releases_->currentRow(), 0);
    releases_->setRowCount(static_cast<int>(releases.size()));
    for (int row = 0; row < releases_->rowCount(); ++row) {
      const Release& release = releases[static_cast<std::size_t>(row)];
      SetCell(*releases_, row, kNumberColumn, QString::number(release.number), Qt::AlignRight);
      SetCell(*releases_, row, kPublishedColumn, LocalTimeText(release.at));
      SetCell(*releases_, row, kNoteColumn, ToQString(release.note));
      SetCell(*releases_, row, kFetchedColumn, LastFetch(release));
    }
    ShowDifferences();
    if (selected < releases_->rowCount()) {
      releases_->selectRow(selected);
      CompareRelease();
    }
  }
}

void CentralDialog::ShowDifferences() {
  const std::vector<DifferenceRow> rows = form_.DifferenceRows();
  differences_->setRowCount(static_cast<int>(rows.size()));
  for (int row = 0; row < differences_->rowCount(); ++row) {
    const DifferenceRow& difference = rows[static_cast<std::size_t>(row)];
    SetCell(*differences_, row, kRecordColumn, ToQString(difference.record));
    SetCell(*differences_, row, kFieldColumn, ToQString(difference.field));
    SetCell(*differences_, row, kHereColumn, ToQString(difference.here));
    SetCell(*differences_, row, kReleaseColumn, ToQString(difference.release));
    SetCell(*differences_, row, kNewFileColumn, ToQString(difference.new_file));
  }
}

}  // namespace vrx
