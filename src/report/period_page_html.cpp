#include <QString>
#include <string>
#include <string_view>

#include "base/files.h"
#include "database/keep_database.h"
#include "report/period_page.h"

namespace vrx {
namespace {

constexpr QSizeF kWidePicture{928, 320};
constexpr QSizeF kNarrowPicture{340, 260};

// Colors of Look, so that texts and pictures agree.
constexpr std::string_view kStyle = R"(
:root{color-scheme:light dark;--paper:#fff;--text:#1a1a1a;--quiet:#595959;--line:#d9d9d9}
@media screen and (prefers-color-scheme:dark){
:root{--paper:#1b1e20;--text:#f2f2f2;--quiet:#b4b8bc;--line:#3c4145}}
*{box-sizing:border-box}
body{margin:0 auto;padding:1rem;max-width:60rem;background:var(--paper);color:var(--text);
font:1rem/1.45 system-ui,sans-serif;overflow-wrap:break-word}
h1{font-size:1.6rem;line-height:1.2;margin:0 0 .25rem}
h2{font-size:1.2rem;line-height:1.3;margin:2rem 0 .25rem;break-after:avoid}
p{margin:.25rem 0 .5rem}
h2+p{break-after:avoid}
.quiet{color:var(--quiet);font-size:.9rem}
.note{border-left:.25rem solid var(--quiet);padding-left:.75rem}
.figures{display:grid;grid-template-columns:repeat(auto-fill,minmax(10rem,1fr));gap:.5rem;
margin:1rem 0;padding:0}
.figures div{border:1px solid var(--line);border-radius:.25rem;padding:.5rem .75rem;
break-inside:avoid}
.figures dt{color:var(--quiet);font-size:.85rem}
.figures dd{margin:0;font-size:1.1rem;font-weight:600}
.scroll{overflow-x:auto;margin:.5rem 0}
table{border-collapse:collapse;font-size:.9rem;font-variant-numeric:tabular-nums;width:100%}
th,td{padding:.25rem .5rem;border-bottom:1px solid var(--line);text-align:left;
vertical-align:top;white-space:nowrap}
th{font-weight:600}
thead th{vertical-align:bottom;border-bottom-color:var(--quiet);white-space:normal}
.number{text-align:right}
.wrap{white-space:normal;overflow-wrap:break-word;max-width:20rem}
tbody th{position:sticky;left:0;background:var(--paper)}
tfoot th,tfoot td{font-weight:600;border-bottom:0;border-top:1px solid var(--quiet)}
figure{margin:.75rem 0;break-inside:avoid}
svg.chart{display:block;max-width:100%;height:auto}
.narrow{display:none}
@media screen and (max-width:40rem){.wide{display:none}.narrow{display:block}}
@media print{body{max-width:none;padding:0;font-size:10pt}.scroll{overflow:visible}
table{font-size:8pt}th,td{padding:.1rem .3rem}thead{display:table-header-group}
tfoot{display:table-row-group}tfoot tr{break-before:avoid}tr{break-inside:avoid}}
@page{margin:12mm}
)";

std::string Html(const std::string& text) { return MarkupText(QString::fromStdString(text)); }

std::string Element(std::string_view name, const std::string& text, std::string_view style = {}) {
  const std::string tag(name);
  return '<' + tag + (style.empty() ? "" : " class=\"" + std::string(style) + '"') + '>' +
         Html(text) + "</" + tag + ">\n";
}

class HtmlPage {
 public:
  std::string Write(const PeriodPage& page) {
    html_ =
        "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n<head>\n"
        "<meta charset=\"utf-8\"/>\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n";
    html_ += Element("title", page.title);
    html_ += "<style>" + std::string(kStyle) + SvgStyle() + "</style>\n</head>\n<body>\n<main>\n";
    WriteHead(page);
    for (const PageSection& section : page.sections) {
      WriteSection(section);
    }
    return html_ + "</main>\n</body>\n</html>\n";
  }

 private:
  void WriteHead(const PeriodPage& page) {
    html_ += Element("h1", page.title);
    std::string facts;
    for (const std::string& fact : page.facts) {
      facts += (facts.empty() ? "" : " \u00B7 ") + fact;
    }
    html_ += Element("p", facts, "quiet");
    for (const std::string& note : page.notes) {
      html_ += Element("p", note, "note");
    }
    if (page.figures.empty()) {
      return;
    }
    html_ += "<dl class=\"figures\">\n";
    for (const PageFigure& figure : page.figures) {
      html_ += "<div>" + Element("dt", figure.caption) + Element("dd", figure.text) + "</div>\n";
    }
    html_ += "</dl>\n";
  }

  void WriteSection(const PageSection& section) {
    html_ += "<section>\n" + Element("h2", section.heading) + Element("p", section.how, "quiet");
    for (const PageChart& chart : section.charts) {
      html_ += "<figure>\n";
      WritePicture(chart, kWidePicture, "wide");
      WritePicture(chart, kNarrowPicture, "narrow");
      html_ += "</figure>\n";
    }
    for (const AnswerTable& table : section.tables) {
      WriteTable(table, section.heading);
    }
    for (const std::string& sentence : section.sentences) {
      html_ += Element("p", sentence);
    }
    html_ += "</section>\n";
  }

  void WritePicture(const PageChart& chart, QSizeF size, std::string_view style) {
    const Look look;
    html_ += "<div class=\"" + std::string(style) + "\">\n" +
             SvgText(PictureOf(chart, size, look), look, SvgUse::kInPage) + "</div>\n";
  }

  // The keyboard scrolls a table that is wider than the screen.
  void WriteTable(const AnswerTable& table, const std::string& name) {
    html_ += "<div class=\"scroll\" role=\"region\" tabindex=\"0\" aria-label=\"" + Html(name) +
             "\">\n<table>\n<thead>\n<tr>";
    for (const AnswerColumn& column : table.columns) {
      html_ += std::string("<th scope=\"col\"") +
               (IsNumber(column.kind) ? " class=\"number\">" : ">") +
               Html(std::string(column.caption)) + "</th>";
    }
    html_ += "</tr>\n</thead>\n<tbody>\n";
    for (const std::vector<AnswerCell>& row : table.rows) {
      WriteRow(table, row);
    }
    html_ += "</tbody>\n";
    if (!table.total.empty()) {
      html_ += "<tfoot>\n";
      WriteRow(table, table.total);
      html_ += "</tfoot>\n";
    }
    html_ += "</table>\n</div>\n";
  }

  // The first cell is the head of the row.
  void WriteRow(const AnswerTable& table, const std::vector<AnswerCell>& row) {
    html_ += "<tr>";
    for (std::size_t i = 0; i < row.size(); ++i) {
      const AnswerColumn& column = table.columns.at(i);
      const std::string tag = i == 0 ? "th" : "td";
      html_ += '<' + tag + (i == 0 ? " scope=\"row\"" : "");
      html_ += IsNumber(column.kind)            ? " class=\"number\">"
               : column.kind == CellKind::kText ? " class=\"wrap\">"
                                                : ">";
      html_ += Html(ShownText(column, row[i])) + "</" + tag + '>';
    }
    html_ += "</tr>\n";
  }

  std::string html_;
};

}  // namespace

std::string HtmlText(const PeriodPage& page) { return HtmlPage().Write(page); }

void WriteHtml(const PeriodPage& page, const std::filesystem::path& path) {
  KeepDatabase(path);
  WriteFileBytes(path, HtmlText(page));
}

}  // namespace vrx
