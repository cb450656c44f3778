#pragma once

#include <QTemporaryDir>

namespace vrx::manual {

// Makes pictures of the program the same on every machine: no screen, none of the user's settings,
// one style. Create it before the QApplication.
class OffscreenSession {
 public:
  // Pixels of a picture to a logical one.
  explicit OffscreenSession(int scale);

  // Needs the QApplication.
  static void SetLook();

 private:
  QTemporaryDir home_;
};

}  // namespace vrx::manual
