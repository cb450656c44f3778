#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace CLI {  // NOLINT(readability-identifier-naming): named by the library
class App;
}

namespace vrx {

using Json = nlohmann::ordered_json;

enum class OutputForm { kPlain, kCsv, kJson };

// The options --csv and --json of a command; without them the output is plain.
class OutputOptions {
 public:
  void RegisterCsv(CLI::App& app);
  void RegisterJson(CLI::App& app);
  [[nodiscard]] OutputForm Form() const;

 private:
  bool csv_ = false;
  bool json_ = false;
};

// Cells are texts, numbers, booleans ("Yes" and "No" outside JSON) or null (empty outside JSON).
struct OutputTable {
  std::vector<std::string> header;
  std::vector<std::vector<Json>> rows;
};

// Plain: a header line, tabs between cells, LF; a control character in a cell becomes a blank. CSV:
// RFC 4180 with a header line and CR LF. JSON: an array of objects. All UTF-8; invalid bytes become
// U+FFFD.
void WriteTable(std::ostream& out, OutputForm form, const OutputTable& table);

// Writes one line of such a table, plain or CSV, for a table too long for memory.
void WriteLine(std::ostream& out, OutputForm form, const std::vector<std::string>& cells);

// The rows as objects with the names of the header.
[[nodiscard]] Json ToJson(const OutputTable& table);

// A part of a JSON document that is written piece by piece, indented as at its depth in the whole,
// without a line end.
[[nodiscard]] std::string JsonText(const Json& part, int depth);

// Writes an object as JSON, or otherwise as a table with one row.
void WriteObject(std::ostream& out, OutputForm form, const Json& object);

}  // namespace vrx
