#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <string>
#include <vector>

#include "base/number.h"
#include "base/translation.h"
#include "chart/charts.h"
#include "chart/scale.h"
#include "chart/sheet.h"

namespace vrx {
namespace {

constexpr double kWeightTick = 4;
constexpr double kRowGap = 8;
constexpr double kMostOfNames = 0.3;  // part of the width
constexpr double kHighestRow = 34;
constexpr std::size_t kLeastRows = 3;

struct WeightRow {
  QString name = {};
  double gross = 0;
  std::size_t index = 0;
  std::size_t count = 1;  // ingredients
};

std::vector<WeightRow> RowsOf(const WeightChart& chart) {
  std::vector<WeightRow> rows;
  for (std::size_t i = 0; i < chart.weights.size(); ++i) {
    if (std::isfinite(chart.weights[i].gross) && chart.weights[i].gross > 0) {
      rows.push_back({NameText(chart.weights[i].ingredient), chart.weights[i].gross, i});
    }
  }
  std::ranges::stable_sort(rows, std::ranges::greater(), &WeightRow::gross);
  return rows;
}

// The last rows as one, so that at most `most` are left.
void Gather(std::vector<WeightRow>& rows, std::size_t most) {
  if (rows.size() <= most) {
    return;
  }
  WeightRow rest = rows[most - 1];
  for (std::size_t i = most; i < rows.size(); ++i) {
    rest.gross += rows[i].gross;
    ++rest.count;
  }
  rest.name = ToText(Tr("%1 others", {DefaultText(static_cast<int>(rest.count))}));
  rows.resize(most - 1);
  rows.push_back(rest);
}

class WeightPlot {
 public:
  WeightPlot(Sheet& sheet, const WeightChart& chart) : sheet_(sheet), chart_(chart) {
    const double line = sheet.LineOf(Letters::kSmall);
    const double row = sheet.LineOf(Letters::kMarks) + 4;
    const double axis = 2 * line + kWeightTick + 2;
    rows_ = RowsOf(chart);
    const double least = static_cast<double>(std::min(rows_.size(), kLeastRows)) * row;
    plot_ = sheet.Room(least + axis).adjusted(0, 2, 0, -axis);
    Gather(rows_, std::max(kLeastRows, static_cast<std::size_t>(plot_.height() / row)));
    height_ = std::min(kHighestRow, plot_.height() / static_cast<double>(rows_.size()));
    plot_.setHeight(height_ * static_cast<double>(rows_.size()));
    double names = 0;
    for (const WeightRow& each : rows_) {
      names = std::max(names, sheet.WidthOf(each.name, Letters::kMarks));
      total_ += each.gross;
    }
    names_ = std::min(names, kMostOfNames * plot_.width());
    left_ = plot_.left();
    plot_.setLeft(plot_.left() + names_ + kRowGap);
    plot_.setRight(plot_.right() - sheet.WidthOf(QStringLiteral("100 %"), Letters::kSmall) -
                   kRowGap);
    weights_ = {0, total_, plot_.left(), plot_.right() - kWeightTick};
  }

  Picture Draw() {
    DrawAxis();
    DrawRows();
    sheet_.EndAt(plot_.bottom() + 2 * sheet_.LineOf(Letters::kSmall) + kWeightTick);
    return sheet_.Finish(plot_);
  }

 private:
  void DrawAxis() {
    const double base = plot_.bottom() + kWeightTick + sheet_.AscentOf(Letters::kSmall);
    const int most = std::max(2, static_cast<int>(plot_.width() / 70));
    double free = left_;
    for (const Tick& tick : NumberTicks(0, total_, most)) {
      const double x = std::floor(weights_.At(tick.value)) + 0.5;
      sheet_.AddLine(Layer::kFrame, {x, plot_.top()}, {x, plot_.bottom() + kWeightTick},
                     tick.value == 0 ? Ink::kQuiet : Ink::kGrid);
      const double half = sheet_.WidthOf(ToText(tick.text), Letters::kSmall) / 2;
      if (x - half >= free) {
        sheet_.AddText(Layer::kFrame, {x, base}, Anchor::kMiddle, ToText(tick.text),
                       Letters::kSmall, Ink::kQuiet);
        free = x + half + kRowGap;
      }
    }
    sheet_.AddText(Layer::kFrame, {plot_.right(), base + sheet_.LineOf(Letters::kSmall)},
                   Anchor::kEnd,
                   ToText(Tr("Too much and too little (%1)", {UnitText(chart_.units)})),
                   Letters::kSmall, Ink::kQuiet);
  }

  void DrawRows() {
    const double drop = sheet_.AscentOf(Letters::kMarks) * 0.36;
    double sum = 0;
    QPainterPath share;
    DotsShape marks{.at = {}, .symbol = Symbol::kDiamond, .size = 7, .ink = Ink::kSecond};
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const WeightRow& row = rows_[i];
      const double top = plot_.top() + static_cast<double>(i) * height_;
      const double middle = top + height_ / 2;
      sheet_.AddText(Layer::kFrame, {left_, middle + drop}, Anchor::kStart,
                     sheet_.Fitted(row.name, names_, Letters::kMarks), Letters::kMarks);
      const QRectF bar(plot_.left(), top + height_ * 0.15,
                       std::max(weights_.At(row.gross) - plot_.left(), 1.0), height_ * 0.7);
      row.count == 1 ? sheet_.AddBox(Layer::kMark, bar, Ink::kFirst)
                     : sheet_.AddHatching(Layer::kMark, bar, Ink::kFirst);
      sheet_.AddHit({plot_.left(), top, plot_.width(), height_}, row.index, row.count);
      sum += row.gross;
      const QPointF at(std::min(weights_.At(sum), weights_.high), middle);
      i == 0 ? share.moveTo(at) : share.lineTo(at);
      marks.at.push_back(at);
      sheet_.AddText(Layer::kFrame, {sheet_.Room(0).right(), middle + drop}, Anchor::kEnd,
                     ToText(Format(100 * sum / total_, "0") + " %"), Letters::kSmall, Ink::kQuiet);
    }
    sheet_.AddCurve(share, Ink::kSecond);
    sheet_.Add(Layer::kMark, std::move(marks));
  }

  Sheet& sheet_;
  const WeightChart& chart_;
  std::vector<WeightRow> rows_;
  QRectF plot_;
  Scale weights_;
  double total_ = 0;
  double names_ = 0;
  double left_ = 0;
  double height_ = 0;
};

}  // namespace

Picture PictureOf(const WeightChart& chart, QSizeF size, const Look& look) {
  Sheet sheet(size, look, chart.texts);
  if (RowsOf(chart).empty()) {
    return sheet.FinishEmpty(Tr("No deviations to show"));
  }
  sheet.AddLegend(
      {{LegendMark::kBox, Ink::kFirst, Tr("Ingredient")},
       {LegendMark::kSymbol, Ink::kSecond, Tr("Share of all so far"), Symbol::kDiamond}});
  return WeightPlot(sheet, chart).Draw();
}

}  // namespace vrx
