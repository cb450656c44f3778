#include <QGuiApplication>
#include <QtGlobal>

#include <gmock/gmock.h>

#include "support/temp_folder.h"

// Provides fonts without a screen.
int main(int argc, char** argv) {
  const vrx::testing::TempFolder home;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(home.Path().string()));
  const QGuiApplication application(argc, argv);
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
