#include "exchange/repeated_batches.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "base/date.h"
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
      : transactions_(transactions), rows_(rows), names_(names) {}

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
    for (StoredBatch& stored : ReadStoredBatches(transactions_, batch.fingerprint)) {
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
      for (const std::size_t row : batch.loads) {
        const TransactionRecord record = ToTransactionRecord(rows_, row, names_, 0);
        day = record.date;
        Add(loads, record);
      }
      for (const FileFeed& feed : batch.feeds) {
        feeds.push_back(
            {.row = feed.row, .text = FeedText(ToTransactionRecord(rows_, feed.row, names_, 0))});
      }
    } catch (const StoreRowError&) {
      return;
    }
    if (!day) {
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

struct StateWords {
  BatchState state;
  std::string_view one;           // after "1 batch"
  std::string_view many;          // after "2 batches"
  std::string_view in_list;       // after "Batch 1: "
  std::string_view in_list_many;  // after "Batches 1-2: "
};

constexpr std::array<StateWords, 3> kRepeatedStates{{
    {BatchState::kSame, " is there already", " are there already", "the same as", "the same as"},
    {BatchState::kContinued, " is there, but not all of its feeds",
     " are there, but not all of their feeds", "continues", "continue"},
    {BatchState::kConflict, " has the loads of a stored batch, but other feeds",
     " have the loads of stored batches, but other feeds", "has other feeds than",
     "have other feeds than"},
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

std::string CountOfBatches(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " batch" : " batches");
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
      text += CountOfBatches(count) + std::string(count == 1 ? words.one : words.many) + ", as " +
              (count == 1 ? "transaction " : "transactions ") + Ranges(numbers[words.state]) +
              ".\r\n";
    }
  }
  const std::size_t fresh = counts[BatchState::kNew];
  if (fresh == 0) {
    return text + "No batch is new.";
  }
  return text + CountOfBatches(fresh) + (fresh == 1 ? " is new." : " are new.");
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
      const bool one = first == last;
      text += (text.empty() ? "" : "\r\n") + std::string(one ? "Batch " : "Batches ") +
              Range(batches[first].number.value_or(0), batches[last].number.value_or(0)) + ": " +
              std::string(one ? words->in_list : words->in_list_many) +
              (one ? " transaction " : " transactions ") +
              Range(*findings[first].stored_as, *findings[last].stored_as) +
              (findings[first].by_name ? " (compared by name)" : "");
    }
    first = last + 1;
  }
  return text;
}

}  // namespace vrx
