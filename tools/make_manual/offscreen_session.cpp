#include "make_manual/offscreen_session.h"

#include <QApplication>
#include <QFont>
#include <QLocale>
#include <QStyleFactory>
#include <cstdio>

namespace vrx::manual {
namespace {

// The offscreen platform warns at each dialog that there is no window manager.
void WriteMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text) {
  if (!text.contains(QStringLiteral("propagateSizeHints"))) {
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
  }
}

}  // namespace

OffscreenSession::OffscreenSession(int scale) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
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
}

}  // namespace vrx::manual
