#include "desktop/recipes/recipe_grid_columns.h"

#include <algorithm>
#include <cstddef>

#include "desktop/dialogs/about_and_splash.h"
#include "widgets/layout.h"

namespace vrx {
namespace {

constexpr int kEnteredPosition = 1;

}  // namespace

void ShowRecipeColumns(QHeaderView& header, LineEntry entry) {
  for (int column = 0; column < kRecipeColumnCount; ++column) {
    header.setSectionHidden(column, !IsColumnShown(column, entry));
  }
  header.moveSection(header.visualIndex(EnteredColumn(entry)), kEnteredPosition);
}

std::vector<int> ColumnsInSight(const QHeaderView& header, LineEntry shown, LineEntry entry) {
  std::vector<int> order;
  for (int visual = 0; visual < kRecipeColumnCount; ++visual) {
    order.push_back(header.logicalIndex(visual));
  }
  if (entry != shown && entry != LineEntry::kNone) {
    order.erase(std::find(order.begin(), order.end(), EnteredColumn(entry)));
    order.insert(order.begin() + kEnteredPosition, EnteredColumn(entry));
  }
  std::erase_if(order, [entry](int column) { return !IsColumnShown(column, entry); });
  return order;
}

void FitRecipeColumns(QHeaderView& header, int width, const RecipeColumnWidths& least,
                      int widest_ingredient) {
  RecipeColumnWidths wanted = least;
  int left = width;
  for (int column = kColumnIngredient + 1; column < kRecipeColumnCount; ++column) {
    int& of_column = wanted.at(static_cast<std::size_t>(column));
    of_column = std::max(header.sectionSizeHint(column) + kSpacing, of_column);
    left -= header.isSectionHidden(column) ? 0 : of_column;
  }
  int& ingredient = wanted.at(kColumnIngredient);
  ingredient = std::max(ingredient, std::min(left, widest_ingredient));
  ShareWidth(header, width,
             [&](int column) { return wanted.at(static_cast<std::size_t>(column)); });
}

int NextColumn(const QHeaderView& header, int column, int step) {
  int visual = header.visualIndex(column) + step;
  while (visual >= 0 && visual < kRecipeColumnCount) {
    if (const int next = header.logicalIndex(visual); !header.isSectionHidden(next)) {
      return next;
    }
    visual += step;
  }
  return column;
}

int EdgeColumn(const QHeaderView& header, int column, int step) {
  int edge = column;
  for (int next = NextColumn(header, edge, step); next != edge;
       next = NextColumn(header, edge, step)) {
    edge = next;
  }
  return edge;
}

std::vector<int> EnteredColumns(const QHeaderView& header, LineEntry entry) {
  std::vector<int> columns = {kColumnIngredient, EnteredColumn(entry)};
  std::sort(columns.begin(), columns.end(), [&](int left, int right) {
    return header.visualIndex(left) < header.visualIndex(right);
  });
  return columns;
}

}  // namespace vrx
