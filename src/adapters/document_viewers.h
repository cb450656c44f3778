#pragma once

#include <QString>

#include "adapters/desktop_entry.h"

namespace vrx {

// Looks up the program that the user's desktop opens a document with, by the kinds and associations
// that the freedesktop places hold. Gives a code above 32 with the call, 2 where there is no such
// file, 31 where nothing goes with its kind, 11 where what goes with it is not there or has no
// window of its own.
int FindDocumentCall(const QString& document, ProgramCall& call);

}  // namespace vrx
