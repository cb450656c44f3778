#include "make_manual/manual_text.h"

#include <gmock/gmock.h>

#include "base/error.h"
#include "manual/manual_chapters.h"
#include "manual/program_texts.h"

namespace vrx::testing {
namespace {

using manual::BlockKind;
using manual::Chapter;
using manual::SpanStyle;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

Chapter WithText(const std::string& text) {
  return manual::ParseChapter("05-pens.md", "# Pens\n\n" + text + "\n");
}

Spans Parsed(const std::string& text) { return TextsOf(WithText(text)).at(1); }

std::string FailureOf(std::string_view text) {
  try {
    manual::ParseChapter("05-pens.md", text);
  } catch (const Error& error) {
    return error.what();
  }
  return "nothing was thrown";
}

TEST(ManualSpans, DistinguishCaptionsFilesAndVariables) {
  const Spans spans = Parsed("Press **Update** in `A.RDB`, *then*.");
  ASSERT_EQ(spans.size(), 7U);
  EXPECT_EQ(spans[0].text, "Press ");
  EXPECT_EQ(spans[1].style, SpanStyle::kCaption);
  EXPECT_EQ(spans[1].text, "Update");
  EXPECT_EQ(spans[3].style, SpanStyle::kCode);
  EXPECT_EQ(spans[3].text, "A.RDB");
  EXPECT_EQ(spans[5].style, SpanStyle::kVariable);
  EXPECT_EQ(spans[6].text, ".");
}

TEST(ManualSpans, KeepTheVariablePartsOfAQuotationWithinIt) {
  const Spans spans = Parsed(R"(says "Delete *name* now?" and "Done!")");
  ASSERT_EQ(spans.size(), 6U);
  EXPECT_EQ(spans[0].quote, 0);
  EXPECT_EQ(spans[1].quote, 1);
  EXPECT_EQ(spans[2].quote, 1);
  EXPECT_EQ(spans[2].style, SpanStyle::kVariable);
  EXPECT_EQ(spans[3].text, " now?");
  EXPECT_EQ(spans[4].quote, 0);
  EXPECT_EQ(spans[5].quote, 2);
}

TEST(ManualSpans, TakeTheCharacterAfterABackslashAsItIs) {
  const Spans caption = Parsed("**\\|<<**");
  ASSERT_EQ(caption.size(), 1U);
  EXPECT_EQ(caption[0].text, "|<<");
  const Spans quotation = Parsed(R"(see "a \"b\" c")");
  ASSERT_EQ(quotation.size(), 2U);
  EXPECT_EQ(quotation[1].text, R"(a "b" c)");
}

TEST(ManualSpans, KeepWhatLooksLikeATagOrAQuotationInCode) {
  const Spans spans = Parsed(R"(see "<NAK>" and `a "b"`)");
  ASSERT_EQ(spans.size(), 4U);
  EXPECT_EQ(spans[1].text, "<NAK>");
  EXPECT_EQ(spans[1].quote, 1);
  EXPECT_EQ(spans[3].text, "a \"b\"");
  EXPECT_EQ(spans[3].quote, 0);
}

TEST(ManualSpans, BreakTheLineAlsoInACell) {
  const std::string broken = "**One...**<br>**two**, three";
  const Spans cell = TablesOf(WithText("| a |\n|---|\n| " + broken + " |")).at(0).at(1).at(0);
  for (const Spans& spans : {Parsed(broken), cell}) {
    ASSERT_EQ(spans.size(), 4U);
    EXPECT_EQ(spans[0].text, "One...");
    EXPECT_EQ(spans[0].style, SpanStyle::kCaption);
    EXPECT_EQ(spans[1].text, "");
    EXPECT_EQ(spans[2].text, "two");
    EXPECT_EQ(spans[3].text, ", three");
  }
}

TEST(ManualSpans, LinkToChapters) {
  const Spans spans = Parsed("see [Setup](12-setup.md)");
  ASSERT_EQ(spans.size(), 2U);
  EXPECT_EQ(spans[1].style, SpanStyle::kLink);
  EXPECT_EQ(spans[1].target, "12-setup.md");
}

TEST(ManualSpans, RefuseMarksThatAreNotClosed) {
  for (const char* const text :
       {"**Update", "`A.RDB", "*then", "\"Done!", "[Setup", "[Setup]", "****", "a\\"}) {
    EXPECT_THROW(WithText(text), Error) << text;
  }
}

TEST(ManualChapter, IsBlocksBelowATitle) {
  const Chapter chapter =
      manual::ParseChapter("05-pens.md",
                           "# Pens\n\nOne line\nand another.\n\n## The list\n"
                           "- first\n  goes on\n- second\n\n1. one\n2. two\n\nCode:\n\n"
                           "    code one\n    code two\n\n"
                           "![All pens](screen:pens)\n");
  std::vector<BlockKind> kinds;
  std::vector<std::string> texts;
  for (QTextBlock block = chapter.document->begin(); block.isValid(); block = block.next()) {
    kinds.push_back(manual::KindOf(block));
    texts.push_back(SpansOf(block).at(0).text);
  }
  EXPECT_THAT(kinds, ElementsAre(BlockKind::kTitle, BlockKind::kParagraph, BlockKind::kSection,
                                 BlockKind::kBullet, BlockKind::kBullet, BlockKind::kNumbered,
                                 BlockKind::kNumbered, BlockKind::kParagraph, BlockKind::kCode,
                                 BlockKind::kCode, BlockKind::kFigure));
  EXPECT_THAT(texts,
              ElementsAre("Pens", "One line and another.", "The list", "first goes on", "second",
                          "one", "two", "Code:", "code one", "code two", "All pens"));
  EXPECT_EQ(manual::FigureIn(chapter.document->lastBlock()).name(), QStringLiteral("screen:pens"));
}

TEST(ManualChapter, HasTablesWithAHeadingAndTheWidthsOfTheirDashes) {
  const Chapter chapter = manual::ParseChapter(
      "a.md", "# A\n\n| x | ***y*** |\n|---|-----|\n| `a` | c\\|d |\n| **e** | |\n");
  EXPECT_THAT(chapter.column_widths, ElementsAre(ElementsAre(3, 5)));
  const std::vector<Rows> tables = TablesOf(chapter);
  ASSERT_EQ(tables.size(), 1U);
  ASSERT_EQ(tables[0].size(), 3U);
  EXPECT_EQ(tables[0][0][0].at(0).style, SpanStyle::kPlain);
  EXPECT_EQ(tables[0][0][1].at(0).text, "y");
  EXPECT_EQ(tables[0][0][1].at(0).style, SpanStyle::kCaption);
  EXPECT_EQ(tables[0][1][0].at(0).style, SpanStyle::kCode);
  EXPECT_EQ(tables[0][1][1].at(0).text, "c|d");
  EXPECT_EQ(tables[0][2][0].at(0).style, SpanStyle::kCaption);
}

TEST(ManualChapter, HasOneBlockInEachCellAfterAnyBlock) {
  for (const char* const before : {"Text", "- item", "    code", "## Section", "![A](screen:a)"}) {
    const Chapter chapter =
        WithText(std::string(before) + "\n\n| x | y |\n|---|---|\n| a | b |\n\nText");
    const std::vector<Rows> tables = TablesOf(chapter);
    ASSERT_EQ(tables.size(), 1U) << before;
    EXPECT_EQ(tables[0][0][0].at(0).text, "x") << before;
    EXPECT_EQ(BlocksOf(chapter, BlockKind::kEmpty).size(), 1U) << before;  // below the table
  }
}

TEST(ManualChapter, ReportsFileAndLineOfWhatIsWrong) {
  EXPECT_THAT(FailureOf("# Pens\n\nA **caption\n"), HasSubstr("05-pens.md:3: "));
  EXPECT_THAT(FailureOf("# Pens\n\nA\nand \"a quotation\n"), HasSubstr("05-pens.md:4: "));
  EXPECT_EQ(FailureOf("# Pens\n\n| a | b |\n|---|---|\n| c |\n"),
            "05-pens.md:5: 1 cells instead of 2");
  EXPECT_EQ(FailureOf("# Pens\n\n| a | b\n"), "05-pens.md:3: the row does not end in a bar");
  EXPECT_EQ(FailureOf("# Pens\n\n| a | b |\n| c | d |\n"),
            "05-pens.md: a table has a heading and a row of dashes");
  EXPECT_EQ(FailureOf("# Pens\n\n| **a** |\n|---|\n| b |\n"),
            "05-pens.md:3: a caption in the heading of a table has three stars");
  EXPECT_EQ(FailureOf("# Pens\n\n| a |\n|---|\n| `b\\|c` |\n"), "05-pens.md:5: a bar in code");
  EXPECT_EQ(FailureOf("# Pens\n\n# Again\n"), "05-pens.md:3: a chapter has one title");
  EXPECT_EQ(FailureOf("Text\n"), "05-pens.md:1: a chapter begins with its title");
  EXPECT_EQ(FailureOf("# Pens\n\n![A](pens.png)\n"),
            "05-pens.md:3: a figure reads ![CAPTION](screen:NAME)");
  EXPECT_EQ(FailureOf(""), "05-pens.md: the chapter has no title");
}

TEST(StringLiterals, GoOnAfterADigitSeparator) {
  EXPECT_THAT(StringLiterals("const int a = 20'000; f(\"one\", 'x', \"two\");"),
              ElementsAre("one", "two"));
}

TEST(StringLiterals, JoinsWhatStandsSideBySideAndLeavesCommentsOut) {
  EXPECT_THAT(
      StringLiterals("#include \"a.h\"\n// \"no\"\nf(\"one \"\n  \"two\", '\"', \"x\\\"y\");"),
      ElementsAre("one two", "x\"y"));
  EXPECT_THAT(StringLiterals("a(\"line\\r\\nend\" + b + R\"(raw)\" /* \"c\" */)"),
              ElementsAre("line  end", "raw"));
}

}  // namespace
}  // namespace vrx::testing
