#include "support/recipe_file_reader.h"

#include <stdexcept>

namespace vrx::testing {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  RecipeFile Read() {
    RecipeFile file;
    const auto identifier = Fields(Line(), ',', 2);
    Demand(identifier[0] == "{DATA_IN}" && identifier[1].size() == 1, "identifier");
    file.unit = identifier[1][0];
    Demand(Line().empty(), "line after the identifier");
    for (const std::string& line : Section("[ING]")) {
      const auto fields = Fields(line, ',', 3);
      Demand(fields[2] == "0" || fields[2] == "1", line);
      file.ingredients.push_back({Number(fields[0]), fields[1], fields[2] == "1"});
    }
    for (const std::string& line : Section("[REC]")) {
      file.recipes.push_back(RecipeOf(line));
    }
    for (const std::string& line : Section("[PEN]")) {
      const auto fields = Fields(line, ',', 3);
      file.pens.push_back({Number(fields[0]), fields[1], fields[2]});
    }
    Demand(rest_.empty(), "end of the file");
    return file;
  }

 private:
  static void Demand(bool met, const std::string& what) {
    if (!met) {
      throw std::runtime_error("no recipe file: " + what);
    }
  }

  std::string Line() {
    const std::size_t end = rest_.find("\r\n");
    Demand(end != std::string_view::npos, "a line without an end");
    std::string line(rest_.substr(0, end));
    rest_.remove_prefix(end + 2);
    return line;
  }

  std::vector<std::string> Section(const std::string& header) {
    Demand(Line() == header, header);
    Demand(Line().empty(), "line after " + header);
    std::vector<std::string> lines;
    for (std::string line = Line(); !line.empty(); line = Line()) {
      lines.push_back(std::move(line));
    }
    return lines;
  }

  static std::vector<std::string> Fields(const std::string& text, char separator) {
    std::vector<std::string> fields(1);
    for (const char byte : text) {
      if (byte == separator) {
        fields.emplace_back();
      } else {
        fields.back() += byte;
      }
    }
    return fields;
  }
  static std::vector<std::string> Fields(const std::string& text, char separator,
                                         std::size_t count) {
    auto fields = Fields(text, separator);
    Demand(fields.size() == count, text);
    return fields;
  }

  // Plain decimal digits, without padding.
  static int Number(const std::string& digits) {
    Demand(!digits.empty() && (digits == "0" || digits[0] != '0'), "number " + digits);
    int number = 0;
    for (const char digit : digits) {
      Demand(digit >= '0' && digit <= '9', "number " + digits);
      number = number * 10 + (digit - '0');
    }
    return number;
  }

  static RecipeFile::Recipe RecipeOf(const std::string& line) {
    const auto halves = Fields(line, ';', 2);
    auto head = Fields(halves[0], ',');
    Demand(head.size() > 5, line);
    RecipeFile::Recipe recipe{.number = Number(head[0]),
                              .name = head[1],
                              .type = Number(head[2]),
                              .target = head[3],
                              .head_count = Number(head[4]),
                              .ingredients = {head.begin() + 5, head.end()},
                              .amounts = Fields(halves[1], ',')};
    Demand(recipe.amounts.size() == recipe.ingredients.size(), line);
    return recipe;
  }

  std::string_view rest_;
};

}  // namespace

RecipeFile ReadRecipeFile(std::string_view bytes) { return Reader(bytes).Read(); }

}  // namespace vrx::testing
