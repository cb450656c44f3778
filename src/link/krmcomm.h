#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "link/file_attributes.h"
#include "platform/event_pump.h"
#include "platform/operator.h"
#include "platform/serial_control.h"

namespace vrx {

class PrivateINI;

// Owns the serial port. Everything said to the data module or the indicator passes through it. The
// link is half-duplex and polled: one command, its reply, the next. The public state bears the names
// of the design: GB_ boolean, GS_ bytes, GL_ whole number.
class KRMCOMM {
 public:
  KRMCOMM(SerialControl& serial, EventPump& pump, Operator& op, const PrivateINI& settings);

  bool KRM_OnlineCheck();
  bool KRM_Clear();
  bool KRM_SetBaud(std::int32_t baud);
  bool KRM_Dump();
  bool KRM_DumpAll();
  bool KRM_Download(std::string_view text);

  // The module memory image and the cutting of a block into files.
  std::string KRM_ExtractData(std::string_view reply);
  int KRM_ExtractFiles(std::string_view block);

  // ... the link's developer completes this class
};

}  // namespace vrx
