#include "desktop/lock_file.h"

#include <QStandardPaths>
#include <chrono>

#include "frame/error.h"

namespace vrx {

bool LockFile::Claim() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  const QString path = folder + QStringLiteral("/vrx2260.lock");
  lock_.emplace(path);
  lock_->setStaleLockTime(std::chrono::milliseconds{0});  // however long the program has run
  if (lock_->tryLock(std::chrono::milliseconds{0})) {
    return true;
  }
  if (lock_->error() != QLockFile::LockFailedError) {
    throw Error("cannot lock " + path.toStdString());
  }
  return false;
}

}  // namespace vrx
