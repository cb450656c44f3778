#include <QApplication>
#include <QIcon>
#include <QLocale>

#include "adapters/linux_machine.h"
#include "adapters/signals.h"
#include "desktop/app/captions.h"
#include "desktop/app/program.h"
#include "desktop/dialogs/about_and_splash.h"
#include "widgets/drawing.h"

int main(int argc, char** argv) {
  // The platform starts threads with the application object, and they must not take the signals.
  const vrx::SignalBlock signals_are_blocked;
  const QApplication application(argc, argv);
  const vrx::Language language(QLocale::system().uiLanguages());
  QApplication::setApplicationVersion(vrx::VersionText());
  QApplication::setDesktopFileName(QStringLiteral("vrx2260"));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(QIcon(vrx::kLogoPath));
  QApplication::setPalette(vrx::WithReadableHints(QPalette()));
  const vrx::LinuxSystemInfo system;
  return vrx::Program(system).Run();
}
