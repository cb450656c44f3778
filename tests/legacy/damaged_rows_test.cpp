#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy/conversion_fixture.h"
#include "legacy/jet_file.h"
#include "legacy/pen_file.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;

// Changes pages of a written file. A page has its table at 4 and the number of its rows at 12; from
// 14 on each row has 2 bytes with its offset.
class Pages {
 public:
  explicit Pages(const JetWriter& file) : bytes_(file.Bytes()) {}

  // The offset of the page that contains the text.
  std::size_t With(std::string_view text) const {
    return bytes_.find(JetWriter::Utf16(text)) / kJetPageSize * kJetPageSize;
  }
  std::size_t RowAt(std::size_t page, int row) const {
    const std::size_t at = page + 14 + static_cast<std::size_t>(row) * 2;
    return static_cast<unsigned char>(bytes_[at]) +
           std::size_t{static_cast<unsigned char>(bytes_[at + 1])} * 256;
  }
  void SetRowAt(std::size_t page, int row, std::size_t start) {
    Set(page + 14 + static_cast<std::size_t>(row) * 2, start);
  }
  void Set(std::size_t at, std::size_t number) {
    bytes_[at] = static_cast<char>(number % 256);
    bytes_[at + 1] = static_cast<char>(number / 256);
  }

  ConversionReport ConvertIn(ConversionFixture& site) const {
    WriteBytes(site.old_path, bytes_);
    return site.Convert(site.old_path);
  }

 private:
  std::string bytes_;
};

std::string DamagedPen(int row, std::size_t page, int place) {
  return "Pen, row " + std::to_string(row) + ": refused: it is damaged (page " +
         std::to_string(page / kJetPageSize) + ", row " + std::to_string(place) + ")";
}

TEST(ConversionOfDamagedRows, RefusesAMovedRowOfAnotherTable) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("FIRST"), Text(""), Text("0")});
  file.AddRow({Whole(2), Text("MOVED"), Text(""), Text("9")}, JetWriter::Place::kMoved);
  Pages pages(file);
  pages.Set(pages.With("MOVED") + 4, 2);
  const ConversionReport report = pages.ConvertIn(site);
  EXPECT_EQ(CountsOf(report, "Pen").stored, 1U);
  EXPECT_THAT(NoticeLines(report), Contains(DamagedPen(2, pages.With("FIRST"), 1)));
}

TEST(ConversionOfDamagedRows, RefusesAMovedRowWithoutAWholePointer) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("FIRST"), Text(""), Text("0")});
  file.AddRow({Whole(2), Text("MOVED"), Text(""), Text("9")}, JetWriter::Place::kMoved);
  Pages pages(file);
  const std::size_t page = pages.With("FIRST");
  pages.SetRowAt(page, 1, pages.RowAt(page, 1) + 1);
  const ConversionReport report = pages.ConvertIn(site);
  EXPECT_EQ(CountsOf(report, "Pen").stored, 1U);
  EXPECT_THAT(NoticeLines(report), Contains(DamagedPen(2, page, 1)));
}

// The second row ends where the first one begins.
TEST(ConversionOfDamagedRows, RefusesRowsThatReachBeyondTheirPage) {
  ConversionFixture site;
  JetWriter file = PenFile();
  for (int id = 1; id <= 3; ++id) {
    file.AddRow({Whole(id), Text("FIRST"), Text(""), Text("0")});
  }
  Pages pages(file);
  const std::size_t page = pages.With("FIRST");
  pages.SetRowAt(page, 0, kJetPageSize + 20);
  const ConversionReport report = pages.ConvertIn(site);
  EXPECT_EQ(CountsOf(report, "Pen").stored, 1U);
  EXPECT_THAT(NoticeLines(report),
              ::testing::IsSupersetOf({DamagedPen(1, page, 0), DamagedPen(2, page, 1)}));
}

TEST(ConversionOfDamagedRows, RefusesARowWithoutBytes) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("FIRST"), Text(""), Text("0")});
  file.AddRow({Whole(2), Text("SECOND"), Text(""), Text("0")});
  Pages pages(file);
  const std::size_t page = pages.With("FIRST");
  pages.SetRowAt(page, 1, pages.RowAt(page, 0));
  const ConversionReport report = pages.ConvertIn(site);
  EXPECT_EQ(CountsOf(report, "Pen").stored, 1U);
  EXPECT_THAT(NoticeLines(report), Contains(DamagedPen(2, page, 1)));
}

TEST(ConversionOfDamagedRows, RefusesAllOfAPageThatSaysItHasMoreThanFit) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("FIRST"), Text(""), Text("0")});
  Pages pages(file);
  const std::size_t page = pages.With("FIRST");
  pages.Set(page + 12, 2042);
  const ConversionReport report = pages.ConvertIn(site);
  EXPECT_EQ(CountsOf(report, "Pen").read, 1U);
  EXPECT_EQ(CountsOf(report, "Pen").refused, 1U);
  EXPECT_THAT(NoticeLines(report), Contains("Pen, row 1: refused: it is damaged (page " +
                                            std::to_string(page / kJetPageSize) +
                                            ", row 0 and all that follow on the page)"));
}

TEST(ConversionOfDamagedRows, CountsThoseOfTheIdentity) {
  ConversionFixture site;
  JetWriter file = PenFile();
  Pages pages(file);
  const std::size_t page = pages.With("LB");
  pages.SetRowAt(page, 0, kJetPageSize + 20);
  const ConversionReport report = pages.ConvertIn(site);
  EXPECT_EQ(report.unit, "KG");
  const ConvertedTable& units = CountsOf(report, "UnitsOfMeasure");
  EXPECT_EQ(units.read, 1U);
  EXPECT_EQ(units.stored, 0U);
  EXPECT_EQ(units.refused, 1U);
  EXPECT_THAT(NoticeLines(report), Contains("UnitsOfMeasure, row 1: refused: it is damaged (page " +
                                            std::to_string(page / kJetPageSize) + ", row 0)"));
}

}  // namespace
}  // namespace vrx::testing
