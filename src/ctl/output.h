#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
}

namespace vrx {

using Json = nlohmann::ordered_json;

enum class OutputForm { kPlain, kCsv, kJson };

// The options --csv and --json of a command; without either the output is plain.
class OutputOptions {
 public:
  void RegisterCsv(CLI::App& app);
  void RegisterJson(CLI::App& app);
  OutputForm Form() const;

 private:
  bool csv_ = false;
  bool json_ = false;
};

// Cells are texts, numbers, booleans ("Yes" and "No" outside JSON) or null (empty outside JSON).
struct OutputTable {
  std::vector<std::string> header;
  std::vector<std::vector<Json>> rows;
};

// Plain: header line, cells by tabs, lines by LF; a control character inside a cell shows as a
// blank. CSV: RFC 4180 with a header line and CR LF. JSON: an array of objects. All UTF-8; bytes of
// a text that are none come out as the replacement character.
void WriteTable(std::ostream& out, OutputForm form, const OutputTable& table);

// One line of such a table, plain or CSV: for a table that is too long to be held.
void WriteLine(std::ostream& out, OutputForm form, const std::vector<std::string>& cells);

// The rows as objects under the header's names.
Json ToJson(const OutputTable& table);

// One object: as JSON itself, else as a table of one row.
void WriteObject(std::ostream& out, OutputForm form, const Json& object);

}  // namespace vrx
