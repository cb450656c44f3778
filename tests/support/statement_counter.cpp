#include "support/statement_counter.h"

#include <utility>

#include <sqlite3.h>

namespace vrx::testing {
namespace {

int begun = 0;
std::function<void()> call_at_each;

int CountStatement(unsigned /*event*/, void* /*context*/, void* /*statement*/, void* /*text*/) {
  ++begun;
  if (call_at_each) {
    call_at_each();
  }
  return 0;
}

int TraceConnection(sqlite3* connection, const char** /*message*/,
                    const sqlite3_api_routines* /*api*/) {
  return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, CountStatement, nullptr);
}

// SQLite declares the routine without its parameters.
auto* ForEveryConnection() { return reinterpret_cast<void (*)()>(TraceConnection); }

}  // namespace

StatementCounter::StatementCounter(std::function<void()> at_each) {
  begun = 0;
  call_at_each = std::move(at_each);
  sqlite3_auto_extension(ForEveryConnection());
}

StatementCounter::~StatementCounter() {
  sqlite3_cancel_auto_extension(ForEveryConnection());
  call_at_each = {};
}

int StatementCounter::Count() const { return begun; }

}  // namespace vrx::testing
