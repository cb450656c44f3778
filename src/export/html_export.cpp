#include "export/html_export.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <system_error>

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxslt/security.h>
#include <libxslt/transform.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include "base/application.h"
#include "base/error.h"
#include "base/files.h"
#include "base/translation.h"
#include "history/data_group.h"
#include "history/period.h"
#include "settings/data_folder.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// Far above the needs of the stylesheets of data groups, which nest at most ten templates and take
// at most one XPath step for six bytes of the document.
constexpr int kDeepestTemplate = 200;
constexpr unsigned long kFreeSteps = 10'000'000;
constexpr unsigned long kStepsPerByte = 10;

constexpr int kParserOptions = XML_PARSE_NONET | XML_PARSE_NOCDATA;

// Collects the library's messages as one line and truncates it. Called from C code, which no
// exception may cross.
class Messages {
 public:
  // The library passes a message in chunks.
  void AppendFormatted(const char* format, std::va_list arguments) noexcept {
    Take(std::vsnprintf(End(), FreeSize(), format, arguments));
  }

  void AppendAtLine(int line, const char* message) noexcept {
    Take(line > 0 ? std::snprintf(End(), FreeSize(), "line %d: %s ", line, message)
                  : std::snprintf(End(), FreeSize(), "%s ", message));
  }

  [[nodiscard]] std::string Text() const {
    std::string text;
    for (const char character : std::string_view(text_.data(), used_)) {
      const bool blank = static_cast<unsigned char>(character) <= ' ';
      if (!blank) {
        text += character;
      } else if (!text.empty() && text.back() != ' ') {
        text += ' ';
      }
    }
    text.resize(text.find_last_not_of(' ') + 1);
    return text.empty() ? "no reason given" : text;
  }

 private:
  char* End() noexcept { return text_.data() + used_; }
  [[nodiscard]] std::size_t FreeSize() const noexcept { return text_.size() - used_; }
  void Take(int written) noexcept {
    used_ += std::min(static_cast<std::size_t>(std::max(written, 0)), FreeSize() - 1);
  }

  std::array<char, 1000> text_{};
  std::size_t used_ = 0;
};

extern "C" {

void CollectFormatted(void* messages, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  static_cast<Messages*>(messages)->AppendFormatted(format, arguments);
  va_end(arguments);
}

void CollectError(void* messages, xmlErrorPtr error) {
  static_cast<Messages*>(messages)->AppendAtLine(error->line,
                                                 error->message != nullptr ? error->message : "");
}

}  // extern "C"

struct Freed {
  void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
  void operator()(xsltStylesheetPtr style_sheet) const { xsltFreeStylesheet(style_sheet); }
  void operator()(xsltTransformContextPtr context) const { xsltFreeTransformContext(context); }
  void operator()(xsltSecurityPrefsPtr preferences) const { xsltFreeSecurityPrefs(preferences); }
  void operator()(xmlChar* text) const { xmlFree(text); }
};

template <typename T>
using Owned = std::unique_ptr<T, Freed>;

template <typename T>
Owned<T> OrOutOfMemory(T* made) {
  if (made == nullptr) {
    throw std::bad_alloc();
  }
  return Owned<T>(made);
}

// The library keeps its message handlers and the rights of a stylesheet that is being parsed in
// global variables. An object replaces them during its lifetime: it collects messages and forbids
// access to everything but the two texts. Only one object may exist at a time.
class LibraryRules {
 public:
  LibraryRules() {
    for (const xsltSecurityOption option :
         {XSLT_SECPREF_READ_FILE, XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY,
          XSLT_SECPREF_READ_NETWORK, XSLT_SECPREF_WRITE_NETWORK}) {
      xsltSetSecurityPrefs(rights_.get(), option, xsltSecurityForbid);
    }
    xsltSetDefaultSecurityPrefs(rights_.get());
    xsltSetGenericErrorFunc(&messages_, CollectFormatted);
    xmlSetGenericErrorFunc(&messages_, CollectFormatted);
    xmlSetStructuredErrorFunc(&messages_, CollectError);
  }
  ~LibraryRules() {
    xmlSetStructuredErrorFunc(structured_context_, structured_);
    xmlSetGenericErrorFunc(generic_context_, generic_);
    xsltSetGenericErrorFunc(xslt_context_, xslt_);
    xsltSetDefaultSecurityPrefs(default_rights_);
  }
  LibraryRules(const LibraryRules&) = delete;
  LibraryRules& operator=(const LibraryRules&) = delete;

  [[nodiscard]] xsltSecurityPrefsPtr Rights() const { return rights_.get(); }

  [[noreturn]] void Fail(const std::string& what) const {
    throw Error(what + ": " + messages_.Text());
  }

 private:
  Messages messages_;
  Owned<xsltSecurityPrefs> rights_ = OrOutOfMemory(xsltNewSecurityPrefs());
  xsltSecurityPrefsPtr default_rights_ = xsltGetDefaultSecurityPrefs();
  xmlGenericErrorFunc xslt_ = xsltGenericError;
  void* xslt_context_ = xsltGenericErrorContext;
  xmlGenericErrorFunc generic_ = xmlGenericError;
  void* generic_context_ = xmlGenericErrorContext;
  xmlStructuredErrorFunc structured_ = xmlStructuredError;
  void* structured_context_ = xmlStructuredErrorContext;
};

Owned<xmlDoc> Parse(const NamedText& text, const LibraryRules& rules) {
  if (text.text.empty()) {
    throw Error(text.name + " is empty");  // the library gives no message for this
  }
  Owned<xmlDoc> document(xmlReadMemory(text.text.data(), static_cast<int>(text.text.size()),
                                       text.name.c_str(), nullptr, kParserOptions));
  if (!document) {
    rules.Fail(text.name + " is not XML");
  }
  if (document->intSubset != nullptr) {
    throw Error(text.name + " has a document type, which is refused");
  }
  return document;
}

