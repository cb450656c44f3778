#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "central/progress.h"
#include "insight/accuracy.h"
#include "insight/tables.h"

namespace vrx {

class CentralConnection;

// What the office asks about all yards that its login may see, by the same definitions as a yard's
// own answers (insight). Withdrawn rows and rows of imports whose unit is open do not count.

enum class CompanyFigure { kAccuracy, kBalance, kDelivered, kUse, kCompleteness };

struct CompanyQuestion {
  CompanyFigure figure = CompanyFigure::kAccuracy;
  std::optional<Date> from = {};  // first and last day, both included
  std::optional<Date> to = {};
  // Words of KeysOf. Operators and pens go with their yard. Balance without keys lists batches.
  std::vector<std::string> by = {};
  std::string unit = "KG";     // of all weights in the answer
  bool deliveries = false;     // accuracy: in place of loads
  AccuracyLimits limits = {};  // accuracy; the division is in the unit of each yard
  bool all = false;            // balance: balanced batches too
};

// The keys that a figure can be asked by, the usual ones first.
struct CompanyKeys {
  std::vector<std::string_view> all = {};
  std::size_t usual = 0;  // so many of them, without a choice
};
[[nodiscard]] CompanyKeys KeysOf(CompanyFigure figure, bool deliveries = false);

// Why a question cannot be asked by its keys; empty if it can.
[[nodiscard]] std::string WrongKeys(const CompanyQuestion& question);

// As of when a yard is.
struct YardAsOf {
  std::string yard = {};
  std::string at = {};                // server time of its last push, ISO 8601; "" before the first
  std::optional<Date> last_day = {};  // of its records
  bool behind = false;                // no push for a day and a half
};

// An import in another unit than its yard's file that nobody has settled: its rows do not count.
struct OpenImport {
  std::string yard = {};
  std::string source = {};
  std::int64_t import = 0;
  std::string file = {};
  std::string units = {};
  std::int64_t rows = 0;
};

struct CompanyAnswer {
  AnswerTable table = {};            // ascending by key; weights in the unit of the question
  std::vector<YardAsOf> yards = {};  // by name
  std::vector<OpenImport> open_imports = {};
};

// Of one state of the central database. Throws QuestionError, CentralStopped and CentralError.
[[nodiscard]] CompanyAnswer ReadCompany(CentralConnection& server, const CompanyQuestion& question,
                                        const CentralProgress& progress = {});

// The table of one figure, inside the caller's transaction. For ReadCompany.
[[nodiscard]] AnswerTable ReadCompanyAccuracy(CentralConnection& server,
                                              const CompanyQuestion& question);
[[nodiscard]] AnswerTable ReadCompanyCompleteness(CentralConnection& server,
                                                  const CompanyQuestion& question);

}  // namespace vrx
