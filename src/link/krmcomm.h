#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
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
inline constexpr char US = 0x1F;   // closes every reply

}  // namespace vrx::KRMConst

namespace vrx {

// A timer that runs out once. Whoever waits asks it between two pumps and acts when it is due.
class OneShotTimer {
 public:
  explicit OneShotTimer(Milliseconds interval) : interval_(interval) {}

  // Takes effect at the next Enable.
  void SetInterval(Milliseconds interval) { interval_ = interval; }

  // Starts the full interval, also while it is running.
  void Enable(Milliseconds now) {
    end_ = now + interval_;
    enabled_ = true;
  }
  void Disable() { enabled_ = false; }

  bool Enabled() const { return enabled_; }
  bool Due(Milliseconds now) const { return enabled_ && now >= end_; }
  Milliseconds Left(Milliseconds now) const { return std::max(Milliseconds{0}, end_ - now); }

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

// Where a file lies in the transfer block.
struct FileAttributes {
  DataFileType type = DataFileType::kUnknown;
  int position = 0;  // of its first character, from 1
  int length = 0;
};

// A block with more files than the table holds. The first kMaxDataFiles are cut and may be used.
class TooManyFilesError : public Error {
 public:
  using Error::Error;
};

// "Transaction File", "Recipe Backup File", "Text Report"; empty for another type.
std::string_view DataFileTypeName(DataFileType type);

inline constexpr char FF = 0x0C;   // alternative start mark of a report file
inline constexpr char DC4 = 0x14;  // command: clear memory
inline constexpr char NAK = 0x15;  // command: send memory contents
inline constexpr char SYN = 0x16;  // command: set 1200 baud
inline constexpr char ETB = 0x17;  // command: set 2400 baud
inline constexpr char CAN = 0x18;  // command: set 9600 baud
inline constexpr char EM = 0x19;   // command: set 19200 baud
inline constexpr char FS = 0x1C;   // command: send all of memory
inline constexpr char US = 0x1F;   // closes every reply

class PrivateINI;

// Owns the serial port. Everything said to the data module or the indicator passes through it. The
// link is half-duplex and polled: one command, its reply, the next. The public state bears the
// names of the design: GB_ boolean, GS_ bytes, GL_ whole number.
//
// No operation throws for what happens on the line: it returns false, GS_KRM_ErrMsg has the told
// words, KRM_FailureCause what lies behind them. Every wait pumps events, so a handler may run
// another operation inside it; the outer one then fails rather than take the other's reply. A wait
// ends at once when the line is gone or the program is closing, and a transmission when the line
// has taken no byte for 10 seconds: the port is closed then, and the next command opens it anew.
class KRMCOMM {
 public:
  KRMCOMM(SerialControl& serial, EventPump& pump, Operator& op, const PrivateINI& settings);

  // Who uses the line. What an operator starts takes it first; KRMCOMM itself does not ask.
  LineGuard& Guard() { return guard_; }

  // Raises DTR and gives the module 1000 ms to wake. False: the wait was cut short.
  bool KRM_AssertDTR();
  // Lowers DTR and waits 500 ms.
  void KRM_DeAssertDTR();
  // Closes in order, with the wait of KRM_DeAssertDTR.
  void KRM_Close();
  // Closes without any wait, for the end of the program.
  void KRM_ImmediateClose();

  // The module's commands. Each takes at least 1500 ms.
  bool KRM_OnlineCheck();  // tells the module the baud rate of the settings
  bool KRM_Clear();
  bool KRM_SetBaud(std::int32_t baud);  // 1200, 2400, 9600 or 19200; another sends nothing
  // The reply is left in GS_KRM_RxDBuffer, framing included, and with it the bytes that arrived
  // within 250 ms after its last terminator: KRM_ExtractData judges them.
  bool KRM_Dump();
  bool KRM_DumpAll();
  bool KRM_Download(std::string_view text);  // true once the last byte has left the port

  // Adds to GS_KRM_RxDBuffer what arrived after a dump while DTR was released. Many bytes are the
  // rest of data that has a terminator inside.
  void KRM_TakeUnread();

  // The data between the two terminators of a reply; empty, with GS_KRM_ErrMsg set, for a reply
  // without exactly two, with nothing between them, or with more than 16 bytes after the second.
  std::string KRM_ExtractData(std::string_view reply);

