#pragma once

#include <QFileIconProvider>

namespace vrx {

// Icons and kinds of the files in a file dialog. The usual provider reads the beginning of a file
// whose name does not tell its kind; this one does so for stored files only. A read of a special
// file, or of one that the kernel makes up (/proc/kmsg), can wait for ever.
//
// Is called from a thread of the dialog.
class FileIcons : public QFileIconProvider {
 public:
  using QFileIconProvider::icon;
  QIcon icon(const QFileInfo& file) const override;
  QString type(const QFileInfo& file) const override;
};

}  // namespace vrx
