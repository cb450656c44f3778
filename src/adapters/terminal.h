#pragma once

namespace vrx {

// A person sits at the standard stream, rather than a file or another program.
bool InputIsTerminal();
bool ErrorIsTerminal();

}  // namespace vrx
