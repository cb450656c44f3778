#pragma once

#include <QWidget>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/error.h"
#include "desktop/app/main_form.h"

namespace vrx::manual {

// The program with its main window, put up without a screen over copies of the sample site's
// databases: SITE.RDB, and YARD.TDB with the records of the site's month. Paths are relative to a
// folder of its own, which is the process's current one meanwhile, so that the screens are the
// same on every machine. One at a time.
class SampleProgram {
 public:
  // `program_directory` holds the blank templates and the folder sample_site. Throws Error; so does
  // everything below when the program shows an unexpected message.
  explicit SampleProgram(const std::filesystem::path& program_directory);
  ~SampleProgram();
  SampleProgram(const SampleProgram&) = delete;
  SampleProgram& operator=(const SampleProgram&) = delete;

  MainWindow& Window();
  void ShowTab(int tab);

  // What the next file dialog is answered with: a file of the sample site.
  void WillChoose(const std::string& site_file);

  // What the data module on the serial port has in its memory.
  void ModuleHolds(const std::vector<std::string>& site_files);

  // Whether the module sends its memory as fast as a serial line carries it, or at once.
  void ModuleSendsAtItsPace(bool paced);

  // A file of the site comes over the cable, unasked.
  void IndicatorSends(const std::string& site_file);

  // From now on boxes come up in front of the operator, who is the figure.
  void ShowBoxes();

  // Triggers a command of the menus by its name and lets events run.
  void Choose(const char* action);

  // A control of the main window; throws Error where there is none.
  template <typename Control>
  Control& Find(const char* name) {
    auto* const control = Window().findChild<Control*>(QLatin1String(name));
    if (control == nullptr) {
      throw Error(std::string("the main window has no control ") + name);
    }
    return *control;
  }

  // Lets the program wait until the condition holds, for a thread of its own. Throws Error if it
  // does not hold within a minute.
  void WaitUntil(const std::function<bool()>& condition);

  // Lets the program handle what is pending. Throws Error for messages shown since.
  void RunEvents();

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace vrx::manual
