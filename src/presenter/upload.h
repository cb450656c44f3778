#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

#include "link/krmcomm.h"
#include "platform/operator.h"
#include "presenter/transfer_state.h"

namespace vrx {

// The upload side of the Data Transfer tab. The operator follows it in the status line: blue while
// it is busy, red after a failure, green at the end. References must outlive the object.
class Upload {
 public:
  Upload(KRMCOMM& krm, TransferState& transfer, EventPump& pump, Operator& op,
         const PrivateINI& settings);

  // The button: clears the tab, uploads from the module, or in the direct connection reads the
  // memory image, and lists what came. Does nothing while another command uses the line.
  void UploadDataFromKRM();

  // Brings the module's memory into the transfer block and returns the count of files cut from it.
  // A memory with more files than the table holds ends red and gives those that fit. The caller has
  // taken the line.
  int UploadFromModule();

  // Reads a rescue file as if its bytes had just been received, and lists its files.
  void UploadFromFile(const std::filesystem::path& file);

  // Brings the memory image into the transfer block, as UploadFromModule does the module's memory.
  int ReadDirectMemory();

  // A click on the check box of a row, from 0. Only one box is checked at a time.
  void DataFilesClick(int row);

  // Shows a file, from 1, in the data window. Throws Error when there is none of that number.
  void ShowDataFile(int file);

 private:
  void ClearTab();
  void ModuleNotDetected();
  int TakeReply();
  // Cuts the transfer block, which is not empty.
  int CutFiles(std::string_view done_words, std::size_t told_bytes);
  void ListDataFiles(int count);

  KRMCOMM& krm_;
  TransferState& transfer_;
  EventPump& pump_;
  Operator& op_;
  const PrivateINI& settings_;
};

// The hourglass, for as long as the object lives.
class Hourglass {
 public:
  explicit Hourglass(Operator& op) : op_(op) { op_.SetBusy(true); }
  ~Hourglass() { op_.SetBusy(false); }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;

 private:
  Operator& op_;
};

// The status line of a transfer, always with the color of its words: blue and "Standby..." at its
// start, blue for what is neither success nor failure, green at a good end, red at a bad one.
void ReportStandby(Operator& op);
void ReportNeutral(Operator& op, std::string_view words);
void ReportComplete(Operator& op, std::string_view words);
void ReportFailed(Operator& op, std::string_view words);

}  // namespace vrx
