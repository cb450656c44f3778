#pragma once

#include <QFileIconProvider>
#include <QString>
#include <functional>
#include <string>

#include "platform/file_chooser.h"

class QFileDialog;

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

// File dialogs over the active window. They are Qt's own rather than the platform's, so that a name
// gets its default extension before the question whether to overwrite, everywhere.
class QtFileChooser : public FileChooser {
 public:
  // `home` tells the folder of the dialogs that name none, until a first choice was made.
  explicit QtFileChooser(std::function<std::string()> home);
  FileChoice ShowOpen(const FileDialog& dialog) override;
  FileChoice ShowSave(const FileDialog& dialog) override;
  std::string ShowFolder(const std::string& title) override;

 private:
  void SetUp(QFileDialog& widget, const FileDialog& dialog);
  QString LastFolder() const;

  FileIcons icons_;
  std::function<std::string()> home_;
  QString last_folder_;  // where the last choice was made
};

}  // namespace vrx
