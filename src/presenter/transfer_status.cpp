#include "presenter/transfer_status.h"

namespace vrx {

namespace {

void Tell(Operator& op, StatusColor color, std::string_view words) {
  op.SetStatusColor(color);
  op.SetStatusLine(words);
}

}  // namespace

void TellStandby(Operator& op) { Tell(op, StatusColor::kBlue, "Standby..."); }

void TellNeutral(Operator& op, std::string_view words) { Tell(op, StatusColor::kBlue, words); }

void TellComplete(Operator& op, std::string_view words) { Tell(op, StatusColor::kGreen, words); }

void TellFailed(Operator& op, std::string_view words) { Tell(op, StatusColor::kRed, words); }

}  // namespace vrx
