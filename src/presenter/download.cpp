#include "presenter/download.h"

#include <string>

#include "base/text.h"
#include "presenter/transfer_status.h"
#include "settings/settings.h"

namespace vrx {

namespace {

constexpr Milliseconds kDownloadingInterval{250};

}  // namespace

Download::Download(KRMCOMM& krm, EventPump& pump, Operator& op, const PrivateINI& settings)
    : krm_(krm), pump_(pump), op_(op), settings_(settings) {}

bool Download::DownloadToModule(std::string_view text) {
  // A handler inside the waits may change what the caller's view points to.
  const std::string bytes(text);
  TellStandby(op_);
  krm_.GL_KRM_TxDCount(0);
  if (!krm_.KRM_OnlineCheck()) {
    return Fail("KRM not detected");
  }
  const auto tim_downloading = pump_.StartTicker(kDownloadingInterval, [this] {
    op_.SetStatusLine("Downloading to KRM....  " + std::to_string(krm_.GL_KRM_TxDCount()) +
                      " bytes");
  });
  return ClearAndSend(bytes);
}

bool Download::ClearAndSend(std::string_view text) {
  if (!krm_.KRM_Clear()) {
    return Fail("Could not clear KRM");
  }
  if (!krm_.KRM_Download(text)) {
    return Fail("Download failed");
  }
  TellComplete(op_, "Download complete!  (" + std::to_string(krm_.GL_KRM_TxDCount()) +
                        " bytes, Recipe Data)");
  BeepIfEnabled(op_, settings_);
  return true;
}

bool Download::Fail(std::string_view words) {
  const bool own_words = pump_.Closing() || krm_.KRM_LineHeld();
  TellFailed(op_, "Error: " + (own_words ? krm_.GS_KRM_ErrMsg() : std::string(words)));
  return false;
}

}  // namespace vrx
