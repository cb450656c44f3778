#pragma once

#include <QString>
#include <QStringList>

namespace vrx {

struct ProgramCall {
  QString program;  // full path
  QStringList arguments;
};

struct DocumentOpener {
  int code = 0;
  ProgramCall call;  // empty unless the code is above 32
};

// Looks up the program that the user's desktop opens a document with. The code is above 32 if there
// is one, 2 if the file does not exist, 31 if no installed program is associated with its type, 11
// if those that are cannot be used: they need a terminal, or are gone since the desktop's folders
// were read last.
[[nodiscard]] DocumentOpener FindDocumentOpener(const QString& document);

}  // namespace vrx
