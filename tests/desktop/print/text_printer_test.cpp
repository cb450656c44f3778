#include "desktop/print/text_printer.h"

#include <QPrinter>
#include <string>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

// The sheets of a text printed into a PDF.
int SheetsOf(const std::string& text) {
  const TempFolder folder;
  const std::string file = (folder / "out.pdf").string();
  {
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(file));
    PrintText(printer, text);
  }
  const std::string pdf = ReadAll(file);
  int sheets = 0;
  for (std::size_t at = pdf.find("/Type /Page\n"); at != std::string::npos;
       at = pdf.find("/Type /Page\n", at + 1)) {
    ++sheets;
  }
  return sheets;
}

std::string Lines(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += "line\r\n";
  }
  return text;
}

TEST(PrintText, AShortTextTakesOneSheet) { EXPECT_EQ(SheetsOf("one\r\ntwo"), 1); }

TEST(PrintText, AFormFeedBeginsANewSheetButNotAnEmptyOne) {
  EXPECT_EQ(SheetsOf("one\ftwo\fthree"), 3);
  EXPECT_EQ(SheetsOf("\fone\r\ntwo"), 1);
  EXPECT_EQ(SheetsOf("one\r\n\ftwo"), 2);
}

TEST(PrintText, ALongTextGoesOnOnTheNextSheet) {
  EXPECT_EQ(SheetsOf(Lines(30)), 1);
  EXPECT_GE(SheetsOf(Lines(300)), 4);
}

TEST(PrintText, ALongLineGoesOnInTheNextOne) { EXPECT_GT(SheetsOf(std::string(20'000, 'x')), 1); }

}  // namespace
}  // namespace vrx::testing
