#pragma once

#include <functional>
#include <memory>

#include "desktop/app/application_state.h"
#include "desktop/app/main_form_interface.h"
#include "platform/event_pump.h"
#include "presenter/services.h"

namespace vrx {

// Tells whether this is the only running instance of the program for this user.
class SingleInstance {
 public:
  virtual ~SingleInstance() = default;
  // False: another one runs. True from then on until the object or the process ends, however it
  // ends. Throws Error if that cannot be determined.
  virtual bool Claim() = 0;
};

// The form `SPLASH`.
class SplashForm {
 public:
  virtual ~SplashForm() = default;
  virtual void Show() = 0;  // loads it, paints it and returns
  virtual void Unload() = 0;
};

// How long the splash stays once the main window has loaded.
inline constexpr Milliseconds kSplashTime{2000};

// Makes and loads `VRXMAIN`.
using LoadMainForm = std::function<std::unique_ptr<MainForm>()>;

// `Main`: the road from the start of the process to the main window on the screen. Null: the
// process must end, the operator having been told why; or the program was closed meanwhile, and
// `VRXMAIN`, if it was loaded by then, was given to `ended_early` rather than shown.
std::unique_ptr<MainForm> Main(SingleInstance& instance, SplashForm& splash, Services& services,
                               ApplicationState& application, const LoadMainForm& load_main_form,
                               const std::function<void(MainForm&)>& ended_early);

}  // namespace vrx
