// The colors in which the program itself draws texts, on both desktops.

#include <QColor>
#include <string>

#include <gtest/gtest.h>

#include "desktop/history/history_painting.h"
#include "desktop/recipes/recipe_grid_cells.h"
#include "support/desktop_palettes.h"
#include "widgets/drawing.h"

namespace vrx::testing {
namespace {

void ExpectReadable(const QColor& text, const QColor& background, const std::string& what) {
  EXPECT_GE(ContrastRatio(text, background), kTextContrast)
      << what << ": " << text.name().toStdString() << " on " << background.name().toStdString();
}

TEST(DrawnColors, OfRecipeCellsAreReadable) {
  for (const auto& [desktop, colors] : Desktops()) {
    const QPalette palette = WithReadableTexts(colors);
    for (const CellRole role : {CellRole::kEntered, CellRole::kReadOnly, CellRole::kComputed}) {
      for (const bool current : {false, true}) {
        const RecipeCellLook look = LookOfCell(role, current, palette);
        ExpectReadable(look.text, look.background, desktop + " cell");
        ExpectReadable(DescriptionColor(look), look.background, desktop + " description");
      }
    }
  }
}

TEST(DrawnColors, OfHistoryRowsAreReadable) {
  for (const auto& [desktop, colors] : Desktops()) {
    const QPalette palette = WithReadableTexts(colors);
    const HistoryStyles styles(palette);
    ExpectReadable(HistoryStyles::HeaderColor(palette), palette.color(QPalette::Button),
                   desktop + " header");
    for (const HistoryRowKind kind :
         {HistoryRowKind::kGroup, HistoryRowKind::kTotal, HistoryRowKind::kRecord}) {
      for (const int row : {1, 2}) {
        for (const bool selected : {false, true}) {
          for (const HistoryColumn& column : HistoryColumnTable()) {
            const HistoryLook& look = styles.Cell(kind, column.index, row, selected);
            ExpectReadable(look.text, look.back,
                           desktop + " row of kind " + std::to_string(static_cast<int>(kind)) +
                               ", column " + std::to_string(column.index));
          }
        }
      }
    }
  }
}

TEST(DrawnColors, OfTheStatusLineAreReadable) {
  for (const auto& [desktop, colors] : Desktops()) {
    const QColor window = WithReadableTexts(colors).color(QPalette::Window);
    for (const StatusColor color : {StatusColor::kBlue, StatusColor::kRed, StatusColor::kGreen}) {
      ExpectReadable(StatusTextColor(color, window), window,
                     desktop + " status " + std::to_string(static_cast<int>(color)));
    }
  }
}

}  // namespace
}  // namespace vrx::testing
