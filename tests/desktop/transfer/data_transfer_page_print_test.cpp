#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "base/error.h"
#include "desktop/main_window/main_window.h"
#include "desktop/transfer/data_transfer_page.h"
#include "support/fake_serial_control.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class KeptPrints : public TextPrinter {
 public:
  void Print(const std::string& text) override {
    if (refuses) {
      throw Error("out of paper");
    }
    prints.push_back(text);
  }

  bool refuses = false;
  std::vector<std::string> prints;
};

class PrintOfTheDataWindow : public ::testing::Test, protected TestServices {
 protected:
  PrintOfTheDataWindow() { settings.SetEnablePrintTextOn(true); }

  void Print(const std::string& typed) {
    DataTransferPage page(
        services, krm, databases, [](int /*position*/) {}, status, printer);
    page.Prepare();
    QTest::keyClicks(page.findChild<QPlainTextEdit*>(u"txtDataWindow"_qs),
                     QString::fromStdString(typed));
    QTest::mouseClick(page.findChild<QPushButton*>(u"cmdPrintText"_qs), Qt::LeftButton);
  }

  FakeSerialControl serial{pump};
  KRMCOMM krm{serial, pump, op, settings};
  MainWindow window{settings, calendar};
  GeneralDelay delay{pump};
  DatabaseCommands databases{services, delay, window.Commands(), window.Tabs(), window};
  TransferStatusPanel status;
  KeptPrints printer;
};

TEST_F(PrintOfTheDataWindow, PrintsWhatItShows) {
  Print("abc");
  EXPECT_THAT(printer.prints, ElementsAre("abc"));
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(PrintOfTheDataWindow, APrinterThatRefusesIsReported) {
  printer.refuses = true;
  Print("abc");
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Print Error");
  EXPECT_EQ(op.boxes[0].cause, "out of paper");
}

TEST_F(PrintOfTheDataWindow, PrintsNothingWhileItsOptionIsOff) {
  settings.SetEnablePrintTextOn(false);
  Print("abc");
  EXPECT_TRUE(printer.prints.empty());
}

}  // namespace
}  // namespace vrx::testing
