#pragma once

#include <QDialog>
#include <string>
#include <string_view>

#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "widgets/text_view.h"

namespace vrx {

// The report of a conversion, to be read, copied and saved as a text file.
class ConversionReportDialog : public QDialog {
  Q_OBJECT

 public:
  // UTF-8, lines by LF. Whatever is referred to outlives this.
  ConversionReportDialog(std::string_view text, std::string file_name, FileChooser& files,
                         Operator& op, QWidget* owner);

 private:
  void Save();
  void CopyText() const;

  std::string text_;
  std::string file_name_;
  FileChooser& files_;
  Operator& operator_;
  TextView* view_;
};

}  // namespace vrx
