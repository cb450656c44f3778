#pragma once

#include <optional>
#include <string>

#include "database/schema.h"

namespace vrx {

// In twips, 1440 to the inch.
struct WindowPlace {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

// A database as it is remembered for the next start; both empty for none.
struct RecentFile {
  std::string path;
  std::string name;  // in upper case
};

// `VRXMAIN` as start and exit see it. Making one is its Load; it is not shown by that. What
// is called before Place throws nothing.
class MainForm {
 public:
  virtual ~MainForm() = default;

  virtual void Show() = 0;

  // What is being edited is stored, or the operator is asked. False: the operator stays.
  virtual bool LeaveEdits() { return true; }

  // The end of the program, in the order of the calls.
  virtual void CloseSerialPort() = 0;                    // without a wait
  virtual void UnloadSetup() = 0;                        // nothing where it is not loaded
  virtual std::optional<WindowPlace> Place() const = 0;  // nothing while minimised
  virtual RecentFile Recent(DatabaseKind kind) const = 0;
  virtual void CloseRecipeDatabase() = 0;
  virtual void CloseTransactionDatabase() = 0;
  virtual void ReleaseDataControls() = 0;
  virtual void ClearIngredientDropDown() = 0;
  virtual void UnloadOpenForms() = 0;  // all but the main window
  virtual void Unload() = 0;           // takes the main window from the screen
};

}  // namespace vrx
