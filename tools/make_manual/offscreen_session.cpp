#include "make_manual/offscreen_session.h"

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QStyleFactory>
#include <cstdio>

#include "base/error.h"

namespace vrx::manual {
namespace {

// The offscreen platform warns at each dialog that it has no window manager.
void WriteMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text) {
  if (!text.startsWith(QStringLiteral("This plugin does not support"))) {
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
  }
}

// The platform's own screen is too small for the largest box at the scale of the figures.
void WriteScreen(const QString& path, int scale) {
  constexpr int kWidth = 1600;
  constexpr int kHeight = 1200;
  constexpr int kDpi = 96;
  const QJsonObject screen{{QStringLiteral("name"), QStringLiteral("figures")},
                           {QStringLiteral("x"), 0},
                           {QStringLiteral("y"), 0},
                           {QStringLiteral("width"), kWidth * scale},
                           {QStringLiteral("height"), kHeight * scale},
                           {QStringLiteral("logicalDpi"), kDpi},
                           {QStringLiteral("logicalBaseDpi"), kDpi},
                           {QStringLiteral("dpr"), 1}};
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) {
    throw Error("cannot write " + path.toStdString());
  }
  file.write(QJsonDocument(QJsonObject{{QStringLiteral("screens"), QJsonArray{screen}}}).toJson());
}

}  // namespace

OffscreenSession::OffscreenSession(int scale) {
  const QString screen = home_.filePath(QStringLiteral("screen.json"));
  WriteScreen(screen, scale);
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.toLocal8Bit());
  qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
  for (const char* const kept_elsewhere : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
    qputenv(kept_elsewhere, home_.path().toLocal8Bit());
  }
  for (const char* const unset : {"QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME", "QT_FONT_DPI"}) {
    qunsetenv(unset);
  }
  QLocale::setDefault(QLocale::c());
  qInstallMessageHandler(WriteMessage);
}

void OffscreenSession::SetLook() {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
  QApplication::setCursorFlashTime(0);
}

}  // namespace vrx::manual
