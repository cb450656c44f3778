// What the list of received files says about them.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/translation.h"
#include "exchange/file_batches.h"
#include "exchange/imported_data.h"
#include "exchange/store_row.h"
#include "exchange/transaction_parser.h"
#include "exchange/unread_feeds.h"
#include "link/krmcomm.h"
#include "platform/progress_display.h"

namespace vrx {
namespace {

class NoProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
};

std::string CountOf(std::size_t count, std::string_view one, std::string_view many) {
  return count == 1 ? Tr(one) : Tr(many, {std::to_string(count)});
}

std::string DaysOf(const ImportedData& rows) {
  std::optional<Date> first;
  std::optional<Date> last;
  for (std::size_t row = 1; row <= rows.FilledCount(); ++row) {
    if (const std::optional<Date> date = ParseTransactionDate(rows.Cell(row, kImportedDate))) {
      first = std::min(first.value_or(*date), *date);
      last = std::max(last.value_or(*date), *date);
    }
  }
  if (!first) {
    return {};
  }
  return (first == last ? MediumText(*first)
                        : Tr("%1 to %2", {MediumText(*first), MediumText(*last)})) +
         ", ";
}

DataFileFacts TransactionFacts(std::string_view text) {
  TransFile file;
  ImportedData rows;
  NoProgress progress;
  const ImportHooks hooks;
  if (!TransactionParser(text, file, rows, progress, hooks, [] {}).Run().empty()) {
    return {.summary = Tr("not readable")};
  }
  return {.summary = DaysOf(rows) +
                     CountOf(ReadFileBatches(rows).size(), TrMark("1 batch"), TrMark("%1 batches")),
          .first_record = ParseTransactionDate(rows.Cell(1, kImportedDate))};
}

// Blank lines do not count.
std::size_t CountLines(std::string_view text) {
  std::size_t lines = 0;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    lines += line.find_first_not_of(" \r\f") == std::string_view::npos ? 0 : 1;
    text.remove_prefix(std::min(text.size(), line.size() + 1));
  }
  return lines;
}

// Of the section with that mark, up to the next one.
std::size_t LinesOf(std::string_view text, std::string_view section) {
  const std::size_t begin = text.find(section);
  if (begin == std::string_view::npos) {
    return 0;
  }
  text.remove_prefix(begin + section.size());
  return CountLines(text.substr(0, text.find("\n[")));
}

}  // namespace

DataFileFacts ReadDataFileFacts(std::string_view text) {
  if (text.starts_with(kTransactionMark)) {
    return TransactionFacts(text);
  }
  if (text.starts_with(kRecipeMark)) {
    return {.summary =
                CountOf(LinesOf(text, "[ING]"), TrMark("1 ingredient"), TrMark("%1 ingredients")) +
                ", " + CountOf(LinesOf(text, "[REC]"), TrMark("1 recipe"), TrMark("%1 recipes")) +
                ", " + CountOf(LinesOf(text, "[PEN]"), TrMark("1 pen"), TrMark("%1 pens"))};
  }
  if (text.starts_with(kReportMark)) {
    text.remove_prefix(kReportMark.size());
  }
  return {.summary = CountOf(CountLines(text), TrMark("1 line"), TrMark("%1 lines"))};
}

}  // namespace vrx
