#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/number.h"
#include "base/translation.h"
#include "chart/charts.h"
#include "chart/sheet.h"

namespace vrx {
namespace {

constexpr double kCellGap = 6;
constexpr double kLeastCell = 34;
constexpr double kWidestCell = 72;
constexpr double kMostOfRowNames = 0.3;  // part of the width

using Name = std::optional<std::string>;

std::vector<Name> RowNames(const std::vector<OperatorCell>& cells) {
  std::vector<Name> names;
  std::set<Name> known;
  for (const OperatorCell& cell : cells) {
    if (known.insert(cell.ingredient).second) {
      names.push_back(cell.ingredient);
    }
  }
  return names;
}

// No operator, numbers, other names.
std::vector<Name> ColumnNames(const std::vector<OperatorCell>& cells) {
  std::set<std::tuple<int, double, Name>> sorted;
  for (const OperatorCell& cell : cells) {
    const Name& name = cell.operator_id;
    const std::optional<double> number = name ? ParseNumber(*name) : std::nullopt;
    sorted.emplace(!name ? 0 : number ? 1 : 2, number.value_or(0), name);
  }
  std::vector<Name> names;
  names.reserve(sorted.size());
  for (const auto& [kind, number, name] : sorted) {
    names.push_back(name);
  }
  return names;
}

// A grid of cells. Columns that do not fit the width follow in a further grid below.
class OperatorGrid {
 public:
  OperatorGrid(Sheet& sheet, const OperatorChart& chart)
      : sheet_(sheet),
        chart_(chart),
        rows_(RowNames(chart.cells)),
        columns_(ColumnNames(chart.cells)) {
    for (std::size_t i = 0; i < chart.cells.size(); ++i) {
      cells_[{chart.cells[i].operator_id, chart.cells[i].ingredient}] = i;
    }
    height_ = sheet.LineOf(Letters::kMarks) + kCellGap;
  }

  Picture Draw() {
    const QRectF room = sheet_.Room(0);
    MeasureColumns(room.width());
    const std::size_t columns = columns_.size();
    double top = room.top();
    QRectF plot;
    for (std::size_t first = 0; first < columns; first += in_a_grid_) {
      const std::size_t end = std::min(first + in_a_grid_, columns);
      const QRectF grid = DrawGrid(room.left(), top, first, end);
      plot = plot.isNull() ? grid : plot.united(grid);
      top = grid.bottom() + 2 * kCellGap;
    }
    sheet_.EndAt(plot.bottom());
    return sheet_.Finish(plot);
  }

 private:
  void MeasureColumns(double width) {
    names_width_ = sheet_.WidthOf(ToText(Tr("Operator")), Letters::kSmall);
    for (const Name& name : rows_) {
      names_width_ = std::max(names_width_, sheet_.WidthOf(NameText(name), Letters::kMarks));
    }
    names_width_ = std::min(names_width_, kMostOfRowNames * width);
    double cell = kLeastCell;
    for (const Name& name : columns_) {
      cell = std::max(cell, sheet_.WidthOf(NameText(name), Letters::kSmall) + kCellGap);
    }
    const double free = width - names_width_ - kCellGap;
    cell = std::min(cell, std::min(kWidestCell, free));
    const auto fit = static_cast<std::size_t>(std::max(1.0, std::floor(free / cell)));
    // The same number in each grid.
    const std::size_t grids = (columns_.size() + fit - 1) / fit;
    in_a_grid_ = (columns_.size() + grids - 1) / grids;
    cell_ = std::min(kWidestCell, free / static_cast<double>(in_a_grid_));
  }

  QRectF DrawGrid(double left, double top, std::size_t first, std::size_t end) {
    const double cells_left = left + names_width_ + kCellGap;
    const double head = top + sheet_.AscentOf(Letters::kSmall);
    sheet_.AddText(Layer::kFrame, {left, head}, Anchor::kStart,
                   sheet_.Fitted(ToText(Tr("Operator")), names_width_, Letters::kSmall),
                   Letters::kSmall, Ink::kQuiet);
    const double cells_top = top + sheet_.LineOf(Letters::kSmall) + 2;
    for (std::size_t column = first; column < end; ++column) {
      const double x = cells_left + static_cast<double>(column - first) * cell_;
      sheet_.AddText(Layer::kFrame, {x + cell_ / 2, head}, Anchor::kMiddle,
                     sheet_.Fitted(NameText(columns_[column]), cell_ - 2, Letters::kSmall),
                     Letters::kSmall, Ink::kQuiet);
    }
    const double drop = (height_ + sheet_.AscentOf(Letters::kMarks) * 0.72) / 2;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      const double y = cells_top + static_cast<double>(row) * height_;
      sheet_.AddText(Layer::kFrame, {left, y + drop}, Anchor::kStart,
                     sheet_.Fitted(NameText(rows_[row]), names_width_, Letters::kMarks),
                     Letters::kMarks);
      for (std::size_t column = first; column < end; ++column) {
        DrawCell({cells_left + static_cast<double>(column - first) * cell_, y, cell_, height_},
                 column, row, drop);
      }
    }
    return {cells_left, cells_top, static_cast<double>(end - first) * cell_,
            static_cast<double>(rows_.size()) * height_};
  }

  void DrawCell(const QRectF& place, std::size_t column, std::size_t row, double drop) {
    const QRectF box = place.adjusted(1, 1, -1, -1);
    const auto cell = cells_.find({columns_[column], rows_[row]});
    if (cell == cells_.end()) {
      return;
    }
    sheet_.AddHit(box, cell->second);
    const std::optional<double>& share = chart_.cells[cell->second].share;
    QPainterPath frame;
    frame.addRect(box.adjusted(0.5, 0.5, -0.5, -0.5));
    if (!share || !std::isfinite(*share)) {
      sheet_.Add(Layer::kMark, PathShape{.path = frame, .line = Ink::kGrid});
      return;
    }
    const double shade = std::clamp(*share / 100, 0.0, 1.0) * kMostShade;
    sheet_.Add(Layer::kMark,
               PathShape{.path = frame, .fill = Ink::kShade, .opacity = shade, .line = Ink::kGrid});
    sheet_.AddText(Layer::kMark, {box.center().x(), place.top() + drop}, Anchor::kMiddle,
                   ToText(Format(*share, "0")), Letters::kMarks);
  }

  Sheet& sheet_;
  const OperatorChart& chart_;
  std::vector<Name> rows_;
  std::vector<Name> columns_;
  std::map<std::pair<Name, Name>, std::size_t> cells_;  // by operator and ingredient
  double names_width_ = 0;
  double cell_ = kLeastCell;
  double height_ = 0;
  std::size_t in_a_grid_ = 1;
};

}  // namespace

Picture PictureOf(const OperatorChart& chart, QSizeF size, const Look& look) {
  Sheet sheet(size, look, chart.texts);
  if (chart.cells.empty()) {
    return sheet.FinishEmpty(Tr("No loads to show"));
  }
  sheet.AddLine(Tr("Loads within %1 % of the target, in percent (blank: fewer than 20 loads)",
                   {DefaultText(chart.limit)}));
  return OperatorGrid(sheet, chart).Draw();
}

}  // namespace vrx
