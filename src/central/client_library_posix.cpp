// The client library, loaded by the first call of a function of it. Linked as usual, it would load
// with nearly twenty more at every start, also of a program without a connection.

#include <string>

#include <dlfcn.h>
#include <libpq-fe.h>

#include "base/translation.h"
#include "central/server.h"

namespace vrx {
namespace {

struct ClientLibrary {
  ClientLibrary() : handle(dlopen("libpq.so.5", RTLD_LAZY | RTLD_LOCAL)) {
    if (handle == nullptr) {
      failure = dlerror();
    }
  }

  void* handle;
  std::string failure;
};

// Throws ConnectionStringError: no connection can be used without the library.
void* FindFunction(const char* name) {
  static const ClientLibrary library;
  void* const function = library.handle == nullptr ? nullptr : dlsym(library.handle, name);
  if (function == nullptr) {
    throw ConnectionStringError(
        Tr("the client library of the central database cannot be used: %1",
           {library.failure.empty() ? std::string(name) : library.failure}));
  }
  return function;
}

}  // namespace
}  // namespace vrx

// The functions of the library that this one calls, each by its declaration in libpq-fe.h.
// NOLINTBEGIN
#define VRX_FORWARD(result, name, parameters, arguments)                                      \
  result name parameters {                                                                    \
    static const auto function = reinterpret_cast<decltype(&name)>(vrx::FindFunction(#name)); \
    return function arguments;                                                                \
  }

extern "C" {

VRX_FORWARD(void, PQclear, (PGresult * r), (r))
VRX_FORWARD(char*, PQcmdTuples, (PGresult * r), (r))
VRX_FORWARD(PostgresPollingStatusType, PQconnectPoll, (PGconn * c), (c))
VRX_FORWARD(PGconn*, PQconnectStartParams, (const char* const* k, const char* const* v, int e),
            (k, v, e))
VRX_FORWARD(PQconninfoOption*, PQconninfo, (PGconn * c), (c))
VRX_FORWARD(void, PQconninfoFree, (PQconninfoOption * o), (o))
VRX_FORWARD(PQconninfoOption*, PQconninfoParse, (const char* s, char** e), (s, e))
VRX_FORWARD(int, PQconsumeInput, (PGconn * c), (c))
VRX_FORWARD(char*, PQdb, (const PGconn* c), (c))
VRX_FORWARD(char*, PQerrorMessage, (const PGconn* c), (c))
VRX_FORWARD(char*, PQescapeIdentifier, (PGconn * c, const char* s, size_t n), (c, s, n))
VRX_FORWARD(void, PQfinish, (PGconn * c), (c))
VRX_FORWARD(int, PQflush, (PGconn * c), (c))
VRX_FORWARD(char*, PQfname, (const PGresult* r, int n), (r, n))
VRX_FORWARD(void, PQfreemem, (void* m), (m))
VRX_FORWARD(int, PQgetCopyData, (PGconn * c, char** b, int a), (c, b, a))
VRX_FORWARD(PGresult*, PQgetResult, (PGconn * c), (c))
VRX_FORWARD(int, PQgetisnull, (const PGresult* r, int t, int f), (r, t, f))
VRX_FORWARD(int, PQgetlength, (const PGresult* r, int t, int f), (r, t, f))
VRX_FORWARD(char*, PQgetvalue, (const PGresult* r, int t, int f), (r, t, f))
VRX_FORWARD(char*, PQhost, (const PGconn* c), (c))
VRX_FORWARD(int, PQisBusy, (PGconn * c), (c))
VRX_FORWARD(int, PQnfields, (const PGresult* r), (r))
VRX_FORWARD(int, PQntuples, (const PGresult* r), (r))
VRX_FORWARD(char*, PQport, (const PGconn* c), (c))
VRX_FORWARD(int, PQputCopyData, (PGconn * c, const char* b, int n), (c, b, n))
VRX_FORWARD(int, PQputCopyEnd, (PGconn * c, const char* e), (c, e))
VRX_FORWARD(char*, PQresultErrorField, (const PGresult* r, int f), (r, f))
VRX_FORWARD(char*, PQresultErrorMessage, (const PGresult* r), (r))
VRX_FORWARD(ExecStatusType, PQresultStatus, (const PGresult* r), (r))
VRX_FORWARD(int, PQsendQuery, (PGconn * c, const char* q), (c, q))
VRX_FORWARD(int, PQsendQueryParams,
            (PGconn * c, const char* q, int n, const Oid* t, const char* const* v, const int* l,
             const int* f, int r),
            (c, q, n, t, v, l, f, r))
VRX_FORWARD(PQnoticeReceiver, PQsetNoticeReceiver, (PGconn * c, PQnoticeReceiver p, void* a),
            (c, p, a))
VRX_FORWARD(int, PQsetnonblocking, (PGconn * c, int a), (c, a))
VRX_FORWARD(int, PQsocket, (const PGconn* c), (c))
VRX_FORWARD(const char*, PQsslAttribute, (PGconn * c, const char* n), (c, n))
VRX_FORWARD(int, PQsslInUse, (PGconn * c), (c))
VRX_FORWARD(ConnStatusType, PQstatus, (const PGconn* c), (c))
VRX_FORWARD(PGTransactionStatusType, PQtransactionStatus, (const PGconn* c), (c))
VRX_FORWARD(char*, PQuser, (const PGconn* c), (c))

}  // extern "C"
// NOLINTEND
