#include <string>

#include "base/translation.h"
#include "insight/table_cells.h"
#include "insight/tables.h"

namespace vrx {
namespace {

template <typename List, typename TextOfEntry>
std::string Joined(const List& list, const TextOfEntry& text_of) {
  std::string text;
  for (const auto& entry : list) {
    text += (text.empty() ? "" : "; ") + text_of(entry);
  }
  return text;
}

std::string MissingText(const Statement& answer) {
  return Joined(answer.missing, [](const MissingInFile& file) {
    return std::to_string(file.import) + ": " + file.numbers;
  });
}

std::string GapsText(const Statement& answer) {
  return Joined(answer.gaps, [](const ImportGap& gap) {
    return std::to_string(gap.first) + "-" + std::to_string(gap.last);
  });
}

std::string UnitsText(const Statement& answer) {
  return Joined(answer.other_units, [](const ImportInOtherUnit& import) {
    return std::to_string(import.import) + ": " + import.units +
           (import.settled.empty() ? "" : " " + import.settled);
  });
}

}  // namespace

AnswerTable TableOf(const Statement& answer) {
  AnswerTable table{
      .columns = {{"from", TrMark("From"), CellKind::kDay},
                  {"to", TrMark("To"), CellKind::kDay},
                  {"imports", TrMark("Imports"), CellKind::kCount},
                  {"batches", TrMark("Batches"), CellKind::kCount},
                  {"loads", TrMark("Loads"), CellKind::kCount},
                  {"deliveries", TrMark("Deliveries"), CellKind::kCount},
                  {"loaded", TrMark("Weight loaded"), CellKind::kWeight},
                  {"fed", TrMark("Weight fed"), CellKind::kWeight},
                  {"notRead", TrMark("Feed records not read"), CellKind::kCount},
                  {"leftOut", TrMark("Rows left out"), CellKind::kCount},
                  {"missing", TrMark("Numbers missing inside a file"), CellKind::kText},
                  {"gaps", TrMark("Gaps between imports"), CellKind::kText},
                  {"same", TrMark("Batches met again"), CellKind::kCount},
                  {"continued", TrMark("Batches continued"), CellKind::kCount},
                  {"conflicts", TrMark("Batches in conflict"), CellKind::kCount},
                  {"neverFed", TrMark("Batches never fed"), CellKind::kCount},
                  {"out", TrMark("Batches out of balance"), CellKind::kCount},
                  {"daysWithout.n", TrMark("Days without a record"), CellKind::kCount},
                  {"daysWithout.days", TrMark("These days"), CellKind::kText},
                  {"oddDates", TrMark("Odd dates"), CellKind::kCount},
                  {"otherUnits", TrMark("Imports in another unit"), CellKind::kText},
                  {"notRecorded", TrMark("Rows without an import"), CellKind::kCount}},
      .how = TrMark("What is stored of the period, and what of it is known to be incomplete. Gaps "
                    "between imports are not called missing: the module may have been used "
                    "otherwise.")};
  const std::string days =
      Joined(answer.first_days_without, [](const Date& day) { return StoredText(day); });
  table.rows.push_back({CellOf(answer.from),
                        CellOf(answer.to),
                        answer.imports,
                        answer.batches,
                        answer.loads,
                        answer.deliveries,
                        CellOf(answer.loaded),
                        CellOf(answer.fed),
                        answer.not_read,
                        answer.left_out,
                        CellOf(MissingText(answer)),
                        CellOf(GapsText(answer)),
                        answer.same,
                        answer.continued,
                        answer.conflicts,
                        answer.never_fed,
                        answer.out,
                        answer.days_without,
                        CellOf(days),
                        static_cast<std::int64_t>(answer.odd_dates.size()),
                        CellOf(UnitsText(answer)),
                        answer.not_recorded});
  return table;
}

}  // namespace vrx
