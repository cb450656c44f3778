#pragma once

#include <memory>
#include <string_view>

#include "link/krmcomm.h"
#include "presenter/transfer_state.h"

namespace vrx {

// The direct connection of the Data Transfer tab: an indicator on the cable is the master, and the
// PC answers from its memory image as the module would. References must outlive the object, and it
// must outlive every call that runs.
class DirectConnection {
 public:
  DirectConnection(KRMCOMM& krm, TransferState& transfer, EventPump& pump, Operator& op,
                   const PrivateINI& settings);

  // The click that chooses the module. Ends a running connection; its loop, below on the stack,
  // returns once the click's handler has.
  void ConnectModule();

  // The click that chooses the indicator: Enter and DirectConnectLoop. Returns when the connection
  // has ended; false when it could not begin or its line was lost, or when the line is in use.
  bool ConnectIndicator();

  // Asks whether memory is to be cleared, opens the port, sets the tab up. False, the operator told
  // and the module connection chosen again, when the port cannot be opened.
  bool Enter();

  // Somebody else has closed the port, or used it, while the connection stands: opens it anew, with
  // the settings of now. Does nothing without a connection. False, the operator told and the module
  // connection chosen again, when it cannot be opened.
  bool Resume();

  // Receives and answers until GB_KRM_AbortDirectConnect. False, the operator told and the module
  // connection chosen again, when the line is lost. A closing program ends it without a word.
  bool DirectConnectLoop();

  // Puts a text into memory in place of what it holds. The indicator is sent a DC4 US unasked,
  // which takes 1600 ms; what it sends in the first 1000 of them is discarded. False, the operator
  // told, when that failed; the text is in memory all the same.
  bool LoadMemory(std::string_view text);

  // A transmission to the indicator has failed since Enter.
  bool AnswerFailed() const { return answer_failed_; }

  // Who uses the line; LoadMemory's caller takes it for a transmission.
  LineGuard& Guard() { return krm_.Guard(); }

 private:
  bool OpenPort();
  void ShowTab(Connection connection);
  void StartUpdates();
  void Update();
  void SetMemorySize(std::size_t bytes);
  void Handle(std::string_view burst);
  void HandleByte(char byte);
  void Tell(bool answered, std::string_view done, std::string_view failed);
  bool ReopenHeldLine();

  KRMCOMM& krm_;
  TransferState& transfer_;
  EventPump& pump_;
  Operator& op_;
  const PrivateINI& settings_;
  std::unique_ptr<EventPump::Ticker> tim_direct_rxd_updates_;  // null while it is disabled
  bool answer_failed_ = false;
};

}  // namespace vrx
