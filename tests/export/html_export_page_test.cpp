#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>
#include <libxslt/security.h>
#include <libxslt/xsltutils.h>
#include <unistd.h>

#include "base/error.h"
#include "base/files.h"
#include "export/html_export.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int kGroup = 8;
constexpr std::string_view kPens =
    "<Transactions><Columns><Column>Pen</Column><Column>Feed Wt</Column></Columns>"
    "<Pen Value=\"PEN 1\" Feed_Weight=\"5.5\"><Record><ActualFeed>5.5</ActualFeed></Record></Pen>"
    "</Transactions>";
constexpr std::string_view kOldPage = "the page before";

std::string SheetOf(std::string_view body) {
  return R"(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">)"
         R"(<xsl:output method="html"/>)" +
         std::string(body) + "</xsl:stylesheet>";
}

class HtmlPage : public ::testing::Test {
 protected:
  HtmlPage() {
    fs::create_directories(folder_ / "data");
    fs::create_directories(folder_ / "program/XSL");
    system_.program_directory = (folder_ / "program").string();
    WriteFileBytes(xml_, kPens);
    WriteFileBytes(page_, kOldPage);
  }

  void UseSheet(std::string_view text) {
    WriteFileBytes(folder_ / "program/XSL/PensFedAll.xsl", text);
  }

  bool Write() { return WriteHtmlPage(sheets_, kGroup, xml_, page_); }

  // The message of a refusal. Checks that the old page is unchanged and nothing was printed.
  std::string Refusal() {
    ::testing::internal::CaptureStderr();
    std::string words;
    try {
      Write();
    } catch (const Error& error) {
      words = error.what();
    }
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), IsEmpty());
    EXPECT_EQ(ReadAll(page_), kOldPage);
    EXPECT_EQ(words.find('\n'), std::string::npos);
    return words;
  }

  TempFolder folder_;
  fs::path xml_ = folder_ / "out.xml";
  fs::path page_ = folder_ / "out.html";
  FixedSystemInfo system_;
  RecordingOperator op_;
  StyleSheets sheets_{folder_ / "data", system_, op_};
};

TEST_F(HtmlPage, IsMadeByTheStyleSheetOfTheGroupAndReplacesAnEarlierOne) {
  system_.program_directory = VRX_BIN_DIR;
  EXPECT_TRUE(Write());
  EXPECT_THAT(ReadAll(page_), AllOf(HasSubstr("<!DOCTYPE html>"), HasSubstr("Pens Fed (all)"),
                                    HasSubstr("<td>5.5</td>")));
  EXPECT_TRUE(op_.boxes.empty());
}

TEST_F(HtmlPage, GoesByAStyleSheetThatWasChangedInPlace) {
  UseSheet(SheetOf("<xsl:template match='/'><p>ours</p></xsl:template>"));
  EXPECT_TRUE(Write());
  EXPECT_THAT(ReadAll(page_), HasSubstr("<p>ours</p>"));
}

TEST_F(HtmlPage, WithoutAStyleSheetIsReportedAndNotCreated) {
  EXPECT_FALSE(Write());
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_EQ(op_.boxes.front().text,
            "Style sheet file has been tampered, Please contact to Administrator.");
  EXPECT_EQ(ReadAll(page_), kOldPage);
}

TEST_F(HtmlPage, OfAnInvalidGroupIsReportedAndNotCreated) {
  EXPECT_FALSE(WriteHtmlPage(sheets_, 13, xml_, page_));
  EXPECT_EQ(op_.boxes.size(), 1U);
}

TEST_F(HtmlPage, RefusesAnEmptyStyleSheetByName) {
  UseSheet("");
  EXPECT_THAT(Refusal(), HasSubstr("PensFedAll.xsl is empty"));
}

TEST_F(HtmlPage, RefusesABinaryStyleSheetWithTheParsersWords) {
  UseSheet(
      std::string("\x7f"
                  "ELF\0\1\2",
                  7));
  EXPECT_THAT(Refusal(), AllOf(HasSubstr("PensFedAll.xsl is not XML: line 1:"),
                               HasSubstr("Start tag expected")));
}

TEST_F(HtmlPage, RefusesXmlThatIsNoStyleSheet) {
  UseSheet("<sheet/>");
  EXPECT_THAT(Refusal(), HasSubstr("PensFedAll.xsl is no stylesheet that can be used: "));
}

TEST_F(HtmlPage, RefusesAStyleSheetWithAnExpressionThatDoesNotParse) {
  UseSheet(SheetOf("<xsl:template match='/'><xsl:value-of select='1 +'/></xsl:template>"));
  EXPECT_THAT(Refusal(), HasSubstr("PensFedAll.xsl"));
}

