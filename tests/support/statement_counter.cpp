#include "support/statement_counter.h"

#include <sqlite3.h>

namespace vrx::testing {
namespace {

int begun = 0;

int CountStatement(unsigned /*event*/, void* /*context*/, void* /*statement*/, void* /*text*/) {
  ++begun;
  return 0;
}

int TraceConnection(sqlite3* connection, const char** /*message*/,
                    const sqlite3_api_routines* /*api*/) {
  return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, CountStatement, nullptr);
}

// SQLite declares the routine without its parameters.
auto* ForEveryConnection() { return reinterpret_cast<void (*)()>(TraceConnection); }

}  // namespace

StatementCounter::StatementCounter() {
  begun = 0;
  sqlite3_auto_extension(ForEveryConnection());
}

StatementCounter::~StatementCounter() { sqlite3_cancel_auto_extension(ForEveryConnection()); }

int StatementCounter::Count() const { return begun; }

}  // namespace vrx::testing