Owned<xsltStylesheet> Compile(const NamedText& text, const LibraryRules& rules) {
  Owned<xmlDoc> document = Parse(text, rules);
  Owned<xsltStylesheet> style_sheet(xsltParseStylesheetDoc(document.get()));
  if (!style_sheet) {
    rules.Fail(text.name + " is no stylesheet that can be used");
  }
  static_cast<void>(document.release());  // owned by the stylesheet now
  return style_sheet;
}

constexpr std::int32_t kNoSource = 0;  // a result of Folder::CopyFile

constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;
constexpr std::size_t kLargestStyleSheet = 4 * kMegabyte;

std::string Megabytes(std::size_t bytes) {
  return std::to_string((bytes + kMegabyte - 1) / kMegabyte) + " MB";
}

std::string ReadDocument(const fs::path& xml) {
  std::error_code unknown;
  const auto size = fs::file_size(xml, unknown);
  if (!unknown && size > kLargestPageSource) {
    throw Error(
        Tr("The page would be too large for a browser: %1 of data, at most %2. Choose XML or "
           "CSV, or a group by name.",
           {Megabytes(size), Megabytes(kLargestPageSource)}));
  }
  return ReadFileBytes(xml, kLargestPageSource);
}

// The document has no place for the period, so it is added to the page. A stylesheet without a
// title gets it at the top.
void NamePeriod(const Period& period, std::string& page) {
  if (period.IsAll()) {
    return;
  }
  constexpr std::string_view kTitleEnd = "</h1>";
  constexpr std::string_view kBody = "<body>";
  const std::string line =
      "<p style=\"margin: 0; padding: 0 16px 16px\">Period: " + PeriodText(period) + "</p>";
  if (const std::size_t title = page.find(kTitleEnd); title != std::string::npos) {
    page.insert(title + kTitleEnd.size(), line);
  } else if (const std::size_t body = page.find(kBody); body != std::string::npos) {
    page.insert(body + kBody.size(), line);
  }
}

std::string ReadStyleSheet(const fs::path& file) {
  std::string text = ReadFileBytes(file, kLargestStyleSheet);
  if (text.size() > kLargestStyleSheet) {
    throw Error(file.string() + ": longer than a stylesheet may be, " +
                Megabytes(kLargestStyleSheet));
  }
  return text;
}

}  // namespace

std::string Transform(const NamedText& style_sheet, const NamedText& document) {
  const LibraryRules rules;
  const Owned<xsltStylesheet> sheet = Compile(style_sheet, rules);
  const Owned<xmlDoc> source = Parse(document, rules);
  const auto context = OrOutOfMemory(xsltNewTransformContext(sheet.get(), source.get()));
  xsltSetCtxtSecurityPrefs(rules.Rights(), context.get());
  context->maxTemplateDepth = kDeepestTemplate;
  context->opLimit = kFreeSteps + kStepsPerByte * document.text.size();
  const Owned<xmlDoc> page(
      xsltApplyStylesheetUser(sheet.get(), source.get(), nullptr, nullptr, nullptr, context.get()));
  if (!page || context->state != XSLT_STATE_OK) {
    rules.Fail(style_sheet.name + " made no page of " + document.name);
  }
  xmlChar* bytes = nullptr;
  int length = 0;
  const int saved = xsltSaveResultToString(&bytes, &length, page.get(), sheet.get());
  const Owned<xmlChar> owned(bytes);
  if (saved != 0 || owned == nullptr || length <= 0) {
    rules.Fail(style_sheet.name + " made an empty page of " + document.name);
  }
  return {reinterpret_cast<const char*>(owned.get()), static_cast<std::size_t>(length)};
}

void StyleSheets::MakeExportFolder() const {
  if (!data_folder_.empty()) {
    std::error_code ignored;
    fs::create_directory(data_folder_ / "Export", ignored);
  }
}

fs::path StyleSheets::SourceFolder() const { return fs::path(system_.ProgramDirectory()) / "XSL"; }

fs::path StyleSheets::SourceOf(int group) const {
  const DataGroup* const found = FindDataGroup(group);
  return found == nullptr ? fs::path() : SourceFolder() / found->stylesheet;
}

fs::path StyleSheets::PresentSourceOf(int group) const {
  fs::path source = SourceOf(group);
  if (source.empty() || !FileExists(source)) {
    ReportMissing(source);
    return {};
  }
  return source;
}

bool StyleSheets::CopyStyleSheet(int group, const fs::path& destination_folder) const {
  const fs::path source = SourceOf(group);
  const std::int32_t result =
      source.empty() ? kNoSource : Folder::CopyFile(source, destination_folder);
  if (result == kNoSource) {
    ReportMissing(source);
    return false;
  }
  return true;
}

void StyleSheets::ReportMissing(const fs::path& source) const {
  op_.ShowMessage({.icon = Icon::kInformation,
                   .title = std::string(kApplicationTitle),
                   .text = "Style sheet file has been tampered, Please contact to Administrator.",
                   .cause = source.empty() ? "" : source.string() + " is not there"});
}

bool WriteHtmlPage(const StyleSheets& style_sheets, int group, const fs::path& xml,
                   const fs::path& html, const Period& period) {
  const fs::path source = style_sheets.PresentSourceOf(group);
  if (source.empty()) {
    return false;
  }
  const std::string document = ReadDocument(xml);
  const std::string style_sheet = ReadStyleSheet(source);
  std::string page = Transform({source.string(), style_sheet}, {xml.string(), document});
  NamePeriod(period, page);
  AtomicFile file(html);
  file.Write(page);
  file.Commit();
  return true;
}

}  // namespace vrx
