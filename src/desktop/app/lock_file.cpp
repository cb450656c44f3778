#include "desktop/app/lock_file.h"

#include <QStandardPaths>
#include <chrono>
#include <utility>

#include "base/error.h"

namespace vrx {

LockFile::LockFile()
    : LockFile(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation)) {}

LockFile::LockFile(QString folder) : folder_(std::move(folder)) {}

bool LockFile::Claim() {
  if (folder_.isEmpty()) {
    throw Error("there is no folder for the locks of running programs");
  }
  const QString path = folder_ + QStringLiteral("/vrx2260.lock");
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
