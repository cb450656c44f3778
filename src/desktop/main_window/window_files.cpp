// How files come to the main window: dropped on it, or chosen from the list of recent files.

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QFontMetrics>
#include <QMenu>
#include <QMimeData>
#include <QUrl>
#include <utility>

#include "desktop/main_window/main_window.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

std::vector<std::filesystem::path> FilesIn(const QMimeData& data) {
  std::vector<std::filesystem::path> files;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) {
      files.emplace_back(url.toLocalFile().toStdString());
    }
  }
  return files;
}

// Watches all widgets of the window: a field would insert the names of dropped files as text.
// Anything else that is dropped goes to the widget below it.
class FileDrops : public QObject {
 public:
  // The window owns it.
  FileDrops(MainWindow& window, MainWindow::TakeFiles take)
      : QObject(&window), window_(window), take_(std::move(take)) {
    window_.setAcceptDrops(true);
    QApplication::instance()->installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    switch (event->type()) {
      case QEvent::DragEnter:
      case QEvent::DragMove:
      case QEvent::Drop: {
        const auto* const widget = qobject_cast<const QWidget*>(watched);
        return widget != nullptr && widget->window() == &window_ &&
               Handle(*static_cast<QDropEvent*>(event));
      }
      default:
        return false;
    }
  }

 private:
  bool Handle(QDropEvent& event) const {
    const std::vector<std::filesystem::path> files = FilesIn(*event.mimeData());
    if (files.empty()) {
      return false;
    }
    if (QApplication::activeModalWidget() != nullptr) {
      event.ignore();
      return true;
    }
    // Never a move: the sender would then delete the file.
    event.setDropAction(Qt::CopyAction);
    event.accept();
    if (event.type() == QEvent::Drop) {
      take_(files);
    }
    return true;
  }

  MainWindow& window_;
  MainWindow::TakeFiles take_;
};

constexpr int kFolderCharacters = 40;  // shown of a folder; its tooltip has the whole path
constexpr int kLastAccessKey = 9;

QString FolderText(const QString& path, const QFontMetrics& metrics) {
  QString folder = QFileInfo(path).absolutePath();
  const QString home = QDir::homePath();
  if (folder == home || folder.startsWith(home + u'/')) {
    folder.replace(0, home.size(), u'~');
  }
  return metrics.elidedText(folder, Qt::ElideMiddle,
                            kFolderCharacters * metrics.averageCharWidth());
}

// In a menu "&" marks an access key, and a tab the shortcut.
QString AsMenuText(QString text) {
  return text.replace(u'&', QStringLiteral("&&")).replace(u'\t', u' ');
}

// The recent files at the end of a menu, a group for each kind that has any. They are made anew
// whenever the menu opens.
class RecentEntries : public QObject {
 public:
  // The menu owns it; the list outlives it.
  RecentEntries(QMenu& menu, const RecentFiles& files, MainWindow::OpenRecent open)
      : QObject(&menu), menu_(menu), files_(files), open_(std::move(open)) {
    menu_.setToolTipsVisible(true);
    connect(&menu_, &QMenu::aboutToShow, this, [this] { Fill(); });
  }

 private:
  void Fill() {
    qDeleteAll(std::exchange(entries_, {}));
    int number = 0;
    for (const FileKind kind : kFileKinds) {
      if (!files_.Of(kind).empty()) {
        entries_ << menu_.addSeparator();
      }
      for (const std::filesystem::path& file : files_.Of(kind)) {
        Add(kind, file, ++number);
      }
    }
  }

  void Add(FileKind kind, const std::filesystem::path& file, int number) {
    const QString path = ToQString(file.string());
    const QString key = number > kLastAccessKey ? QString() : QStringLiteral("&%1 ").arg(number);
    QAction* const entry = menu_.addAction(key + AsMenuText(QFileInfo(path).fileName()) + u'\t' +
                                           AsMenuText(FolderText(path, menu_.fontMetrics())));
    entry->setObjectName(QStringLiteral("mnuFileOpenRecent(%1)").arg(number));
    entry->setToolTip(path);
    // The entries may be made anew while the file is opened.
    connect(
        entry, &QAction::triggered, this, [this, kind, file] { open_(kind, file); },
        Qt::QueuedConnection);
    entries_ << entry;
  }

  QMenu& menu_;
  const RecentFiles& files_;
  MainWindow::OpenRecent open_;
  QList<QAction*> entries_;
};

}  // namespace

void MainWindow::SetDropHandler(TakeFiles take) { new FileDrops(*this, std::move(take)); }

void MainWindow::ShowRecentFiles(const RecentFiles& files, OpenRecent open) {
  new RecentEntries(*findChild<QMenu*>(QStringLiteral("mnuFileOpen")), files, std::move(open));
}

}  // namespace vrx
