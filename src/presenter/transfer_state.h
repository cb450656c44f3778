#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/date.h"
#include "link/krmcomm.h"
#include "platform/event_pump.h"

namespace vrx {

inline constexpr int kModuleMemory = 65536;  // bytes

// One row of `lstDataFiles`: a file cut from the transfer block.
struct DataFileRow {
  int file = 0;  // its number, from 1
  std::string text;
  DataFileType type = DataFileType::kUnknown;
  std::optional<Date> first_record = {};  // of a transaction file
  bool checked = false;
  bool saved = false;
};

// The choice of `optConnection`.
enum class Connection { kModule = 0, kIndicator = 1 };

// Tracks whether bytes that an indicator sent to the memory image are saved to a file. A module
// keeps uploaded data, but an indicator does not keep what it has sent.
class ReceivedData {
 public:
  void Arrived() {
    unsaved_ = true;
    in_block_ = false;
  }
  // The image was cleared or replaced by the indicator or the operator.
  void Discarded() { unsaved_ = false; }
  // The transfer block was filled with the whole image, or with other data.
  void ImageIntoBlock() { in_block_ = true; }
  void OtherIntoBlock() { in_block_ = false; }
  // The whole transfer block was saved.
  void BlockSaved() { unsaved_ = unsaved_ && !in_block_; }
  // The image was written to a rescue file.
  void Rescued() { unsaved_ = false; }

  [[nodiscard]] bool Unsaved() const { return unsaved_; }

 private:
  bool unsaved_ = false;
  bool in_block_ = false;
};

// The state of the Data Transfer tab. Texts are bytes as received.
struct TransferState {
  std::string transfer_block;  // the last upload or memory read
  bool block_is_cut = true;    // the data files hold the whole block
  ReceivedData received;
  std::optional<Milliseconds> uploaded_at = {};  // by the event pump: the last complete upload
  std::string data_window;                       // txtDataWindow
  std::string file_path;                         // txtFilePath
  std::vector<DataFileRow> data_files;
  int selected_row = -1;                  // of data_files; -1 for none
  bool recipe_frames_visible = false;     // frmRecipeFile and frmRecipeBackup
  bool data_files_frame_visible = false;  // frmDataFiles
  bool reload_enabled = true;             // cmdReload

  Connection connection = Connection::kModule;
  std::string open_caption = "Open...";  // of cmdOpenRecipeDB and cmdOpenRecipeBU
  bool download_buttons_visible = true;  // cmdDownloadRecipeDB and cmdDownloadRecipeBU
  bool memory_label_visible = false;     // lblMemory
  bool memory_size_visible = false;      // lblMemorySize
  bool memory_bar_visible = false;       // prgMemorySize
  std::string memory_size = "0";         // caption of lblMemorySize, bytes in the memory image
  int memory_bar = 0;                    // value of prgMemorySize, from 0 to kModuleMemory
};

}  // namespace vrx
