#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "link/line_guard.h"
#include "platform/event_pump.h"
#include "platform/operator.h"
#include "platform/serial_control.h"

// Control characters of the module protocol, by their ASCII names.
namespace vrx::KRMConst {

inline constexpr char FF = 0x0C;   // alternative start mark of a report file
inline constexpr char DC4 = 0x14;  // command: clear memory
inline constexpr char NAK = 0x15;  // command: send memory contents
inline constexpr char SYN = 0x16;  // command: set 1200 baud
inline constexpr char ETB = 0x17;  // command: set 2400 baud
inline constexpr char CAN = 0x18;  // command: set 9600 baud
inline constexpr char EM = 0x19;   // command: set 19200 baud
inline constexpr char FS = 0x1C;   // command: send all of memory
inline constexpr char US = 0x1F;   // ends every part of a reply

}  // namespace vrx::KRMConst

namespace vrx {

class PrivateINI;

// One-shot timer, polled between two calls of Pump().
class OneShotTimer {
 public:
  explicit OneShotTimer(Milliseconds interval) : interval_(interval) {}

  // Takes effect at the next Enable.
  void SetInterval(Milliseconds interval) { interval_ = interval; }

  // Starts or restarts the full interval.
  void Enable(Milliseconds now) {
    end_ = now + interval_;
    enabled_ = true;
  }
  void Disable() { enabled_ = false; }

  [[nodiscard]] bool Enabled() const { return enabled_; }
  [[nodiscard]] bool Due(Milliseconds now) const { return enabled_ && now >= end_; }
  [[nodiscard]] Milliseconds Left(Milliseconds now) const {
    return std::max(Milliseconds{0}, end_ - now);
  }

 private:
  Milliseconds interval_;
  Milliseconds end_{0};
  bool enabled_ = false;
};

inline constexpr int kMaxDataFiles = 99;

enum class DataFileType { kUnknown = 0, kTransaction = 1, kRecipeBackup = 2, kReport = 3 };

inline constexpr std::string_view kTransactionMark = "{BAT/FED}";
inline constexpr std::string_view kRecipeMark = "{DATA_IN}";
inline constexpr std::string_view kReportMark = "{REPORT}";

// Place of a file in the transfer block.
struct FileAttributes {
  DataFileType type = DataFileType::kUnknown;
  int position = 0;  // of the first character, from 1
  int length = 0;    // characters
};

// A block has more files than the table holds. The first kMaxDataFiles files are valid.
class TooManyFilesError : public Error {
 public:
  using Error::Error;
};

// "Transaction File", "Recipe Backup File", "Text Report"; empty for any other type.
[[nodiscard]] std::string_view DataFileTypeName(DataFileType type);

// What kind of failure KRM_FailureCause describes.
enum class LinkError {
  kNone,      // no failure, or the program is closing
  kTimeout,   // no reply, or an incomplete one
  kHeld,      // the line took no byte for 10 seconds: an XOFF, or a device that does not read
  kLost,      // the line is gone, or the port was closed during the operation
  kProtocol,  // the reply does not belong to the command
  kCanceled,  // the operator has canceled the command
  kRefused,   // the platform or the protocol does not accept a setting, or the port does not open
};

// Owns the serial port. All communication with the data module and the indicator passes through it.
// The link is half-duplex and polled: one command, its reply, the next. The names of the public
// state are fixed by the design: GB_ boolean, GS_ bytes, GL_ whole number.
//
// No operation throws for a failure of the line. It returns false; GS_KRM_ErrMsg has the specified
// text, KRM_FailureCause the cause and KRM_Error its kind. Every wait pumps events, so a handler
// may run another operation inside it; the outer operation then fails and leaves the reply to the
// inner one. A wait ends at once if the line is lost, the program is closing or the command is
// canceled (LineGuard::Cancel), and a transmission if the line takes no byte for 10 seconds. The
// port is closed then, and the next command reopens it. After a cancel, that command first waits
// until the module has stopped sending.
class KRMCOMM {
 public:
  KRMCOMM(SerialControl& serial, EventPump& pump, Operator& op, const PrivateINI& settings);

