#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/error.h"

struct pg_conn;
struct pg_result;

namespace vrx {

// A connection string that cannot be used. what() never repeats it.
class ConnectionStringError : public Error {
 public:
  using Error::Error;
};

// What is passed to libpq for a connection string, and what is to be known of it beforehand.
struct ConnectionOptions {
  // Keywords and values in libpq's order of precedence: a later one wins.
  std::vector<std::pair<std::string, std::string>> words = {};
  std::string sslmode = {};  // in force
  bool local = true;         // sockets and addresses of this machine only
  int timeout = 0;           // seconds to connect
};

// Reads libpq's URI, key=value words or service=NAME, completed by its environment and service
// file. A password in it is refused: it would stand in a settings file or a list of processes.
// libpq finds one in its password file or environment.
//
// Without a stated sslmode another host gets verify-full, and without a stated gssencmode disable.
// A service file that states the value "prefer", which is libpq's default, counts as stating
// nothing.
[[nodiscard]] ConnectionOptions ReadConnectionString(const std::string& connection);

// The server's or the library's words, on one line.
class CentralError : public Error {
 public:
  CentralError(const std::string& words, std::string state)
      : Error(words), state_(std::move(state)) {}

  // SQLSTATE; empty if the error is not the server's, as for a lost connection.
  [[nodiscard]] const std::string& State() const { return state_; }

 private:
  std::string state_;
};

inline constexpr std::string_view kUniqueViolation = "23505";
inline constexpr std::string_view kCheckViolation = "23514";

// The answer to a query. Rows and columns count from 0.
class CentralRows {
 public:
  explicit CentralRows(std::shared_ptr<pg_result> result) : result_(std::move(result)) {}

  [[nodiscard]] int Count() const;
  [[nodiscard]] int Columns() const;
  [[nodiscard]] std::string ColumnName(int column) const;
  [[nodiscard]] bool IsNull(int row, int column) const;
  // Empty for NULL.
  [[nodiscard]] std::string Text(int row, int column) const;
  [[nodiscard]] std::optional<std::string> TextOrNull(int row, int column) const;
  // 0 for NULL. Throws CentralError if it is no whole number.
  [[nodiscard]] std::int64_t Number(int row, int column) const;
  // Rows that a statement has added, changed or deleted.
  [[nodiscard]] std::int64_t Affected() const;

 private:
  std::shared_ptr<pg_result> result_;
};

// A connection to a central database, for one thread. All calls throw CentralError.
//
// Nothing blocks for longer than about a tenth of a second without a call of `waiting`, but the
// look-up of a host's name. What `waiting` throws ends the wait: the connection is closed then, the
// server rolls the transaction back, and further calls throw CentralError.
class CentralConnection {
 public:
  using Waiting = std::function<void()>;
  using Values = std::vector<std::optional<std::string>>;

  // `connection` is libpq's: a URI, key=value words or service=NAME.
  explicit CentralConnection(const std::string& connection, Waiting waiting = {});

  // One statement with $1, $2 and so on, whose types the server infers. Without values also several
  // statements, which are one transaction; the answer is the last one's.
  CentralRows Query(const std::string& sql, const Values& values = {});

  // COPY ... FROM STDIN. PutCopy takes any number of bytes and returns when they are on their way.
  void StartCopy(const std::string& sql);
  void PutCopy(std::string_view bytes);
  std::int64_t EndCopy();  // the number of rows

  // COPY ... TO STDOUT: passes each row's bytes (in the binary form also a header with the first
  // row and a trailer) and returns the number of rows. What `take` throws closes the connection.
  std::int64_t ReadCopy(const std::string& sql, const std::function<void(std::string_view)>& take);

  // Ends a copy and rolls back. Never throws.
  void Abandon() noexcept;

  // `name` as a quoted identifier.
  [[nodiscard]] std::string Quoted(const std::string& name) const;

  // How the connection is protected: "a socket of this machine", "not encrypted (sslmode=disable)",
  // "TLSv1.3 (sslmode=verify-full)".
  [[nodiscard]] std::string Protection() const;
  // Host, port and database, without login and password.
  [[nodiscard]] std::string Target() const;
  [[nodiscard]] std::string Login() const;

 private:
  enum class Direction { kRead, kWrite };

  void Connect(const std::string& connection);
  void Wait(Direction direction);
  void Flush();
  void Send(const std::string& sql, const Values& values);
  [[nodiscard]] std::shared_ptr<pg_result> NextResult();
  CentralRows Finish();
  void Check() const;
  [[noreturn]] void FailAsConnection() const;

  Waiting waiting_;
  std::string sslmode_;
  std::shared_ptr<pg_conn> connection_;
};

// A transaction that is rolled back unless it is committed.
class CentralTransaction {
 public:
  explicit CentralTransaction(CentralConnection& server);
  ~CentralTransaction();
  CentralTransaction(const CentralTransaction&) = delete;
  CentralTransaction& operator=(const CentralTransaction&) = delete;
  void Commit();

 private:
  CentralConnection& server_;
  bool open_ = true;
};

}  // namespace vrx
