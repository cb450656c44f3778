#include "desktop/app/file_icons.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <algorithm>
#include <array>

namespace vrx {
namespace {

// Files that the kernel makes up have no size, or lie in one of these folders.
bool IsStored(const QFileInfo& file) {
  static const std::array<QString, 3> kernel_folders = {
      QStringLiteral("/proc/"), QStringLiteral("/sys/"), QStringLiteral("/dev/")};
  if (!file.isFile() || file.size() == 0) {
    return false;
  }
  const QString path = file.canonicalFilePath();
  return std::none_of(kernel_folders.begin(), kernel_folders.end(),
                      [&](const QString& folder) { return path.startsWith(folder); });
}

}  // namespace

QIcon FileIcons::icon(const QFileInfo& file) const {
  return file.isDir() || IsStored(file) ? QFileIconProvider::icon(file)
                                        : QFileIconProvider::icon(IconType::File);
}

QString FileIcons::type(const QFileInfo& file) const {
  return file.isDir() || IsStored(file)
             ? QFileIconProvider::type(file)
             : QMimeDatabase()
                   .mimeTypeForFile(file.fileName(), QMimeDatabase::MatchExtension)
                   .comment();
}

}  // namespace vrx