TEST_F(HtmlPage, TakesAStyleSheetOfFourMegabytesAndRefusesALongerOne) {
  std::string sheet = SheetOf("<xsl:template match='/'><p>long</p></xsl:template>");
  sheet.resize(std::size_t{4} * 1024 * 1024, ' ');
  UseSheet(sheet + " ");
  EXPECT_THAT(Refusal(), HasSubstr("PensFedAll.xsl: longer than a stylesheet may be, 4 MB"));
  UseSheet(sheet);
  EXPECT_TRUE(Write());
  EXPECT_THAT(ReadAll(page_), HasSubstr("<p>long</p>"));
}

TEST_F(HtmlPage, RefusesAnEmptyResult) {
  UseSheet(SheetOf("<xsl:template match='/'/>"));
  EXPECT_THAT(Refusal(), HasSubstr("PensFedAll.xsl made an empty page"));
}

TEST_F(HtmlPage, RefusesDataThatIsCutOff) {
  UseSheet(SheetOf(""));
  WriteFileBytes(xml_, kPens.substr(0, 100));
  EXPECT_THAT(Refusal(), HasSubstr("out.xml is not XML: line 1:"));
}

TEST_F(HtmlPage, RefusesDataThatIsMissing) {
  UseSheet(SheetOf(""));
  fs::remove(xml_);
  EXPECT_THAT(Refusal(), HasSubstr("out.xml"));
}

TEST_F(HtmlPage, RefusesADocumentTypeAndSoEntities) {
  UseSheet(SheetOf("<xsl:template match='/'><p><xsl:value-of select='.'/></p></xsl:template>"));
  WriteFileBytes(xml_, "<!DOCTYPE a [<!ENTITY b SYSTEM '" + xml_.string() + "'>]><a>&b;</a>");
  EXPECT_THAT(Refusal(), HasSubstr("out.xml has a document type, which is refused"));
}

TEST_F(HtmlPage, RefusesDataAboveTheLimitBeforeReadingIt) {
  UseSheet(SheetOf(""));
  fs::resize_file(xml_, kLargestPageSource + 1);
  const std::size_t limit = kLargestPageSource / 1024 / 1024;
  EXPECT_EQ(Refusal(), "The page would be too large for a browser: " + std::to_string(limit + 1) +
                           " MB of data, at most " + std::to_string(limit) +
                           " MB. Choose XML or CSV, or a group by name.");
}

TEST_F(HtmlPage, TakesDataUpToTheLimit) {
  UseSheet(SheetOf("<xsl:template match='/'><p>large</p></xsl:template>"));
  constexpr std::string_view kEnd = "</Transactions>";
  std::string document(kPens.substr(0, kPens.size() - kEnd.size()));
  document.resize(kLargestPageSource - kEnd.size(), ' ');
  WriteFileBytes(xml_, document.append(kEnd));
  EXPECT_TRUE(Write());
  EXPECT_THAT(ReadAll(page_), HasSubstr("<p>large</p>"));
}

TEST_F(HtmlPage, InAFolderThatIsMissingIsRefused) {
  UseSheet(SheetOf("<xsl:template match='/'><p/></xsl:template>"));
  EXPECT_THROW(WriteHtmlPage(sheets_, kGroup, xml_, folder_ / "gone/out.html"), FileError);
  EXPECT_FALSE(FileExists(folder_ / "gone"));
}

TEST_F(HtmlPage, OverAFolderIsRefusedAndLeavesNothingBesideIt) {
  UseSheet(SheetOf("<xsl:template match='/'><p/></xsl:template>"));
  fs::create_directories(folder_ / "out/taken.html/inside");
  EXPECT_THROW(WriteHtmlPage(sheets_, kGroup, xml_, folder_ / "out/taken.html"), FileError);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "out"), fs::directory_iterator()), 1);
}

// Stylesheets that access other files.

TEST_F(HtmlPage, AStyleSheetReadsNoFile) {
  const fs::path secret = folder_.Write("secret.xml", "<secret>42</secret>");
  UseSheet(SheetOf("<xsl:template match='/'><p><xsl:value-of select=\"document('" +
                   secret.string() + "')\"/></p></xsl:template>"));
  EXPECT_THAT(Refusal(), AllOf(HasSubstr("secret.xml"), HasSubstr("denied")));
}

