#pragma once

#include <QDialog>
#include <QString>
#include <QWidget>
#include <filesystem>
#include <memory>

#include "desktop/main_window/main_window.h"
#include "platform/operating_system.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// The form `ABOUT`; shown modally over the main window.
class About : public QDialog {
  Q_OBJECT

 public:
  About(const SystemInfo& system, OperatingSystem& os, Operator& op, QWidget* owner);
};

// The form `SPLASH`, shown while the program loads.
class Splash {
 public:
  void Show();  // returns once it is painted
  void Unload() { form_.reset(); }

  // Creates the form with its layout and texts.
  static std::unique_ptr<QWidget> Load();

 private:
  std::unique_ptr<QWidget> form_;
};

// The drawing on `SPLASH` and `ABOUT`.
inline const QString kLogoPath = QStringLiteral(":/icons/logo.svg");

// The program's version: major, minor and revision with points between them.
QString VersionText();

// Shows a chapter of the manual in a window of the program, which remains beside the main window. A
// second chapter is shown in the same one.
void ViewChapter(const std::filesystem::path& chapter, MainWindow& window,
                 const QString& section = {});
// That about a tab, at a section. Reports a missing chapter.
void ViewTabChapter(int tab, const QString& section, MainWindow& window, Services& services);

// Sets the handlers of the Help menu: the documents and the About box. Everything outlives the
// window.
void SetHelpHandlers(MainWindow& window, const SystemInfo& system, OperatingSystem& os,
                     Operator& op);

}  // namespace vrx
