#pragma once

#include <QWidget>
#include <memory>

#include "desktop/app/start_up.h"

namespace vrx {

// The form `SPLASH`: who the program is, while it loads.
class Splash : public SplashForm {
 public:
  void Show() override;
  void Unload() override { form_.reset(); }

  // Lays the form out and gives it its texts.
  static std::unique_ptr<QWidget> Load();

 private:
  std::unique_ptr<QWidget> form_;
};

}  // namespace vrx
