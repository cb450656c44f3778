#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "insight/question.h"

namespace vrx {

using NameId = std::uint32_t;
inline constexpr NameId kNoName = 0;

// The names of one kind, each with a number in the order in which they are met.
class Names {
 public:
  // An empty text is no name.
  NameId Intern(std::string_view text);
  [[nodiscard]] const std::string& Text(NameId id) const { return texts_[id]; }
  // Nothing for kNoName.
  [[nodiscard]] std::optional<std::string> Name(NameId id) const;
  [[nodiscard]] std::size_t Count() const { return texts_.size(); }  // with kNoName

  // The names that differ by case only, each group sorted.
  [[nodiscard]] std::vector<std::vector<std::string>> Alike() const;

 private:
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>()(text);
    }
  };

  std::vector<std::string> texts_{""};
  std::unordered_map<std::string, NameId, TextHash, std::equal_to<>> ids_;
  NameId last_ = kNoName;
};

using NamesOfKinds = std::array<Names, kNameKinds>;
[[nodiscard]] std::vector<std::vector<std::string>> AlikeOf(const NamesOfKinds& names);

// The order of the groups of an answer: a missing name first, operators as numbers, all other names
// by their bytes.
[[nodiscard]] bool NameIsBefore(NameKind kind, const std::optional<std::string>& left,
                                const std::optional<std::string>& right);

// Whether a record has the name. Searches an index, once for each range of transactions. Throws
// SQLite::Exception.
[[nodiscard]] bool HasName(SQLite::Database& database, NameKind kind, const std::string& name);

// Throws QuestionError if a name of the question is in no record; its text lists the names that
// differ by case only. Throws DatabaseError.
void CheckNames(SQLite::Database& database, const Question& question);

// The names that the records have, in the order of the groups of an answer, without the missing
// one. Reads a whole index. Throws DatabaseError.
[[nodiscard]] std::vector<std::string> ReadNames(SQLite::Database& database, NameKind kind);

}  // namespace vrx
