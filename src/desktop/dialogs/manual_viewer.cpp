// The program's own viewer for the manual.

#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

#include "desktop/dialogs/about_and_splash.h"
#include "presenter/help.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr QSize kViewerSize{760, 640};

// Reads nothing but the chapters and their pictures.
class ChapterBrowser : public QTextBrowser {
 public:
  using QTextBrowser::QTextBrowser;

 protected:
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override {
    if (source().resolved(name).isLocalFile()) {
      QTextBrowser::doSetSource(name, type);
    }
  }
};

QTextBrowser* MakeViewer(MainWindow& window) {
  auto* const form = new QDialog(&window);
  form->setObjectName(QStringLiteral("MANUAL"));
  form->setWindowTitle(QTr("Users Manual"));
  form->setAttribute(Qt::WA_DeleteOnClose);
  auto* const text = new ChapterBrowser(form);
  text->setObjectName(QStringLiteral("txtManual"));
  text->setAccessibleName(QTr("Chapter of the manual"));
  auto* const back = new QPushButton(QTr("&Back"), form);
  back->setObjectName(QStringLiteral("cmdManualBack"));
  back->setAutoDefault(false);
  back->setEnabled(false);
  auto* const close = new QPushButton(QTr("&Close"), form);
  close->setObjectName(QStringLiteral("cmdManualClose"));
  close->setAutoDefault(false);
  QObject::connect(text, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
  QObject::connect(back, &QPushButton::clicked, text, &QTextBrowser::backward);
  QObject::connect(close, &QPushButton::clicked, form, &QDialog::close);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(back);
  buttons->addStretch();
  buttons->addWidget(close);
  auto* const column = new QVBoxLayout(form);
  column->setSpacing(kSpacing);
  column->addWidget(text, 1);
  column->addLayout(buttons);
  form->resize(kViewerSize.boundedTo(window.screen()->availableSize()));
  return text;
}

}  // namespace

void ViewTabChapter(int tab, const QString& section, MainWindow& window, Services& services) {
  ShowChapter(tab, services.system, services.op,
              [&](const std::filesystem::path& chapter) { ViewChapter(chapter, window, section); });
}

void ViewChapter(const std::filesystem::path& chapter, MainWindow& window, const QString& section) {
  auto* text = window.findChild<QTextBrowser*>(QStringLiteral("txtManual"));
  if (text == nullptr) {
    text = MakeViewer(window);
  }
  QUrl place = QUrl::fromLocalFile(ToQString(chapter.string()));
  place.setFragment(section);
  text->setSource(place);
  text->window()->show();
  text->window()->raise();
  text->window()->activateWindow();
}

}  // namespace vrx
