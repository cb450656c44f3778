#include <QCoreApplication>

#include <gmock/gmock.h>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
