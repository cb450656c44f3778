#include "make_manual/figures.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <array>
#include <utility>

#include "desktop/insight/insight_page.h"
#include "history/period.h"
#include "presenter/command_states.h"
#include "widgets/calendar_popup.h"

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

// As a new user sees it; opens the databases again.
QImage FirstScreen(SampleProgram& program) {
  program.Choose("mnuFileCloseRecipeDB");
  program.Choose("mnuFileCloseTransactionDB");
  QImage image = WholeWindow(program);
  program.WillChoose("SITE.RDB");
  program.Choose("mnuFileOpenRecipeDB");
  program.WillChoose("YARD.TDB");
  program.Choose("mnuFileOpenTransactionDB");
  return image;
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
  program.ModuleHolds({"DAY30.QXT", "DAY31.QXT"});
  Click(program, "cmdUploadDataFromKRM");
  program.Find<QListWidget>("lstDataFiles").item(0)->setCheckState(Qt::Checked);
  return WholeWindow(program);
}

// The upload lives inside the click that begins it, so the picture is taken from within.
QImage UploadInProgress(SampleProgram& program) {
  program.ShowTab(kTabDataTransfer);
  program.ModuleHolds(
      {"DAY24.QXT", "DAY25.QXT", "DAY26.QXT", "DAY28.QXT", "DAY29.QXT", "DAY30.QXT"});
  program.ModuleSendsAtItsPace(true);
  const auto& status = program.Find<QLabel>("lblStatusWindow");
  const QRegularExpression half(QStringLiteral(", [5-9][0-9]% of the memory"));
  QImage image;
  QTimer events;
  QObject::connect(&events, &QTimer::timeout, &program.Window(), [&] {
    if (status.text().contains(half)) {
      events.stop();
      image = WholeWindow(program);
    }
  });
  events.start(0);
  Click(program, "cmdUploadDataFromKRM");
  program.ModuleSendsAtItsPace(false);
  if (image.isNull()) {
    throw Error("the upload showed no progress");
  }
  return image;
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
      program.IndicatorSends("DAY31.QXT");
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
  program.WillChoose("DAY31.QXT");
  program.Choose("mnuFileImportTransactionFile");
  return WholeWindow(program);
}

// As the operator picks an item of a list.
void Pick(SampleProgram& program, const char* list, int item) {
  auto& box = program.Find<QComboBox>(list);
  box.setCurrentIndex(item);
  Q_EMIT box.activated(item);
  program.RunEvents();
}

template <int kId>
QImage Recipe(SampleProgram& program) {
  program.ShowTab(kTabRecipes);
  Pick(program, "cboRecID", kId);
  return WholeWindow(program);
}

QImage RecipesOpened(SampleProgram& program) {
  constexpr int kRecipesAll = 3;
  program.ShowTab(kTabBatchedFed);
  Pick(program, "lstGroupBy", kRecipesAll);
  program.Find<QCheckBox>("chkExpandAll").setChecked(true);
  return WholeWindow(program);
}

QImage DatesClosed(SampleProgram& program) {
  constexpr int kTransactionsByDate = 2;
  program.ShowTab(kTabBatchedFed);
  Pick(program, "lstGroupBy", kTransactionsByDate);
  program.Find<QCheckBox>("chkExpandAll").setChecked(false);
  return WholeWindow(program);
}

// Leaves the history with all its days.
QImage PeriodOfTwoDays(SampleProgram& program) {
  constexpr int kPensAll = 8;
  program.ShowTab(kTabBatchedFed);
  Pick(program, "lstGroupBy", kPensAll);
  Pick(program, "cboPeriod", static_cast<int>(PeriodChoice::kFromTo));
  for (const auto& [name, day] :
       {std::pair("txtPeriodFrom", "1/6/2026"), {"txtPeriodTo", "1/7/2026"}}) {
    auto& field = program.Find<QLineEdit>(name);
    field.setText(QString::fromLatin1(day));
    Q_EMIT field.returnPressed();
  }
  program.Find<QWidget>("lstGroupBy").setFocus();
  QImage window = WholeWindow(program);
  Pick(program, "cboPeriod", static_cast<int>(PeriodChoice::kAll));
  return window;
}

