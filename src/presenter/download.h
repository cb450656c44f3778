#pragma once

#include <string_view>

#include "link/krmcomm.h"

namespace vrx {

// Sends a recipe file to the module. References must outlive the object.
class Download {
 public:
  Download(KRMCOMM& krm, EventPump& pump, Operator& op, const PrivateINI& settings);

  // Checks that the module is there, clears it and sends the bytes, which takes at least 4600 ms.
  // The operator follows it in the status line. False when a step failed: the line tells which, in
  // red, and KRM_FailureCause holds what lies behind. The module is then left cleared or half
  // filled, unless it was the check that failed. The caller has taken the line.
  bool DownloadToModule(std::string_view text);

  LineGuard& Guard() { return krm_.Guard(); }

 private:
  bool Fail(std::string_view words);
  bool ClearAndSend(std::string_view text);

  KRMCOMM& krm_;
  EventPump& pump_;
  Operator& op_;
  const PrivateINI& settings_;
};

}  // namespace vrx
