#include <windows.h>

#include "base/sync.h"

namespace vrx {

std::error_code SyncToDisk(const std::filesystem::path& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return {static_cast<int>(GetLastError()), std::system_category()};
  }
  const DWORD error = FlushFileBuffers(file) != 0 ? ERROR_SUCCESS : GetLastError();
  CloseHandle(file);
  return {static_cast<int>(error), std::system_category()};
}

}  // namespace vrx
