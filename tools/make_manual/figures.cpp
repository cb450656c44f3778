#include "make_manual/figures.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
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
  // Choosing a recipe database turns the other one's tabs off.
  program.WillChoose("YARD.TDB");
  program.Choose("mnuFileOpenTransactionDB");
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

// The connection lives inside the click that begins it, so the picture is taken from within, once
// the records of a day have come over the cable.
QImage Direct(SampleProgram& program) {
  program.ShowTab(kTabDataTransfer);
  const auto& open = program.Find<QPushButton>("cmdOpenRecipeDB");
  const auto& size = program.Find<QLabel>("lblMemorySize");
  bool sent = false;
  QImage image;
  QElapsedTimer elapsed;
  elapsed.start();
  QTimer events;
  QObject::connect(&events, &QTimer::timeout, &program.Window(), [&] {
    constexpr int kLongest = 20000;  // milliseconds; a machine under load is slow
    if (!sent && open.text() == QStringLiteral("Load Memory...")) {
      program.IndicatorSends("DAY7.QXT");
      sent = true;
    } else if (sent && size.text() != QStringLiteral("0")) {
      Click(program, "cmdUploadDataFromKRM");
      program.Find<QListWidget>("lstDataFiles").item(0)->setCheckState(Qt::Checked);
      image = WholeWindow(program);
    }
    if (!image.isNull() || elapsed.hasExpired(kLongest)) {
      events.stop();
      Click(program, "optConnection(0)");
    }
  });
  events.start(0);
  Click(program, "optConnection(1)");
  if (image.isNull()) {
    throw Error("the direct connection did not come about");
  }
  return image;
}

QImage Import(SampleProgram& program) {
  program.WillChoose("DAY7.QXT");
  program.Choose("mnuFileImportTransactionFile");
  return WholeWindow(program);
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
    {"import", &Import},
    {"export", &Tab<kTabExport>},
    {"setup-options", &Tab<kTabExport>},
    {"setup-krm", &Tab<kTabExport>},
});

}  // namespace

std::span<const Figure> Figures() { return kFigures; }

}  // namespace vrx::manual
