#include "desktop/records/pens_page.h"

#include "desktop/app/captions.h"
#include "feed/record_commit.h"
#include "feed/record_fields.h"
#include "presenter/report_failure.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kFeedAmountCaption = 1062;
constexpr int kPenCapacityCaption = 1132;

RecordRow RowOf(const PenRecord& record) {
  return {.id = record.id,
          .cells = {QString::number(record.id), ToQString(record.name),
                    ToQString(record.description), ToQString(record.feed_amount)}};
}

}  // namespace

RecordFormPage::Design PensPage::Controls() {
  return {.kind = RecordKind::kPen,
          .page = "pagePens",
          .id_list = "cboPenID",
          .name = "txtPenName",
          .description = "txtPenDesc",
          .number = "txtPenFeed",
          .number_field = "FeedAmount",
          .number_caption = kFeedAmountCaption,
          .view_all = "chkViewAllPens",
          .view_all_caption = QTr("View Pen List"),
          .active_only = "chkShowActivePensOnly",
          .active_only_caption = QTr("Show/Print Active Pens Only"),
          .grid = "grdPEN",
          .columns = {{.field = "ID", .caption = QTr("ID"), .number = true},
                      {.field = "Name", .caption = QTr("Name"), .typed = true},
                      {.field = "Description", .caption = QTr("Description"), .typed = true},
                      {.field = "FeedAmount",
                       .caption = QTr("Feed Amount"),
                       .number = true,
                       .typed = true}},
          .empty_grid = QTr("No pen is active yet. Giving one a feed amount or a "
                            "description makes it active.")};
}

PensPage::PensPage(Services& services, AutoAbbreviation& abbreviation, UndoCommands& undo,
                   QWidget* parent)
    : RecordFormPage(services, abbreviation, undo, Controls(), parent),
      unit_(AddLabel(*this, "lblPenFeedUoM")),
      warning_(new ElidedLabel(this)) {
  NumberRow().addWidget(unit_);
  warning_->setObjectName(QStringLiteral("lblRequiresIndicatorPenCapacityX"));
  SetTag(*warning_, kPenCapacityCaption);
  MakeDemiBold(*warning_);
  QSizePolicy keeps_place = warning_->sizePolicy();
  keeps_place.setRetainSizeWhenHidden(true);
  warning_->setSizePolicy(keeps_place);
  NumberRow().addSpacing(kGroupSpacing);
  NumberRow().addWidget(warning_, 1);
  warning_->hide();
}

void PensPage::Prepare() {
  RecordFormPage::Prepare();
  const QString unit = ToQString(GetServices().settings.SystemUnits());
  Grid().SetCaption("FeedAmount", QTr("Feed Amount (%1)").arg(unit.toLower()));
  ShowUnit();
}

void PensPage::ShowUnit() { unit_->setText(ToQString(GetServices().settings.SystemUnits())); }

void PensPage::ReadRecord(int id) {
  const PenRecord record = ReadPen(Database(), id);
  ShowTexts(record.name, record.description, record.feed_amount);
}

bool PensPage::StoreCurrentRecord() {
  PenRecord record{.id = Id(),
                   .name = NameText(),
                   .description = DescriptionText(),
                   .feed_amount = NumberText()};
  const bool changed = StoreRecord(Database(), record, GetServices().calendar);
  ShowTexts(record.name, record.description, record.feed_amount);
  return changed;
}

std::vector<PenRecord> PensPage::ReadShown(bool active_only) {
  std::vector<PenRecord> pens = ReadPens(Database());
  if (active_only) {
    std::erase_if(pens, [](const PenRecord& pen) { return !IsActive(pen); });
  }
  return pens;
}

std::vector<RecordRow> PensPage::ReadRows(bool active_only) {
  std::vector<RecordRow> rows;
  for (const PenRecord& pen : ReadShown(active_only)) {
    rows.push_back(RowOf(pen));
  }
  return rows;
}

std::vector<PenRecord> PensPage::PensShown() {
  std::vector<PenRecord> pens;
  if (HasDatabase()) {
    RunReported<Error>(GetServices().op, EventFailure, [&] { pens = ReadShown(ActiveOnly()); });
  }
  return pens;
}

void PensPage::CheckPenCapacity() {
  ShowWarning(vrx::CheckPenCapacity(PensShown()));
  Q_EMIT PenCapacityChecked();
}

void PensPage::ShowWarning(std::optional<int> size) {
  warning_->setText(size ? ToQString(PenCapacityWarning(*size)) : QString());
  warning_->setVisible(size.has_value());
}

}  // namespace vrx
