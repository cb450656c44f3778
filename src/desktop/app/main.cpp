#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QLocale>
#include <QStringList>
#include <QUrl>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <vector>

#include "adapters/linux_machine.h"
#include "adapters/signals.h"
#include "desktop/app/captions.h"
#include "desktop/app/program.h"
#include "desktop/dialogs/about_and_splash.h"
#include "widgets/drawing.h"

namespace {

constexpr int kWrongUsage = 2;
constexpr const char* kUsage = "usage: vrx2260 [FILE]...\n";

std::vector<std::filesystem::path> FilesOf(const QStringList& arguments) {
  std::vector<std::filesystem::path> files;
  for (const QString& argument : arguments.mid(1)) {
    const QUrl url(argument);
    const QString file = url.isLocalFile() ? url.toLocalFile() : argument;
    files.push_back(QDir::cleanPath(QFileInfo(file).absoluteFilePath()).toStdString());
  }
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  // The platform starts threads with the application object, and they must not take the signals.
  const vrx::SignalBlock signals_are_blocked;
  const QApplication application(argc, argv);
  const vrx::Language language(QLocale::system().uiLanguages());
  QApplication::setApplicationVersion(vrx::VersionText());
  QApplication::setDesktopFileName(QStringLiteral("vrx2260"));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(QIcon(vrx::kLogoPath));
  QApplication::setPalette(vrx::WithReadableTexts(QPalette()));
  // Qt has removed its own options, and there are no others.
  const QStringList arguments = QApplication::arguments();
  for (const QString& argument : arguments.mid(1)) {
    if (argument.startsWith(u'-')) {
      const bool asked = argument == QStringLiteral("--help");
      (asked ? std::cout : std::cerr) << kUsage;
      return asked ? EXIT_SUCCESS : kWrongUsage;
    }
  }
  const vrx::LinuxSystemInfo system;
  return vrx::Program(system, FilesOf(arguments)).Run();
}
