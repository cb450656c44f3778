#include "insight/row_scan.h"

#include <cstddef>
#include <utility>

#include <sqlite3.h>

namespace vrx {
namespace {

constexpr const char* kFunction = "insight_row";
constexpr int kFunctionFlags = SQLITE_UTF8 | SQLITE_DIRECTONLY;
constexpr int kAnyCount = -1;

void FinishScan(sqlite3_context* context) { sqlite3_result_null(context); }

}  // namespace

RowScan::RowScan(SQLite::Database& database, const std::string& columns, const std::string& from,
                 Take take)
    : database_(database),
      take_(std::move(take)),
      query_(Define(database, this),
             "SELECT " + std::string(kFunction) + "(" + columns + ") " + from) {}

RowScan::~RowScan() {
  query_.tryReset();
  sqlite3_create_function_v2(database_.getHandle(), kFunction, kAnyCount, kFunctionFlags, nullptr,
                             nullptr, nullptr, nullptr, nullptr);
}

SQLite::Database& RowScan::Define(SQLite::Database& database, RowScan* scan) {
  database.check(sqlite3_create_function_v2(database.getHandle(), kFunction, kAnyCount,
                                            kFunctionFlags, scan, nullptr, Step, FinishScan,
                                            nullptr));
  return database;
}

void RowScan::Run() {
  try {
    query_.executeStep();
    query_.reset();  // for the next parameters
  } catch (const SQLite::Exception&) {
    if (failure_) {
      std::rethrow_exception(std::exchange(failure_, nullptr));
    }
    throw;
  }
}

// Called from C code, which no exception may cross.
void RowScan::Step(sqlite3_context* context, int /*count*/, sqlite3_value** row) {
  auto& scan = *static_cast<RowScan*>(sqlite3_user_data(context));
  if (scan.failure_) {
    return;
  }
  try {
    scan.take_(row);
  } catch (...) {
    scan.failure_ = std::current_exception();
    sqlite3_result_error(context, "stopped", -1);
  }
}

std::string_view TextIn(sqlite3_value* value) {
  // As text SQLite would copy the bytes to end them with a zero.
  const bool is_utf8 =
      sqlite3_value_type(value) == SQLITE_TEXT && sqlite3_value_encoding(value) == SQLITE_UTF8;
  const void* const start = is_utf8 ? sqlite3_value_blob(value) : sqlite3_value_text(value);
  const auto* const bytes = static_cast<const char*>(start);
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

}  // namespace vrx
