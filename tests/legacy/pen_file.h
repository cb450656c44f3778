#pragma once

#include <cstdint>
#include <string_view>

#include "legacy/jet_writer.h"

namespace vrx::testing {

inline const LegacyValue kNull{};

inline LegacyValue Text(std::string_view text) { return JetWriter::Utf16(text); }
inline LegacyValue Whole(int number) { return std::int32_t{number}; }

// The three identity tables of a file.
inline void AddIdentity(JetWriter& file, std::string_view marker, std::string_view unit = "LB") {
  file.AddTable("UnitsOfMeasure", {{"UoM", JetWriter::kText}});
  file.AddRow({Text(unit)});
  file.AddTable("History", {{"Created", JetWriter::kDate}, {"Modified", JetWriter::kDate}});
  file.AddRow({JetDate{40000}, kNull});
  file.AddTable("BrantockDatabase", {{"dBType", JetWriter::kText}});
  file.AddRow({Text(marker)});
}

inline void AddPens(JetWriter& file) {
  file.AddTable("Pen", {{"ID", JetWriter::kLong},
                        {"Name", JetWriter::kText},
                        {"Description", JetWriter::kText},
                        {"FeedAmount", JetWriter::kText}});
}

inline JetWriter PenFile() {
  JetWriter file;
  AddIdentity(file, "USER_RECIPE_DB");
  AddPens(file);
  return file;
}

}  // namespace vrx::testing
