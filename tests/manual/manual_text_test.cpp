#include "make_manual/manual_text.h"

#include <gmock/gmock.h>

#include "base/error.h"
#include "make_manual/span_parser.h"
#include "manual/program_texts.h"

namespace vrx::testing {
namespace {

using manual::Block;
using manual::BlockKind;
using manual::Chapter;
using manual::Spans;
using manual::SpanStyle;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

Spans Parsed(std::string_view text) { return manual::ParseSpans(text); }

std::string FailureOf(std::string_view text) {
  try {
    manual::ParseChapter("05-pens.md", text);
  } catch (const Error& error) {
    return error.what();
  }
  return "nothing was thrown";
}

TEST(ManualSpans, TellCaptionsFilesAndVariablesApart) {
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

TEST(ManualSpans, TakeTheCharacterBehindABackslashAsItStands) {
  const Spans spans = Parsed("**\\|<<** \\*");
  ASSERT_EQ(spans.size(), 2U);
  EXPECT_EQ(spans[0].text, "|<<");
  EXPECT_EQ(spans[1].text, " *");
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
    EXPECT_THROW(Parsed(text), Error) << text;
  }
}

TEST(ManualChapter, IsBlocksBelowATitle) {
  const Chapter chapter = manual::ParseChapter("05-pens.md",
                                               "# Pens\n\nOne line\nand another.\n\n## The list\n"
                                               "- first\n  goes on\n- second\n\n1. one\n2. two\n\n"
                                               "    code one\n    code two\n\n"
                                               "![All pens](screen:pens)\n");
  EXPECT_EQ(chapter.title, "Pens");
  std::vector<BlockKind> kinds;
  for (const Block& block : chapter.blocks) {
    kinds.push_back(block.kind);
  }
  EXPECT_THAT(kinds, ElementsAre(BlockKind::kParagraph, BlockKind::kSection, BlockKind::kBullet,
                                 BlockKind::kBullet, BlockKind::kNumbered, BlockKind::kNumbered,
                                 BlockKind::kCode, BlockKind::kFigure));
  EXPECT_EQ(chapter.blocks[0].spans.at(0).text, "One line and another.");
  EXPECT_EQ(chapter.blocks[2].spans.at(0).text, "first goes on");
  EXPECT_EQ(chapter.blocks[5].number, 2);
  EXPECT_EQ(chapter.blocks[6].text, "code one\ncode two");
  EXPECT_EQ(chapter.blocks[7].text, "pens");
  EXPECT_EQ(chapter.blocks[7].spans.at(0).text, "All pens");
  EXPECT_EQ(chapter.blocks[7].line, 17);
}

TEST(ManualChapter, HasTablesWithAHeadingAndTheWidthsOfTheirDashes) {
  const Chapter chapter =
      manual::ParseChapter("a.md", "# A\n\n| x | y |\n|---|-----|\n| `a|b` | c\\|d |\n");
  ASSERT_EQ(chapter.blocks.size(), 1U);
  const Block& table = chapter.blocks[0];
  EXPECT_EQ(table.kind, BlockKind::kTable);
  EXPECT_THAT(table.widths, ElementsAre(3, 5));
  ASSERT_EQ(table.rows.size(), 2U);
  EXPECT_EQ(table.rows[0][1].at(0).text, "y");
  EXPECT_EQ(table.rows[1][0].at(0).text, "a|b");
  EXPECT_EQ(table.rows[1][1].at(0).text, "c|d");
  EXPECT_EQ(manual::TextsOf(chapter).size(), 5U);
}

TEST(ManualChapter, TellsFileAndLineOfWhatIsWrong) {
  EXPECT_THAT(FailureOf("# Pens\n\nA **caption\n"), HasSubstr("05-pens.md:3: "));
  EXPECT_EQ(FailureOf("# Pens\n\n| a | b |\n|---|---|\n| c |\n"),
            "05-pens.md:5: 1 cells instead of 2");
  EXPECT_EQ(FailureOf("# Pens\n\n# Again\n"), "05-pens.md:3: a chapter has one title");
  EXPECT_EQ(FailureOf("Text\n"), "05-pens.md:1: a chapter begins with its title");
  EXPECT_EQ(FailureOf("# Pens\n\n![A](pens.png)\n"),
            "05-pens.md:3: a figure reads ![CAPTION](screen:NAME)");
  EXPECT_EQ(FailureOf(""), "05-pens.md:0: the chapter has no title");
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
