#pragma once

#include <span>

#include "database/schema.h"
#include "presenter/general_delay.h"

namespace vrx {

// How the routines of the two databases differ, all of it on purpose.
struct LifecycleManner {
  bool goes_to_transfer_tab;  // before the dialog of New and Open
  Milliseconds new_delay;     // each lets the dialog's place be repainted
  Milliseconds browse_delay;
  Milliseconds save_as_delay;
  bool save_as_tests_name;
  bool open_stands_by;  // with the hourglass and a text in place of the name
  bool new_beeps;
  std::span<const int> tabs_of_new;  // turned on in this order; the first one is selected
};

const LifecycleManner& MannerOf(DatabaseKind kind);

}  // namespace vrx
