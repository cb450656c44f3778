#pragma once

#include <QTemporaryDir>

namespace vrx::manual {

// Where pictures of the program come out the same on every machine: no screen, nothing of the
// settings of whoever builds, one look. Made ahead of the QApplication.
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