  // Callers claim the line here before they start an operation; KRMCOMM does not check it.
  [[nodiscard]] LineGuard& Guard() { return guard_; }

  // Raises DTR and waits 1000 ms for the module to wake. Returns false if the wait was interrupted.
  bool KRM_AssertDTR();
  // Lowers DTR and waits 500 ms.
  void KRM_DeAssertDTR();
  // Closes the port, then lowers DTR as KRM_DeAssertDTR does.
  void KRM_Close();
  // Closes without waiting, for the end of the program.
  void KRM_ImmediateClose();

  // The module's commands. Each takes at least 1500 ms.
  bool KRM_OnlineCheck();  // sends the baud rate of the settings
  bool KRM_Clear();
  bool KRM_SetBaud(std::int32_t baud);  // 1200, 2400, 9600 or 19200; sends nothing for others
  // Leave the reply with its framing in GS_KRM_RxDBuffer, followed by bytes that arrived within
  // 250 ms after its last terminator. KRM_ExtractData checks them.
  bool KRM_Dump();
  bool KRM_DumpAll();
  bool KRM_Download(std::string_view text);  // true once the last byte has left the port

  // Appends bytes to GS_KRM_RxDBuffer that arrived after a dump while DTR was low. Many such bytes
  // mean that the data itself contains a terminator.
  void KRM_TakeUnread();

  // Returns the data between the two terminators of a reply. Returns an empty text and sets
  // GS_KRM_ErrMsg if there are not exactly two, nothing is between them, or more than 16 bytes
  // follow the second.
  [[nodiscard]] std::string KRM_ExtractData(std::string_view reply);

  // Splits a block into files and returns their number. Throws TooManyFilesError.
  int KRM_ExtractFiles(std::string_view block);
  void KRM_ClearFileAttributes();

  // Files are numbered from 1 to 99, attributes from 1 to 3 (type, position, length); other numbers
  // throw Error. All attributes after the last file are 0.
  [[nodiscard]] const FileAttributes& GL_KRM_FileAttributes(int file) const;
  [[nodiscard]] std::int32_t GL_KRM_FileAttributes(int file, int attribute) const;

  // The PC's image of the module memory. Appending sends nothing. The others send the answer of a
  // module and beep on success; on failure they return false after a message, which is omitted
  // while the program is closing.
  void KRM_AppendToVirtualMemory(std::string_view text);
  bool KRM_ClearVirtualMemory();
  bool KRM_DumpVirtualMemory();
  bool KRM_DumpAllVirtualMemory();

  // Direct connection, in which the PC answers as a module does. Opens the port without flow
  // control, because every byte is data or a command.
  bool KRM_DirectOpen();
  // Receives one burst: waits without limit for the first byte, then until the line is silent for
  // 250 ms. Leaves the burst in GS_KRM_RxDBuffer and its length in GL_KRM_RxDCount. If the port is
  // closed meanwhile, the wait continues until GB_KRM_AbortDirectConnect is set; an abort discards
  // the burst. Returns false if the line is lost or the program is closing; the buffer then has the
  // bytes so far, and GS_KRM_ErrMsg the reason.
  bool KRM_DirectRxD();

  // Cause of the last failure: the platform's message, or ours if it has none ("no reply"). Empty
  // after a successful command.
  [[nodiscard]] const std::string& KRM_FailureCause() const { return failure_cause_; }
  [[nodiscard]] LinkError KRM_Error() const { return error_; }
  [[nodiscard]] bool KRM_LineHeld() const { return error_ == LinkError::kHeld; }

  // What had arrived of the reply whose reception failed last, with its framing; empty after a
  // complete reply.
  [[nodiscard]] const std::string& KRM_BrokenOff() const { return broken_off_; }

