#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "link/krmcomm.h"
#include "platform/operator.h"
#include "presenter/transfer_state.h"

namespace vrx {

// The upload side of the Data Transfer tab. Shows its state in the status line: blue while it is
// busy, red after a failure, green at the end. All references must outlive the object.
class Upload {
 public:
  Upload(KRMCOMM& krm, TransferState& transfer, EventPump& pump, Operator& op,
         const PrivateINI& settings);

  // The button: clears the tab, uploads from the module or, in the direct connection, reads the
  // memory image, and lists the files. Does nothing while another command uses the line.
  void UploadDataFromKRM();

  // The data of a canceled upload that had arrived; empty after any other.
  [[nodiscard]] const std::string& CanceledPart() const { return canceled_part_; }

  // Copies the module's memory to the transfer block and returns the number of files cut from it.
  // With more files than the table holds it ends red and cuts only those that fit. The caller holds
  // the line.
  int UploadFromModule();

  // Treats the bytes of a rescue file as received and lists its files.
  void UploadFromFile(const std::filesystem::path& file);

  // Copies the memory image to the transfer block, as UploadFromModule does with the module's
  // memory.
  int ReadDirectMemory();

  // A click on the check box of a row, from 0, shows its file and turns the check over; the only
  // row of a list stays checked.
  void DataFilesClick(int row);

  // Shows a file, from 1, in the data window. Throws Error if the number has no file.
  void ShowDataFile(int file);

 private:
  void ClearTab();
  bool Dump();
  void ReportNotDetected();
  void ReportNotDumped();
  void ReportCanceled();
  int TakeReply();
  // Cuts the transfer block, which must not be empty.
  int CutFiles(std::string_view done_words, std::size_t received_bytes);
  void ListDataFiles(int count);
  [[nodiscard]] DataFileRow DescribeFile(int file) const;
  [[nodiscard]] std::string PartOf(int file) const;  // throws Error if the number has no file

  KRMCOMM& krm_;
  TransferState& transfer_;
  EventPump& pump_;
  Operator& op_;
  const PrivateINI& settings_;
  std::string canceled_part_;
};

// The status line of a transfer sets text and color together: blue "Standby..." at the start, blue
// for neutral texts, green for success, red for failure.
void ReportStandby(Operator& op);
void ReportNeutral(Operator& op, std::string_view words);
void ReportComplete(Operator& op, std::string_view words);
void ReportFailed(Operator& op, std::string_view words);

// If the last command failed because of the serial port itself, shows why, with a way to Setup.
// Does nothing after any other failure and while the program is closing.
void ReportPortFailure(Operator& op, const KRMCOMM& krm, const PrivateINI& settings);

}  // namespace vrx