QImage Found(SampleProgram& program) {
  program.ShowTab(kTabBatchedFed);
  Pick(program, "lstGroupBy", 0);
  program.Find<QAction>("mnuEditFind").trigger();
  auto& field = program.Find<QLineEdit>("txtFind");
  field.setText(QStringLiteral("corn"));
  Q_EMIT field.textEdited(field.text());
  Click(program, "cmdFindNext");
  Click(program, "cmdFindNext");
  program.Find<QWidget>("grdTRANS").setFocus();  // no blinking cursor
  QImage image = WholeWindow(program);
  Click(program, "cmdFindClose");
  return image;
}

QImage OnePen(SampleProgram& program) {
  constexpr int kPenByName = 9;
  program.ShowTab(kTabBatchedFed);
  Pick(program, "lstGroupBy", kPenByName);
  Pick(program, "cboColName", 2);
  return WholeWindow(program);
}

QImage Differences(SampleProgram& program) {
  constexpr int kPensFedAll = 8;
  program.ShowTab(kTabBatchedFed);
  Pick(program, "lstGroupBy", kPensFedAll);
  program.Find<QCheckBox>("chkExpandAll").setChecked(true);
  program.Find<QCheckBox>("chkDifferences").setChecked(true);
  QImage window = WholeWindow(program);
  program.Find<QCheckBox>("chkDifferences").setChecked(false);
  return window;
}

QImage Export(SampleProgram& program) {
  program.ShowTab(kTabExport);
  program.Find<QLineEdit>("txtFName").setText(QStringLiteral("PEN A02"));
  program.Find<QLineEdit>("txtFPath").setText(QStringLiteral("./Brantock/VRX-2260"));
  return WholeWindow(program);
}

// A question, once its answer is there; the thread that reads has its own time.
QImage Insight(SampleProgram& program, int question, const char* list = nullptr, int item = 0) {
  program.ShowTab(kTabInsight);
  program.Find<QListWidget>("lstInsight").setCurrentRow(question);
  if (list != nullptr) {
    Pick(program, list, item);
  }
  const InsightPresenter& presenter = program.Find<InsightPage>("pageInsight").Presenter();
  program.WaitUntil([&] { return presenter.IsAnswered(); });
  // The lists and the splitter take their places in a few rounds of events.
  int rounds = 0;
  program.WaitUntil([&] { return ++rounds > 5; });
  return WholeWindow(program);
}

template <int kQuestion, int kPicture = 0>
QImage InsightPicture(SampleProgram& program) {
  return kPicture == 0 ? Insight(program, kQuestion)
                       : Insight(program, kQuestion, "cboInsightPicture", kPicture);
}

// The ports of an office PC in place of those of the machine that builds.
void ShowOfficePorts(QWidget& form) {
  auto& ports = *form.findChild<QTreeWidget*>(QStringLiteral("lstSerialPort"));
  for (int i = 0; i < ports.topLevelItemCount(); ++i) {
    ports.topLevelItem(i)->setText(1, QStringLiteral("/dev/ttyS%1, no such device").arg(i));
  }
  ports.topLevelItem(0)->setText(1, QStringLiteral("/dev/ttyS0, serial port"));
  ports.topLevelItem(1)->setText(1, QStringLiteral("/dev/ttyUSB0, USB serial adapter"));
  form.findChild<QComboBox*>(QStringLiteral("cboDevice"))
      ->setEditText(QStringLiteral("/dev/ttyUSB0"));
}

// A modal form blocks whatever opens it, so the picture is taken from within, once `prepare` has
// put in place of what this machine has what an office PC has.
template <typename Prepare, typename Open>
QImage ModalForm(SampleProgram& program, Prepare prepare, Open open) {
  QImage image;
  QTimer::singleShot(0, &program.Window(), [&] {
    if (QWidget* const form = QApplication::activeModalWidget(); form != nullptr) {
      prepare(*form);
      image = form->grab().toImage();
      form->close();
    }
  });
  open();
  if (image.isNull()) {
    throw Error("no form came up");
  }
  return image;
}

void ShowOfficeFolder(QWidget& form) {
  form.findChild<QLineEdit*>(QStringLiteral("txtAppPath"))
      ->setText(QStringLiteral("/usr/lib/vrx2260"));
}

template <int kTab>
QImage Setup(SampleProgram& program) {
  const auto prepare = [](QWidget& form) {
    form.findChild<QTabWidget*>(QStringLiteral("tabSetupFolder"))->setCurrentIndex(kTab);
    ShowOfficePorts(form);
    ShowOfficeFolder(form);
  };
  return ModalForm(program, prepare, [&] { program.Choose("mnuToolsSetup"); });
}

