#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "make_manual/typeset.h"

namespace vrx::manual {

struct Cover {
  QString product;
  QString version;
  QString copyright;
  QString logo;  // a drawing
};

// The manual as a PDF of A4 pages: cover, table of contents, chapters, each on a new page. The same
// bytes each time, except the date and the identifiers that the writer puts in. Throws Error.
QByteArray WriteManual(const std::vector<Chapter>& chapters, const Pictures& pictures,
                       const Cover& cover);

}  // namespace vrx::manual
