#include "desktop/app/qt_file_chooser.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMimeDatabase>
#include <QStringList>
#include <QTreeView>
#include <algorithm>
#include <array>
#include <utility>

#include "widgets/qt_text.h"

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

// A dialog reads a folder as soon as it is made, before it has our icons: one that only holds
// folders.
QString FirstFolder() { return QDir::rootPath(); }

// "*.QXT" takes files whatever their case; "*.*" takes those without an extension too.
QString AnyCase(const QString& pattern) {
  if (pattern == QStringLiteral("*.*")) {
    return QStringLiteral("*");
  }
  QString mapped;
  for (const QChar character : pattern) {
    if (character.isLetter()) {
      mapped += QStringLiteral("[%1%2]").arg(character.toLower()).arg(character.toUpper());
    } else {
      mapped += character;
    }
  }
  return mapped;
}

// "Transactions (*.QXT)|*.QXT|..." as Qt's name filters. The patterns behind each name are hidden;
// the name tells them already.
QStringList NameFilters(const std::string& filter) {
  const QStringList parts = ToQString(filter).split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QStringList patterns;
    for (const QString& pattern : parts[i + 1].split(u';', Qt::SkipEmptyParts)) {
      patterns << AnyCase(pattern.trimmed());
    }
    filters << parts[i] + QStringLiteral(" (") + patterns.join(u' ') + u')';
  }
  return filters;
}

// Sizes and dates as wide as they are, names in what is left.
void ShowWholeCells(QFileDialog& widget) {
  constexpr QSize kOpeningSize{800, 520};
  QHeaderView& columns = *widget.findChild<QTreeView*>(QStringLiteral("treeView"))->header();
  columns.setSectionResizeMode(QHeaderView::ResizeToContents);
  columns.setStretchLastSection(false);
  columns.setSectionResizeMode(0, QHeaderView::Stretch);
  widget.resize(kOpeningSize);
}

// Empty after a cancel.
QString Ask(QFileDialog& widget, QString& last_folder) {
  if (widget.exec() != QDialog::Accepted || widget.selectedFiles().isEmpty()) {
    return {};
  }
  QString path = widget.selectedFiles().constFirst();
  // A path can be typed that leads out of the folder on show.
  last_folder = widget.fileMode() == QFileDialog::Directory ? path : QFileInfo(path).absolutePath();
  return path;
}

FileChoice ChoiceOf(const QString& path) {
  return {path.toStdString(), QFileInfo(path).fileName().toStdString()};
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

QtFileChooser::QtFileChooser(std::function<std::string()> home) : home_(std::move(home)) {}

QString QtFileChooser::LastFolder() const {
  return last_folder_.isEmpty() ? ToQString(home_()) : last_folder_;
}

void QtFileChooser::SetUp(QFileDialog& widget, const FileDialog& dialog) {
  widget.setObjectName(QStringLiteral("FileDialog"));
  widget.setWindowTitle(ToQString(dialog.title));
  widget.setOption(QFileDialog::DontUseNativeDialog);
  widget.setOption(QFileDialog::HideNameFilterDetails);
  widget.setNameFilters(NameFilters(dialog.filter));
  widget.setDefaultSuffix(ToQString(dialog.default_extension));
  widget.setIconProvider(&icons_);
  widget.setDirectory(dialog.start_folder.empty() ? LastFolder() : ToQString(dialog.start_folder));
  ShowWholeCells(widget);
}

FileChoice QtFileChooser::ShowOpen(const FileDialog& dialog) {
  QFileDialog widget(QApplication::activeWindow(), {}, FirstFolder());
  widget.setAcceptMode(QFileDialog::AcceptOpen);
  widget.setFileMode((dialog.flags & kFileMustExist) != 0 ? QFileDialog::ExistingFile
                                                          : QFileDialog::AnyFile);
  SetUp(widget, dialog);
  return ChoiceOf(Ask(widget, last_folder_));
}

FileChoice QtFileChooser::ShowSave(const FileDialog& dialog) {
  QFileDialog widget(QApplication::activeWindow(), {}, FirstFolder());
  widget.setAcceptMode(QFileDialog::AcceptSave);
  widget.setFileMode(QFileDialog::AnyFile);
  widget.setOption(QFileDialog::DontConfirmOverwrite, (dialog.flags & kOverwritePrompt) == 0);
  SetUp(widget, dialog);
  return ChoiceOf(Ask(widget, last_folder_));
}

std::string QtFileChooser::ShowFolder(const std::string& title) {
  QFileDialog widget(QApplication::activeWindow(), {}, FirstFolder());
  widget.setAcceptMode(QFileDialog::AcceptOpen);
  widget.setFileMode(QFileDialog::Directory);
  widget.setOption(QFileDialog::ShowDirsOnly);
  SetUp(widget, {.title = title, .filter = {}, .default_extension = {}});
  return Ask(widget, last_folder_).toStdString();
}

}  // namespace vrx