// The words of a server that no machine has that builds the manual.
QImage CentralForm(SampleProgram& program) {
  constexpr std::array<std::pair<const char*, const char*>, 5> kTexts{{
      {"lblCentralConnection",
       "Connected to db.example:5432/company as north. Protection: TLSv1.3 "
       "(sslmode=verify-full)."},
      {"lblCentralWaiting", "42 of 1,086 rows"},
      {"lblCentralLast", "1/31/2026 7:42 AM"},
      {"lblCentralProof",
       "Rows 1009 to 1044: the file and the central database have the same 36 rows, the same sums "
       "(called 67850, loaded 67912, fed 0) and the same digest (3f2a90c1d4e5...)."},
      {"lblCentralPush", ""},
  }};
  const auto prepare = [&](QWidget& form) {
    for (const auto& [name, text] : kTexts) {
      form.findChild<QLabel*>(QLatin1String(name))->setText(QString::fromLatin1(text));
    }
    form.findChild<QWidget*>(QStringLiteral("cmdCentralClose"))->setFocus();
    for (const auto& [name, text] :
         {std::pair("txtCentralConnection", "service=company"), {"txtCentralYard", "North"}}) {
      form.findChild<QLineEdit*>(QLatin1String(name))->setText(QString::fromLatin1(text));
    }
    for (const char* const name : {"cmdCentralTest", "cmdCentralPush"}) {
      form.findChild<QWidget*>(QLatin1String(name))->setEnabled(true);
    }
  };
  return ModalForm(program, prepare, [&] { program.Choose("mnuToolsCentral"); });
}

QImage PrintSetupForm(SampleProgram& program) {
  const auto prepare = [](QWidget& form) {
    auto& printers = *form.findChild<QComboBox*>(QStringLiteral("lstPrinter"));
    printers.setCurrentIndex(printers.count() - 1);  // the PDF file, which every machine has
  };
  return ModalForm(program, prepare, [&] { program.Choose("mnuFilePrintSetup"); });
}

QImage PrintPreviewForm(SampleProgram& program) {
  program.ShowTab(kTabRecipes);
  return ModalForm(
      program, [](QWidget& /*form*/) {}, [&] { program.Choose("mnuFilePrintPreview"); });
}

QImage PeriodReportForm(SampleProgram& program) {
  return ModalForm(
      program, [](QWidget& /*form*/) {}, [&] { program.Choose("mnuFileReport"); });
}

void ShowRecipeByWeight(SampleProgram& program) {
  constexpr int kByWeight = 5;
  program.ShowTab(kTabRecipes);
  Pick(program, "cboRecID", kByWeight);
}

QImage CopyRecipeForm(SampleProgram& program) {
  ShowRecipeByWeight(program);
  return ModalForm(
      program, [](QWidget& /*form*/) {}, [&] { program.Choose("mnuEditCopyRecipe"); });
}

QImage CompareRecipesForm(SampleProgram& program) {
  ShowRecipeByWeight(program);
  return ModalForm(
      program, [](QWidget& /*form*/) {}, [&] { program.Choose("mnuEditCompareRecipes"); });
}

QImage AboutForm(SampleProgram& program) {
  return ModalForm(
      program, [](QWidget& /*form*/) {}, [&] { program.Choose("mnuHelpAbout"); });
}

// The question before a download, which says when the module was last uploaded. Closing it refuses;
// the boxes remain shown.
QImage Question(SampleProgram& program) {
  program.ShowTab(kTabDataTransfer);
  program.ModuleHolds({"DAY31.QXT"});
  Click(program, "cmdUploadDataFromKRM");
  Click(program, "cmdDownloadRecipeToKRM");
  program.ShowBoxes();
  return ModalForm(
      program, [](QWidget& /*form*/) {}, [&] { Click(program, "cmdDownloadRecipeDB"); });
}

// The question about a day that is stored already. Closing it stores nothing; the boxes remain
// shown.
QImage RepeatedBatches(SampleProgram& program) {
  program.WillChoose("DAY31.QXT");
  program.Choose("mnuFileImportTransactionFile");
  program.ShowBoxes();
  return ModalForm(
      program, [](QWidget& /*form*/) {}, [&] { Click(program, "cmdImportStore"); });
}

