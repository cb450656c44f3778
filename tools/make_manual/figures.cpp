#include "make_manual/figures.h"

#include <QApplication>
#include <array>

#include "frame/command_states.h"

namespace vrx::manual {
namespace {

QImage WholeWindow(SampleProgram& program) {
  program.RunEvents();
  return program.Window().grab().toImage();
}

template <int kTab>
QImage Tab(SampleProgram& program) {
  program.ShowTab(kTab);
  return WholeWindow(program);
}

constexpr std::array kFigures = std::to_array<Figure>({
    {"ingredients", &Tab<kTabIngredients>},
    {"recipes", &Tab<kTabRecipes>},
    {"pens", &Tab<kTabPens>},
    {"data-transfer", &Tab<kTabDataTransfer>},
    {"batched-fed", &Tab<kTabBatchedFed>},
    {"import", &Tab<kTabImport>},
    {"export", &Tab<kTabExport>},
});

}  // namespace

std::span<const Figure> Figures() { return kFigures; }

}  // namespace vrx::manual
