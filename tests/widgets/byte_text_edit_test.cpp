#include "widgets/byte_text_edit.h"

#include <QTest>
#include <random>

#include <gmock/gmock.h>

namespace vrx::testing {
namespace {

std::string Joined(std::string_view text) {
  std::string joined;
  for (const TextLine& line : SplitLines(text)) {
    joined.append(line.text).append(line.end);
  }
  return joined;
}

std::vector<std::string> LinesOf(std::string_view text) {
  std::vector<std::string> lines;
  for (const TextLine& line : SplitLines(text)) {
    lines.emplace_back(line.text);
  }
  return lines;
}

TEST(SplitLines, KeepsEveryByte) {
  for (const std::string text : {"", "\r", "\n", "\r\n", "\n\r", "a\r\r\nb\n\nc", "a\r\n"}) {
    EXPECT_EQ(Joined(text), text);
  }
  EXPECT_EQ(SplitLines("").size(), 1U);
  EXPECT_EQ(SplitLines("a\r\nb\rc\nd").size(), 4U);
}

TEST(TakeEdit, AnEditThatChangesNothingChangesNoByte) {
  std::mt19937 random(7);
  constexpr std::string_view kAlphabet = "ab\r\n\f";
  for (int round = 0; round < 2000; ++round) {
    std::string text(random() % 12, ' ');
    for (char& character : text) {
      character = kAlphabet[random() % kAlphabet.size()];
    }
    EXPECT_EQ(TakeEdit(text, LinesOf(text)), text);
  }
}

TEST(TakeEdit, LinesKeepTheirEndsAndNewOnesGetCrLf) {
  const std::vector<std::string> edited{"one", "new", "two", "three"};
  EXPECT_EQ(TakeEdit("one\rtwo\nthree", edited), "one\rnew\r\ntwo\nthree");
}

TEST(TakeEdit, ALineInThePlaceOfAnotherKeepsItsEnd) {
  const std::vector<std::string> edited{"one", "2", "three"};
  EXPECT_EQ(TakeEdit("one\rtwo\nthree", edited), "one\r2\nthree");
}

TEST(TakeEdit, ALineIsTakenForOneOldLineOnly) {
  EXPECT_EQ(TakeEdit("a\ra", std::vector<std::string>(4, "a")), "a\ra\r\na\r\na");
}

TEST(TakeEdit, ADeletedEndJoinsTheLines) {
  const std::vector<std::string> edited{"onetwo", "three"};
  EXPECT_EQ(TakeEdit("one\rtwo\nthree", edited), "onetwo\r\nthree");
}

TEST(DataWindow, HoldsEveryByteThatWasSet) {
  std::string bytes;
  for (int code = 0; code < 256; ++code) {
    bytes += static_cast<char>(code);
  }
  DataWindow window;
  window.SetBytes(bytes);
  EXPECT_EQ(window.Bytes(), bytes);
}

TEST(DataWindow, AnEditChangesThatPlaceOnly) {
  std::string bytes;
  for (int code = 1; code < 256; ++code) {
    bytes += static_cast<char>(code);
  }
  DataWindow window;
  window.SetBytes(bytes);
  window.moveCursor(QTextCursor::End);
  QTest::keyClicks(&window, "+");
  EXPECT_EQ(window.Bytes(), bytes + "+");
}

TEST(DataWindow, ReportsOfTheOperatorsEditsOnly) {
  DataWindow window;
  int edits = 0;
  QObject::connect(&window, &DataWindow::Edited, [&] { ++edits; });
  window.SetBytes("abc\r\n");
  EXPECT_EQ(edits, 0);
  QTest::keyClicks(&window, "x");
  EXPECT_EQ(edits, 1);
  EXPECT_EQ(window.Bytes(), "xabc\r\n");
}

TEST(DataWindow, TheSameBytesMoveNoCursor) {
  DataWindow window;
  window.SetBytes("one\rtwo");
  window.moveCursor(QTextCursor::End);
  window.SetBytes("one\rtwo");
  EXPECT_EQ(window.textCursor().position(), 7);
}

TEST(DataWindow, TheTabKeyLeavesIt) {
  DataWindow window;
  EXPECT_TRUE(window.tabChangesFocus());
}

}  // namespace
}  // namespace vrx::testing