  // Getters and setters of the public state.
  [[nodiscard]] bool GB_KRM_DelayComplete() const { return delay_complete_; }
  void GB_KRM_DelayComplete(bool value) { delay_complete_ = value; }
  [[nodiscard]] bool GB_KRM_RxDWaiting() const { return rxd_waiting_; }
  void GB_KRM_RxDWaiting(bool value) { rxd_waiting_ = value; }  // false ends a timed receive
  [[nodiscard]] bool GB_KRM_MessageReceived() const { return message_received_; }
  void GB_KRM_MessageReceived(bool value) { message_received_ = value; }
  [[nodiscard]] bool GB_KRM_CommPortOpen() const { return comm_port_open_; }
  void GB_KRM_CommPortOpen(bool value) { comm_port_open_ = value; }
  [[nodiscard]] bool GB_KRM_AbortDirectConnect() const { return abort_direct_connect_; }
  void GB_KRM_AbortDirectConnect(bool value) { abort_direct_connect_ = value; }
  [[nodiscard]] const std::string& GS_KRM_RxDBuffer() const { return rxd_buffer_; }
  void GS_KRM_RxDBuffer(std::string value) { rxd_buffer_ = std::move(value); }
  [[nodiscard]] const std::string& GS_KRM_VirtualMemory() const { return virtual_memory_; }
  void GS_KRM_VirtualMemory(std::string value) { virtual_memory_ = std::move(value); }
  [[nodiscard]] const std::string& GS_KRM_ErrMsg() const { return err_msg_; }
  void GS_KRM_ErrMsg(std::string value) { err_msg_ = std::move(value); }
  [[nodiscard]] std::int32_t GL_KRM_FileCount() const { return file_count_; }
  void GL_KRM_FileCount(std::int32_t value) { file_count_ = value; }
  [[nodiscard]] std::int32_t GL_KRM_TxDCount() const { return txd_count_; }
  void GL_KRM_TxDCount(std::int32_t value) { txd_count_ = value; }
  [[nodiscard]] std::int32_t GL_KRM_RxDCount() const { return rxd_count_; }
  void GL_KRM_RxDCount(std::int32_t value) { rxd_count_ = value; }

 private:
  bool KRM_Open();
  bool OpenPort(Handshaking mode);
  bool KRM_SendByte(char code);
  bool KRM_SendString(std::string_view text);
  bool KRM_WaitForTerminators(int count);
  bool KRM_Delay(Milliseconds delay);

  bool WaitOut(OneShotTimer& timer);
  bool PurgeBuffers();
  bool AwaitSilence();
  bool Drain();
  bool HandOver(std::string_view bytes);
  bool Receive(int count, std::string& buffer);
  void ReceiveBurst(std::string& burst);

  void SetFailure(LinkError error, std::string cause);

  // False after an interruption, until the port is opened again.
  bool GoesOn();
  // Nothing if the wait must end.
  std::optional<int> BytesToSend();
  // Closes the port and makes all pending waits fail.
  void Interrupt(LinkError error, std::string_view message, std::string cause);
  bool LineGone();

  // Run a step on the port. SerialFailure returns why it failed, or nothing. Try records the
  // failure and returns false. InterruptIfLost ends all waits after a failure.
  static std::optional<std::string> SerialFailure(const std::function<void()>& step);
  bool Try(const std::function<void()>& step);
  void InterruptIfLost(const std::function<void()>& step);

  bool AskForEcho(char code);
  bool ReplyBeginsWith(char code);
  bool TakeDump(char code);
  void TakeStrays();
  bool Answer(std::string_view frame, std::string_view command_name);

  SerialControl& serial_;
  EventPump& pump_;
  Operator& op_;
  const PrivateINI& settings_;

  OneShotTimer tim_rxd_timeout_;
  OneShotTimer tim_krm_general_delay_;
  OneShotTimer tim_reset_delay_;

  bool delay_complete_ = false;
  bool rxd_waiting_ = false;
  bool message_received_ = false;
  bool comm_port_open_ = false;
  bool abort_direct_connect_ = false;
  std::string rxd_buffer_;
  std::string virtual_memory_;
  std::string err_msg_;
  std::int32_t file_count_ = 0;
  std::int32_t txd_count_ = 0;
  std::int32_t rxd_count_ = 0;
  std::array<FileAttributes, kMaxDataFiles> file_attributes_{};

  LineGuard guard_;
  bool interrupted_ = false;     // since the last opening
  bool may_still_send_ = false;  // a canceled module
  std::string broken_off_;
  LinkError error_ = LinkError::kNone;
  std::string failure_cause_;
};

}  // namespace vrx
