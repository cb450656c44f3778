#pragma once

#include <string>
#include <vector>

namespace vrx {

// One row of `lstDataFiles`: a file cut from the transfer block.
struct DataFileRow {
  int file = 0;  // its number, from 1
  std::string text;
  bool checked = false;
};

// What the Data Transfer tab holds. Texts are bytes as they came over the line.
struct DataTransfer {
  std::string transfer_block;  // the last upload or memory read
  std::string data_window;     // txtDataWindow
  std::string file_path;       // txtFilePath
  std::vector<DataFileRow> data_files;
  int selected_row = -1;                  // of data_files; -1 for none
  bool recipe_frames_visible = false;     // frmRecipeFile and frmRecipeBackup
  bool data_files_frame_visible = false;  // frmDataFiles
};

}  // namespace vrx
