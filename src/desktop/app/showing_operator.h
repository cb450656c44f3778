#pragma once

#include <functional>
#include <string_view>
#include <utility>

#include "platform/operator.h"

namespace vrx {

// The operator as a flow of a page knows them: ahead of whatever they are told or asked, the page
// shows what the flow holds by then.
class ShowingOperator : public Operator {
 public:
  ShowingOperator(Operator& op, std::function<void()> show) : op_(op), show_(std::move(show)) {}

  Answer ShowMessage(const MessageBox& box) override {
    show_();
    return op_.ShowMessage(box);
  }
  void Beep() override { op_.Beep(); }
  void SetBusy(bool busy) override { op_.SetBusy(busy); }
  void SetStatusLine(std::string_view text) override {
    show_();
    told_ = !text.empty();
    op_.SetStatusLine(text);
  }
  void SetStatusColor(StatusColor color) override {
    color_ = color;
    op_.SetStatusColor(color);
  }

  // The status line tells a failure.
  bool StatusIsError() const { return told_ && color_ == StatusColor::kRed; }

 private:
  Operator& op_;
  std::function<void()> show_;
  StatusColor color_ = StatusColor::kBlue;
  bool told_ = false;
};

}  // namespace vrx
