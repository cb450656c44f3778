#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <string_view>

#include <libpq-fe.h>

#include "base/translation.h"
#include "central/server.h"

namespace vrx {
namespace {

constexpr std::string_view kDefaultMode = "prefer";  // of sslmode and gssencmode in libpq
constexpr int kConnectTimeout = 10;                  // seconds
// No port: libpq completes all options and gives up before it looks for a host.
constexpr const char* kNoPort = "0";

using Options = std::map<std::string, std::string>;

Options Stated(PQconninfoOption* list) {
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> owner(list, PQconninfoFree);
  Options options;
  for (const PQconninfoOption* option = list; option != nullptr && option->keyword != nullptr;
       ++option) {
    if (option->val != nullptr && *option->val != '\0') {
      options[option->keyword] = option->val;
    }
  }
  return options;
}

Options Parse(const std::string& connection) {
  char* words = nullptr;
  PQconninfoOption* const list = PQconninfoParse(connection.c_str(), &words);
  const std::unique_ptr<char, decltype(&PQfreemem)> owner(words, PQfreemem);
  if (list == nullptr) {
    // The library's words quote the string, which may hold a password.
    throw ConnectionStringError(
        Tr("the connection is neither a URI nor words such as host=NAME dbname=NAME"));
  }
  return Stated(list);
}

// With the environment and the service file.
Options Complete(const std::string& connection) {
  const std::array<const char*, 3> keywords{"dbname", "port", nullptr};
  const std::array<const char*, 3> values{connection.c_str(), kNoPort, nullptr};
  const std::unique_ptr<PGconn, decltype(&PQfinish)> probe(
      PQconnectStartParams(keywords.data(), values.data(), 1), PQfinish);
  if (probe == nullptr) {
    throw ConnectionStringError(Tr("there is not enough memory to connect"));
  }
  Options options = Stated(PQconninfo(probe.get()));
  if (options.empty()) {
    // Such as a service that no file defines. The words quote no password: none is stated.
    std::string words = PQerrorMessage(probe.get());
    words.erase(words.find_last_not_of('\n') + 1);
    throw ConnectionStringError(words);
  }
  return options;
}

bool IsStated(const Options& stated, const Options& complete, const std::string& keyword,
              const char* variable) {
  const char* const environment = std::getenv(variable);
  const auto found = complete.find(keyword);
  return stated.contains(keyword) || (environment != nullptr && *environment != '\0') ||
         (found != complete.end() && found->second != kDefaultMode);
}

std::string ValueOf(const Options& options, const std::string& keyword) {
  const auto found = options.find(keyword);
  return found == options.end() ? std::string() : found->second;
}

bool IsLocalHost(std::string_view host) {
  constexpr std::array<std::string_view, 4> kNames{"", "localhost", "127.0.0.1", "::1"};
  return host.starts_with('/') || host.starts_with('@') ||
         std::find(kNames.begin(), kNames.end(), host) != kNames.end();
}

// A list with commas.
bool AreLocalHosts(std::string_view hosts) {
  for (;;) {
    const std::size_t comma = hosts.find(',');
    if (!IsLocalHost(hosts.substr(0, comma))) {
      return false;
    }
    if (comma == std::string_view::npos) {
      return true;
    }
    hosts.remove_prefix(comma + 1);
  }
}

int TimeoutOf(const Options& options) {
  const int seconds = std::atoi(ValueOf(options, "connect_timeout").c_str());
  return seconds > 0 ? seconds : kConnectTimeout;
}

}  // namespace

ConnectionOptions ReadConnectionString(const std::string& connection) {
  const Options stated = Parse(connection);
  for (const char* const secret : {"password", "sslpassword"}) {
    if (stated.contains(secret)) {
      throw ConnectionStringError(
          Tr("a password does not belong into the connection: put it into the file .pgpass of your "
             "home folder, which only you may read"));
    }
  }
  const Options complete = Complete(connection);
  ConnectionOptions options;
  // An address takes the place of the name.
  const std::string address = ValueOf(complete, "hostaddr");
  options.local = AreLocalHosts(address.empty() ? ValueOf(complete, "host") : address);
  options.sslmode = ValueOf(complete, "sslmode");
  options.timeout = TimeoutOf(complete);
  options.words = {{"dbname", connection},
                   {"client_encoding", "UTF8"},
                   {"fallback_application_name", "vrx2260"}};
  if (!options.local) {
    if (!IsStated(stated, complete, "sslmode", "PGSSLMODE")) {
      options.sslmode = "verify-full";
      options.words.emplace_back("sslmode", options.sslmode);
    }
    if (!IsStated(stated, complete, "gssencmode", "PGGSSENCMODE")) {
      options.words.emplace_back("gssencmode", "disable");
    }
    // A network that swallows everything is noticed.
    for (const auto& [keyword, value] :
         {std::pair("keepalives_idle", "30"), std::pair("keepalives_interval", "10"),
          std::pair("keepalives_count", "3"), std::pair("tcp_user_timeout", "60000")}) {
      if (!complete.contains(keyword)) {
        options.words.emplace_back(keyword, value);
      }
    }
  }
  return options;
}

}  // namespace vrx
