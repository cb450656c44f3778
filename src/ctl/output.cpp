#include "ctl/output.h"

#include <algorithm>
#include <ostream>

#include <CLI/CLI.hpp>

#include "base/number.h"

namespace vrx {
namespace {

constexpr int kIndent = 2;

std::string CellText(const Json& cell) {
  switch (cell.type()) {
    case Json::value_t::null:
      return "";
    case Json::value_t::boolean:
      return cell.get<bool>() ? "Yes" : "No";
    case Json::value_t::number_float:
      return DefaultText(cell.get<double>());
    case Json::value_t::string:
      return cell.get<std::string>();
    default:
      return cell.dump();
  }
}

std::string PlainText(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char character) {
        const auto code = static_cast<unsigned char>(character);
        return code < 0x20 || code == 0x7F;
      },
      ' ');
  return text;
}

std::string CsvText(std::string text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  for (std::size_t quote = text.find('"'); quote != std::string::npos;
       quote = text.find('"', quote + 2)) {
    text.insert(quote, 1, '"');
  }
  return '"' + text + '"';
}

std::vector<std::string> CellTexts(const std::vector<Json>& cells) {
  std::vector<std::string> texts;
  texts.reserve(cells.size());
  for (const Json& cell : cells) {
    texts.push_back(CellText(cell));
  }
  return texts;
}

void WriteJson(std::ostream& out, const Json& document) { out << JsonText(document, 0) << '\n'; }

}  // namespace

void OutputOptions::RegisterCsv(CLI::App& app) {
  app.add_flag("--csv", csv_, "Comma-separated values with a header line");
}

void OutputOptions::RegisterJson(CLI::App& app) {
  CLI::Option* json = app.add_flag("--json", json_, "One JSON document");
  if (CLI::Option* csv = app.get_option_no_throw("--csv")) {
    json->excludes(csv);
  }
}

OutputForm OutputOptions::Form() const {
  if (json_) {
    return OutputForm::kJson;
  }
  return csv_ ? OutputForm::kCsv : OutputForm::kPlain;
}

void WriteTable(std::ostream& out, OutputForm form, const OutputTable& table) {
  if (form == OutputForm::kJson) {
    WriteJson(out, ToJson(table));
    return;
  }
  WriteLine(out, form, table.header);
  for (const auto& row : table.rows) {
    WriteLine(out, form, CellTexts(row));
  }
}

void WriteLine(std::ostream& out, OutputForm form, const std::vector<std::string>& cells) {
  const bool csv = form == OutputForm::kCsv;
  const auto to_text = csv ? CsvText : PlainText;
  bool first = true;
  for (const std::string& cell : cells) {
    if (!first) {
      out << (csv ? ',' : '\t');
    }
    first = false;
    out << to_text(cell);
  }
  out << (csv ? "\r\n" : "\n");
}

Json ToJson(const OutputTable& table) {
  Json document = Json::array();
  for (const auto& row : table.rows) {
    Json object = Json::object();
    for (std::size_t column = 0; column < row.size(); ++column) {
      object[table.header[column]] = row[column];
    }
    document.push_back(std::move(object));
  }
  return document;
}

std::string JsonText(const Json& part, int depth) {
  const std::string margin(static_cast<std::size_t>(depth * kIndent), ' ');
  std::string text = margin + part.dump(kIndent, ' ', false, Json::error_handler_t::replace);
  for (std::size_t end = text.find('\n'); end != std::string::npos && !margin.empty();
       end = text.find('\n', end + 1)) {
    text.insert(end + 1, margin);
  }
  return text;
}

void WriteObject(std::ostream& out, OutputForm form, const Json& object) {
  if (form == OutputForm::kJson) {
    WriteJson(out, object);
    return;
  }
  OutputTable table;
  table.rows.emplace_back();
  for (const auto& [key, value] : object.items()) {
    table.header.push_back(key);
    table.rows.front().push_back(value);
  }
  WriteTable(out, form, table);
}

}  // namespace vrx
