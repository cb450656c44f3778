#pragma once

#include <QLockFile>
#include <QString>
#include <optional>

#include "desktop/app/start_up.h"

namespace vrx {

// One instance for each user of the machine, by a lock in the user's folder of running programs. It
// goes with the process: what a crash leaves behind holds nobody up.
class LockFile : public SingleInstance {
 public:
  LockFile();  // in the user's folder
  explicit LockFile(QString folder);

  bool Claim() override;

 private:
  QString folder_;
  std::optional<QLockFile> lock_;
};

}  // namespace vrx