// Leaves that day twice in the database, and the boxes shown.
QImage Stored(SampleProgram& program) {
  program.WillChoose("DAY31.QXT");
  program.Choose("mnuFileImportTransactionFile");
  program.ShowBoxes();
  const auto store_again = [](QWidget& box) {
    for (auto* const button : box.findChildren<QAbstractButton*>()) {
      if (button->text().remove(u'&') == QStringLiteral("Store All Again")) {
        button->click();
      }
    }
  };
  ModalForm(program, store_again, [&] { Click(program, "cmdImportStore"); });
  return WholeWindow(program);
}

QImage RefusedKey(SampleProgram& program) {
  program.ShowTab(kTabPens);
  auto& field = program.Find<QLineEdit>("txtPenFeed");
  field.setFocus();
  QKeyEvent key(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
  QApplication::sendEvent(&field, &key);
  QImage window = WholeWindow(program);
  auto& tip = program.Find<QLabel>("lblRefusal");
  QPainter(&window).drawImage(program.Window().mapFromGlobal(tip.pos()), tip.grab().toImage());
  return window;
}

// Leaves the edit in the database.
QImage EditMenu(SampleProgram& program) {
  program.ShowTab(kTabPens);
  auto& field = program.Find<QLineEdit>("txtPenFeed");
  field.setFocus();
  field.setText(QStringLiteral("640"));
  program.Find<QWidget>("txtPenName").setFocus();
  program.RunEvents();
  auto& menu = program.Find<QMenu>("mnuEdit");
  Q_EMIT menu.aboutToShow();
  menu.adjustSize();
  return menu.grab().toImage();
}

QImage CalendarOfTheMonth(SampleProgram& program) {
  program.Window().ToggleCalendar();
  program.RunEvents();
  QImage image = program.Find<CalendarPopup>("calCalendar").grab().toImage();
  program.Window().ToggleCalendar();
  return image;
}

// The tabs of the setup.
enum SetupTab {
  kDatabase,
  kApplication,
  kIniFile,
  kTransactionFile,
  kOptions,
  kConnections,
  kKrm,
  kLimits
};

// The order is that of the work, since some leave a tab as they filled it.
constexpr std::array kFigures = std::to_array<Figure>({
    {"data-transfer", &Tab<kTabDataTransfer>},
    {"first-screen", &FirstScreen},
    {"calendar", &CalendarOfTheMonth},
    {"download", &Download},
    {"upload-progress", &UploadInProgress},
    {"upload", &Upload},
    {"direct", &Direct},
    {"ingredients", &Tab<kTabIngredients>},
    {"recipes", &Recipe<5>},
    {"recipe-percent", &Recipe<1>},
    {"recipe-untyped", &Recipe<10>},
    {"recipe-copy", &CopyRecipeForm},
    {"recipe-compare", &CompareRecipesForm},
    {"pens", &Tab<kTabPens>},
    {"batched-fed-closed", &DatesClosed},
    {"batched-fed", &RecipesOpened},
    {"batched-fed-period", &PeriodOfTwoDays},
    {"batched-fed-find", &Found},
    {"batched-fed-pen", &OnePen},
    {"batched-fed-differences", &Differences},
    {"import", &Import},
    {"export", &Export},
    {"insight", &InsightPicture<0>},
    {"insight-distribution", &InsightPicture<0, 1>},
    {"insight-operators", &InsightPicture<0, 2>},
    {"insight-weights", &InsightPicture<0, 3>},
    {"insight-balance", &InsightPicture<2>},
    {"insight-delivered", &InsightPicture<4>},
    {"setup-database", &Setup<kDatabase>},
    {"setup-application", &Setup<kApplication>},
    {"setup-ini", &Setup<kIniFile>},
    {"setup-transaction", &Setup<kTransactionFile>},
    {"setup-options", &Setup<kOptions>},
    {"setup-connections", &Setup<kConnections>},
    {"setup-krm", &Setup<kKrm>},
    {"setup-insight", &Setup<kLimits>},
    {"central-push", &CentralForm},
    {"print-setup", &PrintSetupForm},
    {"print-preview", &PrintPreviewForm},
    {"period-report", &PeriodReportForm},
    {"about", &AboutForm},
    {"question", &Question},
    {"repeated", &RepeatedBatches},
    {"stored", &Stored},
    {"refused-key", &RefusedKey},
    {"edit-menu", &EditMenu},
});

}  // namespace

std::span<const Figure> Figures() { return kFigures; }

}  // namespace vrx::manual
