#include "presenter/tell_failure.h"

#include <string>

#include "database/database_error.h"

namespace vrx {

void TellFailure(Operator& op, std::string_view title, const std::exception& failure) {
  op.ShowMessage({.icon = Icon::kCritical,
                  .title = std::string(title),
                  .text = "Error: " + std::to_string(FailureNumber(failure)),
                  .cause = failure.what()});
}

}  // namespace vrx
