#include "report/recorded_pages.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "report/print_target.h"

namespace vrx::testing {
const DrawnText& DrawnPage::Text(const std::string& text) const {
  const auto found = std::find_if(texts.begin(), texts.end(),
                                  [&](const DrawnText& drawn) { return drawn.text == text; });
  if (found == texts.end()) {
    throw std::runtime_error("no text " + text);
  }
  return *found;
}

std::vector<std::string> DrawnPage::Texts() const {
  std::vector<std::string> list;
  for (const DrawnText& drawn : texts) {
    list.push_back(drawn.text);
  }
  return list;
}

std::vector<DrawnLine> DrawnPage::LinesAcross() const {
  std::vector<DrawnLine> across;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(across), [](const DrawnLine& line) {
    return line.top == line.bottom && line.left < line.right;
  });
  return across;
}

std::vector<DrawnLine> DrawnPage::LinesDown() const {
  std::vector<DrawnLine> down;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(down), [](const DrawnLine& line) {
    return line.left == line.right && line.top < line.bottom;
  });
  return down;
}

void RecordingEngine::updateState(const QPaintEngineState& now) {
  if (now.state().testFlag(DirtyTransform)) {
    transform_ = now.transform();
  }
  if (now.state().testFlag(DirtyPen)) {
    pen_ = now.pen();
  }
}

void RecordingEngine::drawTextItem(const QPointF& at, const QTextItem& item) {
  const QPointF from = transform_.map(at);
  const QPointF to = transform_.map(at + QPointF(item.width(), 0));
  pages_.back().texts.push_back({.text = item.text().toStdString(),
                                 .left = from.x() * kDot,
                                 .right = to.x() * kDot,
                                 .baseline = from.y() * kDot,
                                 .scale = transform_.m11(),
                                 .font = item.font(),
                                 .color = pen_.color().rgb() & 0xFFFFFFU});
}

void RecordingEngine::drawLines(const QLineF* lines, int count) {
  for (int i = 0; i < count; ++i) {
    const QLineF line = transform_.map(lines[i]);
    pages_.back().lines.push_back({.left = line.x1() * kDot,
                                   .top = line.y1() * kDot,
                                   .right = line.x2() * kDot,
                                   .bottom = line.y2() * kDot,
                                   .width = pen_.widthF() * kDot});
  }
}

RecordingPaper::RecordingPaper() : QPdfWriter(QString()) {
  setResolution(kRecordedDotsPerInch);
  setPageSize(QPageSize(QPageSize::A4));
  SetUpPaper(*this);
}

bool RecordingPaper::newPage() {
  if (pages.size() == most_pages) {
    return false;
  }
  pages.emplace_back();
  return true;
}

double RecordingPaper::Width() const {
  return pageLayout().paintRectPixels(kRecordedDotsPerInch).width() * kDot;
}

double RecordingPaper::Height() const {
  return pageLayout().paintRectPixels(kRecordedDotsPerInch).height() * kDot;
}

std::vector<DrawnPage> PagesOf(const Report& report) {
  RecordingPaper paper;
  ReportJob job(paper);
  job.Print(report);
  job.End();
  return paper.pages;
}

Report ReportOf(const std::vector<ReportRow>& rows, std::size_t columns) {
  Report report{.design = {}, .rows = std::make_unique<ListedRows>(rows)};
  for (std::size_t column = 0; column < columns; ++column) {
    report.design.columns.push_back({.caption = std::string(1, static_cast<char>('A' + column))});
  }
  return report;
}

}  // namespace vrx::testing
