#include "support/rival_writer.h"

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

namespace vrx::testing {
namespace {

RivalWriter* rival = nullptr;

int ReportOfQuery(unsigned /*event*/, void* /*context*/, void* statement, void* /*text*/) {
  if (rival != nullptr) {
    const char* const text = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
    rival->QueryBegins(text == nullptr ? "" : text);
  }
  return 0;
}

int TraceConnection(sqlite3* connection, const char** /*message*/,
                    const sqlite3_api_routines* /*api*/) {
  return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, ReportOfQuery, nullptr);
}

// SQLite declares the routine without its parameters.
auto* ForEveryConnection() { return reinterpret_cast<void (*)()>(TraceConnection); }

}  // namespace

RivalWriter::RivalWriter() {
  rival = this;
  sqlite3_auto_extension(ForEveryConnection());
}

RivalWriter::~RivalWriter() {
  sqlite3_cancel_auto_extension(ForEveryConnection());
  rival = nullptr;
}

void RivalWriter::Start(const std::filesystem::path& path, const std::string& statement) {
  path_ = path;
  statement_ = statement;
  first_ = true;
  tries_ = 0;
  stored_ = 0;
}

void RivalWriter::Stop() { statement_.clear(); }

void RivalWriter::QueryBegins(std::string_view text) {
  if (statement_.empty() || at_work_ || !(text.starts_with("SELECT") || text.starts_with("WITH"))) {
    return;
  }
  if (first_) {
    first_ = false;
    return;
  }
  at_work_ = true;
  ++tries_;
  try {
    SQLite::Database(path_, SQLite::OPEN_READWRITE).exec(statement_);
    ++stored_;
  } catch (const SQLite::Exception&) {  // held off
  }
  at_work_ = false;
}

}  // namespace vrx::testing
