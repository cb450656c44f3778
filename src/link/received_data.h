#pragma once

namespace vrx {

// Whether the bytes that an indicator sent into the memory image are saved somewhere. A module
// keeps what is uploaded from it; an indicator does not keep what it has sent.
class ReceivedData {
 public:
  void Arrived() {
    unsaved_ = true;
    in_block_ = false;
  }
  // The image was emptied or replaced, by the indicator or by the operator's choice.
  void Discarded() { unsaved_ = false; }
  // The transfer block took the whole image, or something else.
  void ImageIntoBlock() { in_block_ = true; }
  void OtherIntoBlock() { in_block_ = false; }
  // Every byte of the transfer block is in a file.
  void BlockSaved() { unsaved_ = unsaved_ && !in_block_; }
  void Rescued() { unsaved_ = false; }

  bool Unsaved() const { return unsaved_; }

 private:
  bool unsaved_ = false;
  bool in_block_ = false;
};

}  // namespace vrx
