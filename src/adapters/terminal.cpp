#include "adapters/terminal.h"

#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vrx {
namespace {

bool IsTerminal(std::FILE* stream) {
#ifdef _WIN32
  return _isatty(_fileno(stream)) != 0;
#else
  return isatty(fileno(stream)) != 0;
#endif
}

}  // namespace

bool InputIsTerminal() { return IsTerminal(stdin); }

bool ErrorIsTerminal() { return IsTerminal(stderr); }

}  // namespace vrx