TEST_F(HtmlPage, AStyleSheetReadsNoAddress) {
  UseSheet(
      SheetOf("<xsl:template match='/'><p><xsl:value-of "
              "select=\"document('http://127.0.0.1:9/x.xml')\"/></p></xsl:template>"));
  EXPECT_THAT(Refusal(), HasSubstr("denied"));
}

TEST_F(HtmlPage, AStyleSheetTakesInNoOther) {
  folder_.Write("program/XSL/other.xsl",
                SheetOf("<xsl:template match='/'><p>other</p></xsl:template>"));
  for (const char* instruction : {"import", "include"}) {
    UseSheet(R"(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">)"
             "<xsl:" +
             std::string(instruction) + " href='other.xsl'/></xsl:stylesheet>");
    EXPECT_THAT(Refusal(), AllOf(HasSubstr("PensFedAll.xsl"), HasSubstr("denied")));
  }
}

TEST_F(HtmlPage, AStyleSheetWritesNoFile) {
  const fs::path target = folder_ / "written.txt";
  UseSheet(SheetOf("<xsl:template match='/'><p><xsl:document href='" + target.string() +
                   "'>x</xsl:document></p></xsl:template>"));
  EXPECT_THAT(Refusal(), HasSubstr("denied"));
  EXPECT_FALSE(FileExists(target));
}

TEST_F(HtmlPage, AnExtensionThatWritesIsNotKnown) {
  const fs::path target = folder_ / "written.txt";
  UseSheet(
      SheetOf("<xsl:template match='/'><e:document xmlns:e='http://exslt.org/common' "
              "xsl:extension-element-prefixes='e' href='" +
              target.string() + "'>x</e:document></xsl:template>"));
  EXPECT_TRUE(Write());
  EXPECT_FALSE(FileExists(target));
}

TEST_F(HtmlPage, AStyleSheetWithoutEndIsStopped) {
  UseSheet(
      SheetOf("<xsl:template match='/' name='again'><xsl:call-template name='again'/>"
              "</xsl:template>"));
  EXPECT_THAT(Refusal(), HasSubstr("PensFedAll.xsl made no page"));
}

TEST_F(HtmlPage, AStyleSheetThatGrowsBeyondMeasureIsStopped) {
  UseSheet(SheetOf(
      "<xsl:template match='/' name='twice'><xsl:param name='n' select='40'/>"
      "<xsl:if test='$n &gt; 0'><xsl:call-template name='twice'><xsl:with-param name='n' "
      "select='$n - 1'/></xsl:call-template><xsl:call-template name='twice'><xsl:with-param "
      "name='n' select='$n - 1'/></xsl:call-template></xsl:if></xsl:template>"));
  EXPECT_THAT(Refusal(), HasSubstr("PensFedAll.xsl made no page"));
}

TEST_F(HtmlPage, AStyleSheetThatFailsIsReportedInItsWords) {
  UseSheet(
      SheetOf("<xsl:template match='/'><xsl:message terminate='yes'>not with me</xsl:message>"
              "</xsl:template>"));
  EXPECT_THAT(Refusal(), HasSubstr("not with me"));
}

// Message handlers and rights are global variables of the library, which other code may have set.
TEST_F(HtmlPage, LeavesTheLibraryAsItWas) {
  const std::unique_ptr<xsltSecurityPrefs, decltype(&xsltFreeSecurityPrefs)> rights(
      xsltNewSecurityPrefs(), xsltFreeSecurityPrefs);
  xsltSetDefaultSecurityPrefs(rights.get());
  const auto generic = xmlGenericError;
  const auto structured = xmlStructuredError;
  const auto xslt = xsltGenericError;
  void* const xslt_context = xsltGenericErrorContext;
  UseSheet(SheetOf("<xsl:template match='/'><p/></xsl:template>"));
  EXPECT_TRUE(Write());
  UseSheet("");
  EXPECT_THROW(Write(), Error);
  EXPECT_EQ(xsltGetDefaultSecurityPrefs(), rights.get());
  EXPECT_EQ(xmlGenericError, generic);
  EXPECT_EQ(xmlStructuredError, structured);
  EXPECT_EQ(xsltGenericError, xslt);
  EXPECT_EQ(xsltGenericErrorContext, xslt_context);
  xsltSetDefaultSecurityPrefs(nullptr);
}

TEST_F(HtmlPage, AfterARefusalTheNextPageIsMade) {
  UseSheet("");
  Refusal();
  UseSheet(SheetOf("<xsl:template match='/'><p>again</p></xsl:template>"));
  EXPECT_TRUE(Write());
  EXPECT_THAT(ReadAll(page_), HasSubstr("<p>again</p>"));
}

}  // namespace
}  // namespace vrx::testing
