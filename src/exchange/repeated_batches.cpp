#include "exchange/repeated_batches.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "base/date.h"
#include "base/translation.h"
#include "database/transactions.h"

namespace vrx {
namespace {

// A batch that is compared: its deliveries as texts that are equal for equal deliveries.
struct ComparedBatch {
  std::int32_t transaction = 0;
  std::string loads;
  std::vector<std::string> feeds;
};

struct ComparedFeed {
  std::size_t row = 0;
  std::string text;
};

std::string NumberText(double value) {
  std::array<char, 32> text{};
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end};
}

std::string TimeText(const TransactionRecord& record) {
  return record.time ? StoredText(*record.time) : "";
}

// The parts of a batch's loads that all of them share.
std::string HeadText(const TransactionRecord& record) {
  return record.recipe.value_or("") + "\t" + record.user_id.value_or("") + "\t" +
         (record.date ? StoredText(*record.date) : "") + "\n";
}

std::string LoadText(const TransactionRecord& record) {
  return record.ingredient.value_or("") + "\t" + NumberText(record.target) + "\t" +
         NumberText(record.actual_batch) + "\t" + TimeText(record) + "\n";
}

std::string FeedText(const TransactionRecord& record) {
  return record.pen.value_or("") + "\t" + record.user_id.value_or("") + "\t" +
         (record.date ? StoredText(*record.date) : "") + "\t" + TimeText(record) + "\t" +
         NumberText(record.target) + "\t" + NumberText(record.actual_feed);
}

void Add(ComparedBatch& batch, const TransactionRecord& record) {
  if (record.type == "FEED") {
    batch.feeds.push_back(FeedText(record));
  } else {
    batch.loads += (batch.loads.empty() ? HeadText(record) : "") + LoadText(record);
  }
}

BatchFinding Compare(const std::vector<ComparedFeed>& file, const ComparedBatch& stored,
                     bool by_name) {
  std::multiset<std::string> missing(stored.feeds.begin(), stored.feeds.end());
  BatchFinding finding{.stored_as = stored.transaction, .by_name = by_name};
  for (const ComparedFeed& feed : file) {
    if (const auto found = missing.find(feed.text); found != missing.end()) {
      missing.erase(found);
    } else {
      finding.further.push_back(feed.row);
    }
  }
  if (finding.further.empty()) {
    finding.state = BatchState::kSame;
  } else {
    finding.state = missing.empty() ? BatchState::kContinued : BatchState::kConflict;
  }
  return finding;
}

class Search {
 public:
  Search(SQLite::Database& transactions, const ImportedData& rows, const RecordNames& names)
      : transactions_(transactions), rows_(rows), names_(names), stored_(transactions) {}

  BatchFinding Find(const FileBatch& batch) {
    best_ = {};
    CompareByFingerprint(batch);
    if (best_.state != BatchState::kSame) {
      CompareByName(batch);
    }
    if (best_.stored_as) {
      found_.insert(*best_.stored_as);
    }
    return best_;
  }

 private:
  // The same before continued before a conflict.
  void Consider(const BatchFinding& finding) {
    if (!found_.contains(*finding.stored_as) &&
        (best_.state == BatchState::kNew || finding.state < best_.state)) {
      best_ = finding;
    }
  }

  void CompareByFingerprint(const FileBatch& batch) {
    std::vector<ComparedFeed> feeds;
    for (const FileFeed& feed : batch.feeds) {
      feeds.push_back({.row = feed.row, .text = feed.fingerprint});
    }
    for (StoredBatch& stored : stored_.Find(batch.fingerprint)) {
      Consider(Compare(
          feeds, {.transaction = stored.transaction, .loads = {}, .feeds = std::move(stored.feeds)},
          false));
    }
  }

  // A row that cannot be stored has no names to compare.
  void CompareByName(const FileBatch& batch) {
    if (batch.loads.empty()) {
      return;
    }
    ComparedBatch loads;
    std::vector<ComparedFeed> feeds;
    std::optional<Date> day;
    try {
      day = ToTransactionRecord(rows_, batch.loads.back(), names_, 0).date;
      if (!day || UnrecordedOf(*day).empty()) {
        return;
      }
      for (const std::size_t row : batch.loads) {
        Add(loads, ToTransactionRecord(rows_, row, names_, 0));
      }
      for (const FileFeed& feed : batch.feeds) {
        feeds.push_back(
            {.row = feed.row, .text = FeedText(ToTransactionRecord(rows_, feed.row, names_, 0))});
      }
    } catch (const StoreRowError&) {
      return;
    }
    for (const ComparedBatch& stored : UnrecordedOf(*day)) {
      if (stored.loads == loads.loads) {
        Consider(Compare(feeds, stored, true));
      }
    }
  }

  const std::vector<ComparedBatch>& UnrecordedOf(const Date& day) {
    const auto [found, added] = unrecorded_.try_emplace(day);
    std::vector<ComparedBatch>& batches = found->second;
    if (added) {
      for (const TransactionRecord& record : ReadUnrecordedBatches(transactions_, day)) {
        if (batches.empty() || batches.back().transaction != record.transaction) {
          batches.push_back({.transaction = record.transaction, .loads = {}, .feeds = {}});
        }
        Add(batches.back(), record);
      }
    }
    return batches;
  }

