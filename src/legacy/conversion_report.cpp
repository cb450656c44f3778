#include "legacy/conversion_report.h"

#include <algorithm>
#include <string_view>

#include "base/files.h"
#include "base/number.h"

namespace vrx {
namespace {

constexpr std::size_t kMostNotices = 5000;
constexpr std::size_t kMostRanges = 200000;

constexpr std::size_t kNameWidth = 26;
constexpr std::size_t kCountWidth = 10;
constexpr std::size_t kSumWidth = 20;

std::string Left(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string Right(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string CountLine(const ConvertedTable& table) {
  std::string line = Left(table.name, kNameWidth);
  for (const std::uint64_t count : {table.read, table.stored, table.repaired, table.refused}) {
    line += Right(std::to_string(count), kCountWidth);
  }
  return line + "\n";
}

std::string CountsText(const ConversionReport& report) {
  std::string text = Left("Table", kNameWidth);
  for (const char* const caption : {"Read", "Stored", "Repaired", "Refused"}) {
    text += Right(caption, kCountWidth);
  }
  text += "\n";
  for (const ConvertedTable& table : report.tables) {
    text += CountLine(table);
  }
  return text + CountLine({.name = "All tables",
                           .read = report.Read(),
                           .stored = report.Stored(),
                           .repaired = report.Repaired(),
                           .refused = report.Refused()});
}

std::string SumsText(const ConversionReport& report) {
  std::string text = Left("Sum of", kNameWidth) + Right("Old file", kSumWidth) +
                     Right("New file", kSumWidth) + "\n";
  for (const ConvertedSum& sum : report.sums) {
    text += Left(sum.table + " " + sum.column, kNameWidth) +
            Right(DefaultText(sum.old_file), kSumWidth) +
            Right(DefaultText(sum.new_file), kSumWidth) + "\n";
  }
  return text;
}

std::string NoticesText(const ConversionReport& report) {
  if (report.notices.empty()) {
    return "Every value was stored as it stood.\n";
  }
  std::string text = "What was found and done:\n";
  for (const ConversionNotice& notice : report.notices) {
    const std::string rows = RowsText(notice);
    text += "- " + notice.table + (notice.table.empty() || rows.empty() ? "" : ", ") + rows +
            (notice.table.empty() && rows.empty() ? "" : ": ") + notice.text + "\n";
  }
  if (report.further_notices > 0) {
    text +=
        "- " + std::to_string(report.further_notices) + " further such lines are left out here.\n";
  }
  return text;
}

}  // namespace

std::uint64_t ConversionReport::Total(std::uint64_t ConvertedTable::*count) const {
  std::uint64_t total = 0;
  for (const ConvertedTable& table : tables) {
    total += table.*count;
  }
  return total;
}

void NoticeList::Add(const std::string& table, const std::string& text) { Find(table, text); }

void NoticeList::AddRow(const std::string& table, const std::string& text, std::uint64_t row) {
  Extend(Find(table, text), row);
}

void NoticeList::AddId(const std::string& table, const std::string& text, std::uint64_t id) {
  ConversionNotice* const notice = Find(table, text);
  Extend(notice, id);
  if (notice != nullptr) {
    notice->are_ids = true;
  }
}

ConversionNotice* NoticeList::Find(const std::string& table, const std::string& text) {
  const auto found = places_.find({table, text});
  if (found != places_.end()) {
    return &notices_[found->second];
  }
  if (notices_.size() >= kMostNotices) {
    ++further_;
    return nullptr;
  }
  places_.emplace(std::pair(table, text), notices_.size());
  return &notices_.emplace_back(ConversionNotice{.table = table, .text = text});
}

void NoticeList::Extend(ConversionNotice* notice, std::uint64_t row) {
  if (notice == nullptr) {
    return;
  }
  if (!notice->rows.empty() && notice->rows.back().last + 1 >= row) {
    notice->rows.back().last = row;
  } else if (ranges_ < kMostRanges) {
    notice->rows.push_back({row, row});
    ++ranges_;
  } else {
    ++further_;
  }
}

void NoticeList::MoveInto(ConversionReport& report) {
  report.notices = std::move(notices_);
  report.further_notices = further_;
  *this = {};
}

std::string RowsText(const ConversionNotice& notice) {
  if (notice.rows.empty()) {
    return {};
  }
  const bool one = notice.rows.size() == 1 && notice.rows.front().first == notice.rows.front().last;
  std::string text = notice.are_ids ? (one ? "ID" : "IDs") : (one ? "row" : "rows");
  std::string_view separator = " ";
  for (const RowRange& range : notice.rows) {
    text += std::string(separator) + std::to_string(range.first);
    if (range.last > range.first) {
      text += "-" + std::to_string(range.last);
    }
    separator = ", ";
  }
  return text;
}

std::string ReportText(const ConversionReport& report) {
  const bool recipe = report.kind == DatabaseKind::kRecipe;
  return "Conversion of " + FileTitle(report.old_file) + "\n\n" +
         "Old file: " + report.old_file.string() + "\n" + "          " +
         std::to_string(report.old_size) + " bytes, left as it was\n" +
         "SHA-256:  " + report.sha256 + "\n" + "New file: " + report.new_file.string() + "\n" +
         "          " + (recipe ? "recipe" : "transaction") + " database, weights in " +
         report.unit + "\n\n" + CountsText(report) + "\n" + SumsText(report) + "\n" +
         NoticesText(report);
}

}  // namespace vrx
