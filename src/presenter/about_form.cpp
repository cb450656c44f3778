#include "presenter/about_form.h"

namespace vrx {

std::string_view ProgramVersion() { return VRX_VERSION; }

}  // namespace vrx
