#pragma once

#include <string_view>

#include "base/error.h"

namespace vrx {

inline constexpr int kMaxDataFiles = 99;

enum class DataFileType { kUnknown = 0, kTransaction = 1, kRecipeBackup = 2, kReport = 3 };

inline constexpr std::string_view kTransactionMark = "{BAT/FED}";
inline constexpr std::string_view kRecipeMark = "{DATA_IN}";
inline constexpr std::string_view kReportMark = "{REPORT}";

// Where a file lies in the transfer block.
struct FileAttributes {
  DataFileType type = DataFileType::kUnknown;
  int position = 0;  // of its first character, from 1
  int length = 0;
};

// A block with more files than the table holds. The first kMaxDataFiles are cut and may be used.
class TooManyFilesError : public Error {
 public:
  using Error::Error;
};

// "Transaction File", "Recipe Backup File", "Text Report"; empty for another type.
std::string_view DataFileTypeName(DataFileType type);

}  // namespace vrx
