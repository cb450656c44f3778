#include "make_manual/figures.h"

#include <QAbstractButton>
#include <QListWidget>
#include <QTimer>
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

void Click(SampleProgram& program, const char* button) {
  program.Find<QAbstractButton>(button).click();
  program.RunEvents();
}

QImage Download(SampleProgram& program) {
  program.ShowTab(kTabDataTransfer);
  Click(program, "cmdDownloadRecipeToKRM");
  program.WillChoose("SITE.RDB");
  Click(program, "cmdOpenRecipeDB");
  program.ShowTab(kTabDataTransfer);
  return WholeWindow(program);
}

QImage Upload(SampleProgram& program) {
  program.ShowTab(kTabDataTransfer);
  program.ModuleHolds({"DAY6.QXT", "DAY7.QXT"});
  Click(program, "cmdUploadDataFromKRM");
  program.Find<QListWidget>("lstDataFiles").item(0)->setCheckState(Qt::Checked);
  return WholeWindow(program);
}

// The connection lives inside the click that begins it, so the picture is taken from within.
QImage Direct(SampleProgram& program) {
  program.ShowTab(kTabDataTransfer);
  QImage image;
  QTimer::singleShot(0, &program.Window(), [&] {
    Click(program, "cmdDownloadRecipeToKRM");
    image = WholeWindow(program);
    Click(program, "optConnection(0)");
  });
  Click(program, "optConnection(1)");
  return image;
}

// The order is that of the work, since some leave a tab as they filled it.
constexpr std::array kFigures = std::to_array<Figure>({
    {"data-transfer", &Tab<kTabDataTransfer>},
    {"download", &Download},
    {"upload", &Upload},
    {"direct", &Direct},
    {"ingredients", &Tab<kTabIngredients>},
    {"recipes", &Tab<kTabRecipes>},
    {"recipe-percent", &Tab<kTabRecipes>},
    {"pens", &Tab<kTabPens>},
    {"batched-fed", &Tab<kTabBatchedFed>},
    {"batched-fed-pen", &Tab<kTabBatchedFed>},
    {"import", &Tab<kTabImport>},
    {"export", &Tab<kTabExport>},
    {"setup-options", &Tab<kTabExport>},
    {"setup-krm", &Tab<kTabExport>},
});

}  // namespace

std::span<const Figure> Figures() { return kFigures; }

}  // namespace vrx::manual
