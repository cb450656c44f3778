#pragma once

namespace vrx {

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

}  // namespace vrx
