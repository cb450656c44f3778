#pragma once

#include <QFont>
#include <QPaintEngine>
#include <QPdfWriter>
#include <cstdint>
#include <string>
#include <vector>

#include "report/report.h"

namespace vrx::testing {

inline constexpr int kRecordedDotsPerInch = 1200;
inline constexpr double kDot = 72.0 / kRecordedDotsPerInch;  // points

// Lengths are points from the upper left corner of what the margins leave of the sheet.
struct DrawnText {
  std::string text;
  double left;
  double right;
  double baseline;
  double scale;  // of the width: below 1 for a text that is drawn narrower
  QFont font;
  std::uint32_t color;
};

struct DrawnLine {
  double left;
  double top;
  double right;
  double bottom;
  double width;
};

struct DrawnPage {
  std::vector<DrawnText> texts;
  std::vector<DrawnLine> lines;

  // Throws std::runtime_error for a text that is not on the page.
  const DrawnText& Text(const std::string& text) const;
  std::vector<std::string> Texts() const;
  std::vector<DrawnLine> LinesAcross() const;
  std::vector<DrawnLine> LinesDown() const;
};

class RecordingEngine : public QPaintEngine {
 public:
  explicit RecordingEngine(std::vector<DrawnPage>& pages)
      : QPaintEngine(AllFeatures), pages_(pages) {}

  bool begin(QPaintDevice* /*device*/) override { return takes_document; }
  bool end() override { return takes_end; }
  void updateState(const QPaintEngineState& now) override;
  void drawTextItem(const QPointF& at, const QTextItem& item) override;
  void drawLines(const QLineF* lines, int count) override;
  void drawPixmap(const QRectF& /*to*/, const QPixmap& /*map*/, const QRectF& /*from*/) override {}
  Type type() const override { return User; }

  bool takes_document = true;
  bool takes_end = true;

 private:
  std::vector<DrawnPage>& pages_;
  QTransform transform_;
  QPen pen_;
};

// An A4 sheet, upright, that keeps what is drawn on it instead of writing it.
class RecordingPaper : public QPdfWriter {
 public:
  RecordingPaper();

  bool newPage() override;

  double Width() const;  // of what the margins leave
  double Height() const;

  std::vector<DrawnPage> pages = {{}};
  mutable RecordingEngine engine{pages};
  std::size_t most_pages = 1000;  // takes no more

 protected:
  QPaintEngine* paintEngine() const override { return &engine; }
};

// The pages of a report. Throws what the job throws.
std::vector<DrawnPage> PagesOf(const Report& report);

// A report of these rows without header texts, its columns captioned "A", "B" and so on.
Report ReportOf(const std::vector<ReportRow>& rows, std::size_t columns = 1);

}  // namespace vrx::testing
