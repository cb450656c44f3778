#include "desktop/app/captions.h"

#include <QAction>
#include <QCoreApplication>
#include <QLabel>
#include <QLibraryInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

struct Caption {
  int id;
  std::string_view text;
};

// By id, ascending. The captions of the design stay English: no catalogue has them.
constexpr std::array kCaptions = std::to_array<Caption>({
    {1000, "&File"},
    {1001, "&New..."},
    {1002, "&Open..."},
    {1003, "-"},
    {1004, "&Save..."},
    {1006, "&Print"},
    {1007, "E&xit"},
    {1008, "&Edit"},
    {1009, "&Ingredients"},
    {1010, "&Recipes"},
    {1011, "&Pens"},
    {1012, "&Transfer"},
    {1013, "&Upload Data..."},
    {1014, "&Download Data..."},
    {1015, "&Tools"},
    {1016, "&Setup/Test..."},
    {1017, "&Help"},
    {1018, "&About..."},
    {1019, "New Database"},
    {1020, "Open Database"},
    {1021, "Save"},
    {1022, "Print"},
    {1030, "Copyright (C) 2026 Brantock"},
    {1032, "Ration Target"},
    {1033, "available"},
    {1038, "Setup and Test"},
    {1045, "OK"},
    {1047, "&System Info..."},
    {1048, "OK"},
    {1049, "Standby... Attempting to connect to KRM"},
    {1050, "Version:"},
    {1051, "Application Title"},
    {1052, "Transfer Data Software"},
    {1053, "TBD"},
    {1054, "ID Number"},
    {1056, "Name"},
    {1057, "Dry Matter"},
    {1058, "%"},
    {1060, "Batch By"},
    {1061, "Head Count"},
    {1062, "Feed Amount"},
    {1063, "VRX-2260 Transfer Data Software"},
    {1064, "Progress:"},
    {1070, "Recipe Database"},
    {1071, "Transaction Database"},
    {1072, "&View"},
    {1073, "&Import Transaction File..."},
    {1074, "Feeds weighed, loads known"},
    {1077, "Paths"},
    {1078, "Auto-Abbreviate Names"},
    {1080, "Data Group"},
    {1081, "VRX-2260"},
    {1082, "Weight Units"},
    {1083, "Please visit our website at:"},
    {1084, "https://brantock.example"},
    {1085, "Serial Port"},
    {1086, "KRM Baud"},
    {1090, "&Close..."},
    {1091, " Exporting"},
    {1094, "Transaction File:"},
    {1095, "Units:"},
    {1096, "Transactions:"},
    {1097, "Filename"},
    {1098, "File Contents"},
    {1099, "Records:"},
    {1100, "Calendar"},
    {1101, "Import Transaction File"},
    {1102, "Setup"},
    {1103, "Print Set&up..."},
    {1104, "Part No:"},
    {1105, "All rights reserved"},
    {1106, "&Import Transaction File..."},
    {1107, "Status:"},
    {1110, "Totals:"},
    {1112, "Connection:"},
    {1113, "Memory:"},
    {1114, "Adjust Batch Total"},
    {1115, "Enter recipe based on feeding 100 head"},
    {1116, "https://brantock.example"},
    {1117, "May not reflect changes that have not been saved yet (by exiting the application)."},
    {1118, "Transfer"},
    {1121, "Where Used (in Recipes)"},
    {1122, "Save &As..."},
    {1123, "Scanning Database..."},
    {1126, "https://brantock.example"},
    {1127, "&Users Manual"},
    {1128, "Read&me"},
    {1131, "Ingredients must total 100% to set Ration Target"},
    {1132, "This recipe will require the 200 pen capacity option in the K2260 indicator."},
    {1134, "*"},
    // Captions that the design does not have.
    {2000, TrMark("Print Pre&view...")},
    {2001, TrMark("&Period")},
    {2002, TrMark("From")},
    {2003, TrMark("To")},
    {2004, TrMark("Mark differences beyond")},
    {2005, TrMark("percent of the target.")},
    {2006, TrMark("Find")},
    {2010, TrMark("&Undo")},
    {2011, TrMark("Re&do")},
    {2012, TrMark("C&opy Recipe...")},
    {2013, TrMark("Co&mpare Recipes...")},
    {2014, TrMark("&Copy")},
    {2015, TrMark("&Find...")},
    {2020, TrMark("&Refresh")},
    {2021, TrMark("&Chapter of This Tab")},
    {2030, TrMark("Table")},
    {2031, TrMark("Picture")},
    {2032, TrMark("Recipe")},
    {2033, TrMark("Ingredient")},
    {2034, TrMark("Operator")},
    {2035, TrMark("Pen")},
    {2036, TrMark("Days")},
    {2037, TrMark("As of")},
    {2040, TrMark("On target within")},
    {2041, TrMark("Close within")},
    {2042, TrMark("Far off beyond")},
    {2043, TrMark("Division of the scale")},
    {2044, TrMark("Out of balance beyond")},
    {2045, TrMark("and beyond")},
    {2046, TrMark("percent of the target")},
    {2047, TrMark("kg")},
    {2048, TrMark("in the unit of the database")},
    {2049, TrMark("percent of what was loaded")},
    {2052, TrMark("The limits of the tab Insight. The figures of other yards are shown with the "
                  "usual values only, because they were made with these.")},
    {2060, TrMark("&Report...")},
    {2070, TrMark("&Central Database...")},
});

