#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/error.h"
#include "central/server.h"

namespace vrx {

inline constexpr int kCentralSchema = 1;  // the schema that this program makes
inline constexpr int kCentralClient = 1;  // compared with the schema's minimum

// A database that cannot be used as a central database, or by this program.
class CentralSchemaError : public Error {
 public:
  using Error::Error;
};

// All functions below throw CentralError too, and change nothing then.

// Checks that the schema is there and takes this program. A newer schema does as long as its
// minimum is not above this program.
void CheckCentralSchema(CentralConnection& server);

enum class InitOutcome { kMade, kUpgraded, kUpToDate };

// Makes roles, schema, views and functions, or upgrades them, in one transaction that waits for
// locks of others for five seconds at most. The login needs the rights to create roles and to
// create in the database, which must have the encoding UTF8.
InitOutcome InitCentral(CentralConnection& server);

// Adds a yard and its login, which may exist already. A new login has no password: the
// administrator sets one with psql's \password, or the server trusts a certificate. Returns the
// yard's ID.
std::string AddYard(CentralConnection& server, const std::string& name, const std::string& zone,
                    const std::string& login);

// What the company calls an ingredient of a yard; an empty name removes the alias.
void SetAlias(CentralConnection& server, const std::string& yard, const std::string& name,
              const std::string& company_name);

struct WithdrawalOrder {
  std::string source = {};
  std::optional<std::int64_t> first_row = {};  // both or neither; neither is the whole source
  std::optional<std::int64_t> last_row = {};
  std::string why = {};
};

// Takes rows out of all figures; they stay. Returns how many there are.
std::int64_t Withdraw(CentralConnection& server, const WithdrawalOrder& order);
// Deletes them for good.
std::int64_t Erase(CentralConnection& server, const WithdrawalOrder& order);

}  // namespace vrx
