#include "central/progress.h"

#include "base/translation.h"

namespace vrx {

void CentralProgress::Check() const {
  if (!go_on()) {
    throw CentralStopped(Tr("the work with the central database was stopped"));
  }
}

void CentralProgress::Report(const std::string& doing, std::int64_t done,
                             std::int64_t total) const {
  show(doing, done, total);
  Check();
}

}  // namespace vrx
