#pragma once

#include <QDialog>

#include "platform/operating_system.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// The form `ABOUT`; shown modally over the main window.
class About : public QDialog {
  Q_OBJECT

 public:
  About(const SystemInfo& system, OperatingSystem& os, Operator& op, QWidget* owner);
};

}  // namespace vrx
