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

  // The click that selects the module. Ends a running connection; its loop, further down the stack,
  // returns after the click's handler.
  void ConnectModule();

  // The click that selects the indicator: Enter and DirectConnectLoop. Returns when the connection
  // has ended; false if it could not begin, its line was lost, or the line is in use.
  bool ConnectIndicator();

  // Asks whether to clear memory, opens the port and sets up the tab. If the port cannot be opened,
  // reports it, selects the module connection again and returns false.
  bool Enter();

  // Reopens the port with the current settings after another user of the line has closed or used
  // it. Does nothing without a connection. If the port cannot be opened, reports it, selects the
  // module connection again and returns false.
  bool Resume();

  // Receives and answers until GB_KRM_AbortDirectConnect. If the line is lost, reports it, selects
  // the module connection again and returns false. The closing program ends it without a message.
  bool DirectConnectLoop();

  // Replaces the contents of memory by a text. Sends an unrequested DC4 US to the indicator, which
  // takes 1600 ms, and discards what arrives in the first 1000 ms. If that fails, reports it and
  // returns false; the text is in memory anyway.
  bool LoadMemory(std::string_view text);

  // A transmission to the indicator has failed since Enter.
  [[nodiscard]] bool AnswerFailed() const { return answer_failed_; }

  // Locks the line; LoadMemory's caller holds it during the transmission.
  LineGuard& Guard() { return krm_.Guard(); }

 private:
  bool OpenPort();
  void ShowTab(Connection connection);
  void StartUpdates();
  void Update();
  void SetMemorySize(std::size_t bytes);
  void Handle(std::string_view burst);
  void HandleByte(char byte);
  void ShowReply(bool answered, std::string_view done, std::string_view failed);
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
