#include "adapters/document_viewers.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <QStandardPaths>
#include <QStringList>
#include <optional>

namespace vrx {
namespace {

constexpr int kNoFile = 2;
constexpr int kBadProgram = 11;
constexpr int kNoAssociation = 31;
constexpr int kFound = 33;

// The document's kind and the more general ones that it belongs to, but not "any file at all".
QStringList KindsOf(const QString& document) {
  const QMimeType kind = QMimeDatabase().mimeTypeForFile(document);
  QStringList kinds = {kind.name()};
  kinds << kind.allAncestors();
  kinds.removeAll(QStringLiteral("application/octet-stream"));
  return kinds;
}

QStringList ApplicationFolders() {
  return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

// The association files, the user's first; in each place the one of the running desktop comes ahead
// of the common one.
QStringList AssociationFiles() {
  const QStringList desktops = QString::fromLocal8Bit(qgetenv("XDG_CURRENT_DESKTOP"))
                                   .toLower()
                                   .split(u':', Qt::SkipEmptyParts);
  QStringList files;
  for (const QString& folder :
       QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation) +
           ApplicationFolders()) {
    for (const QString& desktop : desktops) {
      files << folder + u'/' + desktop + QStringLiteral("-mimeapps.list");
    }
    files << folder + QStringLiteral("/mimeapps.list");
  }
  return files;
}

QStringList EntriesOf(const KeyFile& file, const QString& group, const QString& kind) {
  const auto found_group = file.find(group);
  if (found_group == file.end()) {
    return {};
  }
  const auto found = found_group->second.find(kind);
  return found == found_group->second.end() ? QStringList()
                                            : found->second.split(u';', Qt::SkipEmptyParts);
}

// The names of the .desktop files for a kind, the preferred ones first.
QStringList AssociationsOf(const QString& kind) {
  QStringList defaults;
  QStringList added;
  QStringList removed;
  for (const QString& path : AssociationFiles()) {
    const KeyFile file = ReadKeyFile(path);
    defaults << EntriesOf(file, QStringLiteral("Default Applications"), kind);
    added << EntriesOf(file, QStringLiteral("Added Associations"), kind);
    removed << EntriesOf(file, QStringLiteral("Removed Associations"), kind);
  }
  QStringList cached;
  for (const QString& folder : ApplicationFolders()) {
    cached << EntriesOf(ReadKeyFile(folder + QStringLiteral("/mimeinfo.cache")),
                        QStringLiteral("MIME Cache"), kind);
  }
  for (const QString& entry : removed) {
    cached.removeAll(entry);
  }
  return defaults + added + cached;
}

// A "-" in the name may stand for a folder below the applications' one.
QString EntryPath(const QString& entry) {
  QString path = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, entry);
  if (!path.isEmpty()) {
    return path;
  }
  QString below = entry;
  const qsizetype dash = below.indexOf(u'-');
  return dash < 0 ? QString()
                  : QStandardPaths::locate(QStandardPaths::ApplicationsLocation,
                                           below.replace(dash, 1, u'/'));
}

}  // namespace

int FindDocumentCall(const QString& document, ProgramCall& call) {
  if (!QFileInfo(document).isFile()) {
    return kNoFile;
  }
  bool associated = false;
  for (const QString& kind : KindsOf(document)) {
    for (const QString& entry : AssociationsOf(kind)) {
      associated = true;
      const QString path = EntryPath(entry);
      const std::optional<ProgramCall> found =
          path.isEmpty() ? std::nullopt : CallOfDesktopEntry(path, document);
      if (found) {
        call = *found;
        return kFound;
      }
    }
  }
  return associated ? kBadProgram : kNoAssociation;
}

}  // namespace vrx