// Nothing if the designed text is not in a row of the table.
std::optional<QString> CaptionOf(const QString& designed) {
  const std::optional<std::int32_t> id = ParseLong(ResolveCaptionId(designed.toStdString()));
  const std::optional<std::string_view> text = id ? CaptionText(*id) : std::nullopt;
  return text ? std::optional(QTr(*text)) : std::nullopt;
}

QString TagOf(const QObject& control) { return control.property(kTagProperty).toString(); }

void CaptionMenus(const QWidget& menu) {
  for (QAction* const action : menu.actions()) {
    if (action->isSeparator()) {
      continue;
    }
    if (const std::optional<QString> text = CaptionOf(action->text())) {
      action->setText(*text);
    }
    if (action->menu() != nullptr) {
      CaptionMenus(*action->menu());
    }
  }
}

void CaptionToolBar(const QToolBar& bar) {
  for (QAction* const action : bar.actions()) {
    if (action->isSeparator()) {
      continue;
    }
    if (const std::optional<QString> text = CaptionOf(action->toolTip())) {
      action->setToolTip(*text);
    }
  }
}

}  // namespace

Language::Language(const QStringList& locales) {
  for (const QString& locale : locales) {
    const QString code = locale.section(u'-', 0, 0).section(u'_', 0, 0);
    if (code == QStringLiteral("en") || code == QStringLiteral("C")) {
      return;
    }
    if (!texts_.load(code, QStringLiteral(":/languages"))) {
      continue;
    }
    code_ = code;
    if (qt_texts_.load(QStringLiteral("qtbase_") + code,
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
      QCoreApplication::installTranslator(&qt_texts_);
    }
    SetTranslator([this](std::string_view text) {
      const std::string source(text);
      const QString translated = texts_.translate("", source.c_str());
      return translated.isEmpty() ? source : translated.toStdString();
    });
    return;
  }
}

Language::~Language() { SetTranslator({}); }

std::optional<std::string_view> CaptionText(int id) {
  const auto* const found =
      std::lower_bound(kCaptions.begin(), kCaptions.end(), id,
                       [](const Caption& row, int wanted) { return row.id < wanted; });
  if (found == kCaptions.end() || found->id != id) {
    return std::nullopt;
  }
  return found->text;
}

void SetTag(QObject& control, int id) { control.setProperty(kTagProperty, QString::number(id)); }

QLabel* AddLabel(QWidget& parent, const char* name, int caption) {
  auto* const label = new QLabel(&parent);
  label->setObjectName(QString::fromLatin1(name));
  label->setTextFormat(Qt::PlainText);
  if (caption != 0) {
    SetTag(*label, caption);
  }
  return label;
}

void ApplyCaptionTable(QWidget& form) {
  if (const std::optional<QString> title = CaptionOf(TagOf(form))) {
    form.setWindowTitle(*title);
  }
  for (QLabel* const label : form.findChildren<QLabel*>()) {
    if (const std::optional<QString> text = CaptionOf(TagOf(*label))) {
      label->setText(*text);
    }
  }
  for (const QMenuBar* const bar : form.findChildren<QMenuBar*>()) {
    CaptionMenus(*bar);
  }
  for (const QToolBar* const bar : form.findChildren<QToolBar*>()) {
    CaptionToolBar(*bar);
  }
}

}  // namespace vrx
