#include "central/server.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <utility>

#include <libpq-fe.h>

#include "base/translation.h"
#include "central/socket_wait.h"

namespace vrx {
namespace {

constexpr int kWaitAtATime = 100;  // milliseconds
constexpr std::size_t kCopyPiece = 65536;

// Names are always qualified; a server that cannot watch its clients refuses the last setting.
constexpr const char* kSettings =
    "SET search_path = pg_catalog, pg_temp; SET extra_float_digits = 1; SET jit = off; "
    "SET DateStyle = 'ISO, YMD'; SET TimeZone = 'UTC'";
constexpr const char* kNoticeLostClients = "SET client_connection_check_interval = '2s'";

// The library's texts have several lines and end with one.
std::string OnOneLine(std::string_view words) {
  std::string line;
  for (const char character : words) {
    if (character == '\n' || character == '\r' || character == '\t') {
      if (!line.empty() && line.back() != ' ') {
        line += ' ';
      }
    } else {
      line += character;
    }
  }
  while (!line.empty() && line.back() == ' ') {
    line.pop_back();
  }
  return line;
}

std::string Field(const PGresult* result, int field) {
  const char* const text = PQresultErrorField(result, field);
  return text == nullptr ? std::string() : OnOneLine(text);
}

CentralError ErrorOf(const PGresult* result) {
  std::string words = Field(result, PG_DIAG_MESSAGE_PRIMARY);
  for (const unsigned char field : {PG_DIAG_MESSAGE_DETAIL, PG_DIAG_MESSAGE_HINT}) {
    if (const std::string more = Field(result, field); !more.empty()) {
      words += " (" + more + ")";
    }
  }
  if (words.empty()) {
    words = OnOneLine(PQresultErrorMessage(result));
  }
  return {words, Field(result, PG_DIAG_SQLSTATE)};
}

bool Failed(const PGresult* result) {
  const ExecStatusType status = PQresultStatus(result);
  return status == PGRES_FATAL_ERROR || status == PGRES_BAD_RESPONSE;
}

bool IsCopy(const PGresult* result) {
  const ExecStatusType status = PQresultStatus(result);
  return status == PGRES_COPY_IN || status == PGRES_COPY_OUT || status == PGRES_COPY_BOTH;
}

void IgnoreNotice(void* /*unused*/, const PGresult* /*notice*/) {}

}  // namespace

// The answer.

int CentralRows::Count() const { return PQntuples(result_.get()); }

int CentralRows::Columns() const { return PQnfields(result_.get()); }

std::string CentralRows::ColumnName(int column) const { return PQfname(result_.get(), column); }

bool CentralRows::IsNull(int row, int column) const {
  return PQgetisnull(result_.get(), row, column) != 0;
}

std::string CentralRows::Text(int row, int column) const {
  return {PQgetvalue(result_.get(), row, column),
          static_cast<std::size_t>(PQgetlength(result_.get(), row, column))};
}

std::optional<std::string> CentralRows::TextOrNull(int row, int column) const {
  return IsNull(row, column) ? std::nullopt : std::optional(Text(row, column));
}

std::int64_t CentralRows::Number(int row, int column) const {
  const std::string text = Text(row, column);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (!text.empty() && (error != std::errc() || end != text.data() + text.size())) {
    throw CentralError(Tr("the central database answered \"%1\" instead of a number", {text}), {});
  }
  return number;
}

std::int64_t CentralRows::Affected() const {
  const std::string_view text = PQcmdTuples(result_.get());
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// The connection.

CentralConnection::CentralConnection(const std::string& connection, Waiting waiting)
    : waiting_(std::move(waiting)) {
  Connect(connection);
  Query(kSettings);
  try {
    Query(kNoticeLostClients);
  } catch (const CentralError& error) {
    if (error.State().empty()) {
      throw;
    }
  }
}

void CentralConnection::Connect(const std::string& connection) {
  const ConnectionOptions options = ReadConnectionString(connection);
  sslmode_ = options.sslmode;
  std::vector<const char*> keywords;
  std::vector<const char*> values;
  for (const auto& [keyword, value] : options.words) {
    keywords.push_back(keyword.c_str());
    values.push_back(value.c_str());
  }
  keywords.push_back(nullptr);
  values.push_back(nullptr);
  connection_.reset(PQconnectStartParams(keywords.data(), values.data(), 1), PQfinish);
  if (connection_ == nullptr) {
    throw CentralError(Tr("there is not enough memory to connect"), {});
  }
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(options.timeout);
  auto next = PGRES_POLLING_WRITING;
  while (next != PGRES_POLLING_OK) {
    if (next == PGRES_POLLING_FAILED || PQstatus(connection_.get()) == CONNECTION_BAD) {
      FailAsConnection();
    }
    if (std::chrono::steady_clock::now() > end) {
      throw CentralError(
          Tr("the server did not answer within %1 seconds", {std::to_string(options.timeout)}), {});
    }
    Wait(next == PGRES_POLLING_READING ? Direction::kRead : Direction::kWrite);
    next = PQconnectPoll(connection_.get());
  }
  if (PQsetnonblocking(connection_.get(), 1) != 0) {
    FailAsConnection();
  }
  PQsetNoticeReceiver(connection_.get(), IgnoreNotice, nullptr);
}

// While the library has something to send, it also reads what the server says in the meantime.
void CentralConnection::Wait(Direction direction) {
  try {
    if (waiting_) {
      waiting_();
    }
  } catch (...) {
    connection_.reset();
    throw;
  }
  WaitForSocket(PQsocket(connection_.get()),
                direction == Direction::kRead ? SocketEvent::kRead : SocketEvent::kReadOrWrite,
                kWaitAtATime);
}

void CentralConnection::Flush() {
  for (;;) {
    const int left = PQflush(connection_.get());
    if (left == 0) {
      return;
    }
    if (left < 0) {
      FailAsConnection();
    }
    Wait(Direction::kWrite);
    if (PQconsumeInput(connection_.get()) == 0) {
      FailAsConnection();
    }
  }
}

void CentralConnection::Check() const {
  if (connection_ == nullptr) {
    throw CentralError(Tr("the connection to the central database is lost"), {});
  }
}

void CentralConnection::FailAsConnection() const {
  std::string words = OnOneLine(PQerrorMessage(connection_.get()));
  throw CentralError(words.empty() ? Tr("the connection to the central database is lost") : words,
                     {});
}

void CentralConnection::Send(const std::string& sql, const Values& values) {
  Check();
  std::vector<const char*> texts;
  for (const auto& value : values) {
    if (value && value->find('\0') != std::string::npos) {
      throw CentralError(Tr("a text has a character that the central database cannot store"), {});
    }
    texts.push_back(value ? value->c_str() : nullptr);
  }
  const int sent = values.empty() ? PQsendQuery(connection_.get(), sql.c_str())
                                  : PQsendQueryParams(connection_.get(), sql.c_str(),
                                                      static_cast<int>(texts.size()), nullptr,
                                                      texts.data(), nullptr, nullptr, 0);
  if (sent == 0) {
    FailAsConnection();
  }
  Flush();
}

std::shared_ptr<pg_result> CentralConnection::NextResult() {
  while (PQisBusy(connection_.get()) != 0) {
    Wait(Direction::kRead);
    if (PQconsumeInput(connection_.get()) == 0) {
      FailAsConnection();
    }
  }
  PGresult* const result = PQgetResult(connection_.get());
  return result == nullptr ? nullptr : std::shared_ptr<pg_result>(result, PQclear);
}

// The last answer; throws the first error when the connection is ready for more.
CentralRows CentralConnection::Finish() {
  std::shared_ptr<pg_result> last;
  std::optional<CentralError> failure;
  while (std::shared_ptr<pg_result> result = NextResult()) {
    if (Failed(result.get()) && !failure) {
      failure = ErrorOf(result.get());
    }
    last = std::move(result);
    if (IsCopy(last.get())) {
      break;
    }
    if (PQstatus(connection_.get()) == CONNECTION_BAD) {
      break;
    }
  }
  if (failure) {
    throw CentralError(*failure);
  }
  if (last == nullptr) {
    FailAsConnection();
  }
  return CentralRows(std::move(last));
}

CentralRows CentralConnection::Query(const std::string& sql, const Values& values) {
  Send(sql, values);
  return Finish();
}

void CentralConnection::StartCopy(const std::string& sql) {
  Send(sql, {});
  const std::shared_ptr<pg_result> result = NextResult();
  if (result == nullptr) {
    FailAsConnection();
  }
  if (Failed(result.get())) {
    const CentralError failure = ErrorOf(result.get());
    while (NextResult() != nullptr) {
    }
    throw CentralError(failure);
  }
}

void CentralConnection::PutCopy(std::string_view bytes) {
  Check();
  while (!bytes.empty()) {
    const std::size_t size = std::min(bytes.size(), kCopyPiece);
    const int put = PQputCopyData(connection_.get(), bytes.data(), static_cast<int>(size));
    if (put < 0) {
      Finish();  // throws the server's reason
      FailAsConnection();
    }
    if (put > 0) {
      bytes.remove_prefix(size);
    }
    // The library would keep what the server does not take yet in memory.
    Flush();
  }
}

std::int64_t CentralConnection::EndCopy() {
  Check();
  for (;;) {
    const int ended = PQputCopyEnd(connection_.get(), nullptr);
    if (ended < 0) {
      Finish();
      FailAsConnection();
    }
    if (ended > 0) {
      break;
    }
    Wait(Direction::kWrite);
  }
  Flush();
  return Finish().Affected();
}

std::int64_t CentralConnection::ReadCopy(const std::string& sql,
                                         const std::function<void(std::string_view)>& take) {
  StartCopy(sql);
  for (;;) {
    char* bytes = nullptr;
    const int size = PQgetCopyData(connection_.get(), &bytes, 1);
    const std::unique_ptr<char, decltype(&PQfreemem)> owner(bytes, PQfreemem);
    if (size > 0) {
      try {
        take({bytes, static_cast<std::size_t>(size)});
      } catch (...) {
        connection_.reset();
        throw;
      }
    } else if (size == 0) {
      Wait(Direction::kRead);
      if (PQconsumeInput(connection_.get()) == 0) {
        FailAsConnection();
      }
    } else if (size == -1) {
      return Finish().Affected();
    } else {
      FailAsConnection();
    }
  }
}

void CentralConnection::Abandon() noexcept {
  try {
    if (connection_ == nullptr || PQstatus(connection_.get()) == CONNECTION_BAD) {
      return;
    }
    const PGTransactionStatusType state = PQtransactionStatus(connection_.get());
    if (state == PQTRANS_ACTIVE) {
      connection_.reset();  // in the middle of an answer or a copy: the server rolls back
    } else if (state != PQTRANS_IDLE) {
      Query("ROLLBACK");
    }
  } catch (...) {
    connection_.reset();
  }
}

std::string CentralConnection::Quoted(const std::string& name) const {
  Check();
  const std::unique_ptr<char, decltype(&PQfreemem)> quoted(
      PQescapeIdentifier(connection_.get(), name.data(), name.size()), PQfreemem);
  if (quoted == nullptr) {
    FailAsConnection();
  }
  return quoted.get();
}

std::string CentralConnection::Protection() const {
  Check();
  if (PQsslInUse(connection_.get()) != 0) {
    const char* const protocol = PQsslAttribute(connection_.get(), "protocol");
    return std::string(protocol == nullptr ? "TLS" : protocol) + " (sslmode=" + sslmode_ + ")";
  }
  const std::string host = PQhost(connection_.get());
  if (host.empty() || host.starts_with('/') || host.starts_with('@')) {
    return Tr("a socket of this machine");
  }
  return Tr("not encrypted (sslmode=%1)", {sslmode_});
}

std::string CentralConnection::Target() const {
  Check();
  return std::string(PQhost(connection_.get())) + ":" + PQport(connection_.get()) + "/" +
         PQdb(connection_.get());
}

std::string CentralConnection::Login() const {
  Check();
  return PQuser(connection_.get());
}

CentralTransaction::CentralTransaction(CentralConnection& server) : server_(server) {
  server_.Query("BEGIN");
}

CentralTransaction::~CentralTransaction() {
  if (open_) {
    server_.Abandon();
  }
}

void CentralTransaction::Commit() {
  server_.Query("COMMIT");
  open_ = false;
}

}  // namespace vrx