  SQLite::Database& transactions_;
  const ImportedData& rows_;
  const RecordNames& names_;
  StoredBatchSearch stored_;
  BatchFinding best_;
  std::set<std::int32_t> found_;
  std::map<Date, std::vector<ComparedBatch>> unrecorded_;
};

// "7" or "7-9"
std::string Range(std::int32_t first, std::int32_t last) {
  return std::to_string(first) + (first == last ? "" : "-" + std::to_string(last));
}

// "1-3, 7"
std::string Ranges(const std::set<std::int32_t>& numbers) {
  std::string text;
  for (auto first = numbers.begin(); first != numbers.end();) {
    auto last = first;
    auto next = std::next(last);
    while (next != numbers.end() && *next == *last + 1) {
      last = next++;
    }
    text += (text.empty() ? "" : ", ") + Range(*first, *last);
    first = next;
  }
  return text;
}

// The texts of a state: %1 is the count or the number in the file, %2 the number in the database.
struct StateWords {
  BatchState state;
  std::string_view one;
  std::string_view many;
  std::string_view in_list;
  std::string_view in_list_many;
};

constexpr std::array<StateWords, 3> kRepeatedStates{{
    {BatchState::kSame, TrMark("%1 batch is there already, as transaction %2."),
     TrMark("%1 batches are there already, as transactions %2."),
     TrMark("Batch %1: the same as transaction %2"),
     TrMark("Batches %1: the same as transactions %2")},
    {BatchState::kContinued,
     TrMark("%1 batch is there, but not all of its feeds, as transaction %2."),
     TrMark("%1 batches are there, but not all of their feeds, as transactions %2."),
     TrMark("Batch %1: continues transaction %2"), TrMark("Batches %1: continue transactions %2")},
    {BatchState::kConflict,
     TrMark("%1 batch has the loads of a stored batch, but other feeds, as transaction %2."),
     TrMark("%1 batches have the loads of stored batches, but other feeds, as transactions %2."),
     TrMark("Batch %1: has other feeds than transaction %2"),
     TrMark("Batches %1: have other feeds than transactions %2")},
}};

const StateWords* WordsOf(BatchState state) {
  const auto* const words = std::find_if(kRepeatedStates.begin(), kRepeatedStates.end(),
                                         [&](const StateWords& row) { return row.state == state; });
  return words == kRepeatedStates.end() ? nullptr : words;
}

bool Follows(const FileBatch& batch, const BatchFinding& finding, const FileBatch& next,
             const BatchFinding& next_finding) {
  return batch.number && next.number && *next.number == *batch.number + 1 && finding.stored_as &&
         next_finding.stored_as && *next_finding.stored_as == *finding.stored_as + 1 &&
         next_finding.state == finding.state && next_finding.by_name == finding.by_name;
}

}  // namespace

std::vector<BatchFinding> FindRepeatedBatches(SQLite::Database& transactions,
                                              const ImportedData& rows, const RecordNames& names,
                                              const std::vector<FileBatch>& batches) {
  Search search(transactions, rows, names);
  std::vector<BatchFinding> findings;
  findings.reserve(batches.size());
  for (const FileBatch& batch : batches) {
    findings.push_back(batch.number ? search.Find(batch) : BatchFinding{});
  }
  return findings;
}

bool AnyRepeated(const std::vector<BatchFinding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const BatchFinding& finding) { return finding.state != BatchState::kNew; });
}

std::string RepeatedText(const std::vector<BatchFinding>& findings) {
  std::map<BatchState, std::size_t> counts;
  std::map<BatchState, std::set<std::int32_t>> numbers;
  for (const BatchFinding& finding : findings) {
    ++counts[finding.state];
    if (finding.stored_as) {
      numbers[finding.state].insert(*finding.stored_as);
    }
  }
  std::string text;
  for (const StateWords& words : kRepeatedStates) {
    const std::size_t count = counts[words.state];
    if (count > 0) {
      text += Tr(count == 1 ? words.one : words.many,
                 {std::to_string(count), Ranges(numbers[words.state])}) +
              "\r\n";
    }
  }
  switch (const std::size_t fresh = counts[BatchState::kNew]; fresh) {
    case 0:
      return text + Tr("No batch is new.");
    case 1:
      return text + Tr("1 batch is new.");
    default:
      return text + Tr("%1 batches are new.", {std::to_string(fresh)});
  }
}

// Consecutive numbers of file and database share a line: a file may repeat hundreds of batches.
std::string RepeatedList(const std::vector<FileBatch>& batches,
                         const std::vector<BatchFinding>& findings) {
  std::string text;
  for (std::size_t first = 0; first < findings.size();) {
    std::size_t last = first;
    while (last + 1 < findings.size() &&
           Follows(batches[last], findings[last], batches[last + 1], findings[last + 1])) {
      ++last;
    }
    if (const StateWords* const words = WordsOf(findings[first].state)) {
      const std::string line =
          Tr(first == last ? words->in_list : words->in_list_many,
             {Range(batches[first].number.value_or(0), batches[last].number.value_or(0)),
              Range(*findings[first].stored_as, *findings[last].stored_as)});
      text += (text.empty() ? "" : "\r\n") +
              (findings[first].by_name ? Tr("%1 (compared by name)", {line}) : line);
    }
    first = last + 1;
  }
  return text;
}

}  // namespace vrx
