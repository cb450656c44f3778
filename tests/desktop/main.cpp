#include <QApplication>
#include <QtGlobal>

#include <gmock/gmock.h>

// Real widgets without a screen, whatever the environment says.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
