#pragma once

#include <QString>
#include <QStringList>
#include <map>
#include <optional>

namespace vrx {

// The key files of the freedesktop kind: groups of `key=value` lines.
using KeyFileGroup = std::map<QString, QString>;
using KeyFile = std::map<QString, KeyFileGroup>;

// Empty for a file that cannot be read. Where a key stands twice in a group, the first one counts.
KeyFile ReadKeyFile(const QString& path);

struct ProgramCall {
  QString program;  // full path
  QStringList arguments;
};

// How the application of a .desktop file opens a document. Nothing where it is no application with
// a window of its own, or its program is not there.
std::optional<ProgramCall> CallOfDesktopEntry(const QString& entry_path, const QString& document);

}  // namespace vrx
