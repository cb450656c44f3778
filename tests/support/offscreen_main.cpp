#include <QApplication>
#include <QtGlobal>

#include <gmock/gmock.h>

#include "support/temp_folder.h"

// Real widgets without a screen, whatever the environment says, and nothing of the user's own.
int main(int argc, char** argv) {
  const vrx::testing::TempFolder home;
  const QByteArray folder = QByteArray::fromStdString(home.Path().string());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("XDG_CONFIG_HOME", folder);
  qputenv("XDG_RUNTIME_DIR", folder);
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