  // Cuts a block into files and returns their number. Throws TooManyFilesError.
  int KRM_ExtractFiles(std::string_view block);
  void KRM_ClearFileAttributes();

  // Files count from 1 to 99, attributes from 1 to 3 (type, position, length); others throw Error.
  // An entry beyond the last file is all 0.
  const FileAttributes& GL_KRM_FileAttributes(int file) const;
  std::int32_t GL_KRM_FileAttributes(int file, int attribute) const;

  // The PC's image of module memory. All but the appending transmit, beep when the bytes are out,
  // and tell the operator when they are not, unless the program is closing. False when they are
  // not.
  bool KRM_ClearVirtualMemory();
  void KRM_AppendToVirtualMemory(std::string_view text);
  bool KRM_DumpVirtualMemory();
  bool KRM_DumpAllVirtualMemory();

  // The direct connection, where the PC answers as the module does. Opens without flow control:
  // every byte is data or a command.
  bool KRM_DirectOpen();
  // One reception: waits without limit for a first byte, then until the line was silent for 250 ms.
  // The burst is left in GS_KRM_RxDBuffer, its length in GL_KRM_RxDCount. A port that somebody
  // closes brings nothing, and the wait goes on until GB_KRM_AbortDirectConnect ends it; an abort
  // leaves nothing of the burst. False when the line is gone or the program is closing: what had
  // arrived is left in the buffer, GS_KRM_ErrMsg says which.
  bool KRM_DirectRxD();

  // What lies behind the last failure: the platform's words, or ours where it has none ("no
  // reply"). Empty after a command that went well.
  const std::string& KRM_FailureCause() const { return failure_cause_; }

  // The last command failed because the line took no byte for 10 seconds.
  bool KRM_LineHeld() const { return line_held_; }

  // Get and let.
  bool GB_KRM_DelayComplete() const { return delay_complete_; }
  void GB_KRM_DelayComplete(bool value) { delay_complete_ = value; }
  bool GB_KRM_RxDWaiting() const { return rxd_waiting_; }
  void GB_KRM_RxDWaiting(bool value) { rxd_waiting_ = value; }  // false ends a timed receive
  bool GB_KRM_MessageReceived() const { return message_received_; }
  void GB_KRM_MessageReceived(bool value) { message_received_ = value; }
  bool GB_KRM_CommPortOpen() const { return comm_port_open_; }
  void GB_KRM_CommPortOpen(bool value) { comm_port_open_ = value; }
  bool GB_KRM_AbortDirectConnect() const { return abort_direct_connect_; }
  void GB_KRM_AbortDirectConnect(bool value) { abort_direct_connect_ = value; }
  const std::string& GS_KRM_RxDBuffer() const { return rxd_buffer_; }
  void GS_KRM_RxDBuffer(std::string value) { rxd_buffer_ = std::move(value); }
  const std::string& GS_KRM_VirtualMemory() const { return virtual_memory_; }
  void GS_KRM_VirtualMemory(std::string value) { virtual_memory_ = std::move(value); }
  const std::string& GS_KRM_ErrMsg() const { return err_msg_; }
  void GS_KRM_ErrMsg(std::string value) { err_msg_ = std::move(value); }
  std::int32_t GL_KRM_FileCount() const { return file_count_; }
  void GL_KRM_FileCount(std::int32_t value) { file_count_ = value; }
  std::int32_t GL_KRM_TxDCount() const { return txd_count_; }
  void GL_KRM_TxDCount(std::int32_t value) { txd_count_ = value; }
  std::int32_t GL_KRM_RxDCount() const { return rxd_count_; }
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
  bool Drain();
  bool HandOver(std::string_view bytes);
  bool Receive(int count, std::string& buffer);
  void ReceiveBurst(std::string& burst);

  // False once a wait was cut short, until the next opening.
  bool GoesOn();
  // Nothing when the wait is to end.
  std::optional<int> BytesToSend();
  void Interrupt(std::string_view words, std::string cause);
  bool LineGone();
  template <typename Step>
  bool Try(Step step);

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
  // Since the last opening, by a lost line, a held line or the end of the program.
  bool interrupted_ = false;
  bool line_held_ = false;
  std::string failure_cause_;
};

}  // namespace vrx
