#pragma once

#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "platform/operator.h"

namespace vrx {

// The indexes of `cmdAction` and `cmdNavigate`.
enum ActionButton : int { kActionUpdate, kActionCancel, kActionDefault };
enum NavigateButton : int { kNavigateFirst, kNavigatePrevious, kNavigateNext, kNavigateLast };

// A button of a control array.
struct PanelButton {
  std::string_view caption;
  std::string_view meaning = {};  // for its tooltip and a screen reader, if needed
};

// A panel with the buttons of a control array, named by the array and their index. They are
// disabled until a handler is set.
class ButtonPanel : public QFrame {
  Q_OBJECT

 public:
  using Handler = std::function<void(int index)>;

  ButtonPanel(QWidget* parent, std::string_view name, std::string_view array,
              std::span<const PanelButton> buttons);

  void SetHandler(Handler handler);
  [[nodiscard]] QPushButton& Button(int index) const {
    return *buttons_.at(static_cast<std::size_t>(index));
  }

 private:
  std::vector<QPushButton*> buttons_;
  Handler handler_;
};

// `picTransferStatus`: the status line of transfers, and the fill level of the memory. A click
// switches between the count of bytes and the bar.
class TransferStatusPanel : public QFrame {
  Q_OBJECT

 public:
  static constexpr int kMemoryBytes = 65536;

  explicit TransferStatusPanel(QWidget* parent = nullptr);

  void SetStatusLine(const QString& text);
  // Sets the cause of the status text as its tooltip, until the text changes.
  void SetStatusCause(const QString& cause);
  void SetStatusColor(StatusColor color);

  // The button that cancels the running transfer, also by Esc.
  void ShowCancel(bool shown);

  // The memory is shown only in the direct connection, at first as the count.
  void ShowMemory(bool shown);
  void SetMemorySize(int bytes);

 Q_SIGNALS:
  void CancelRequested();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void AddMemory();
  void PaintStatus();

  QLabel* status_window_;
  QPushButton* cancel_;
  QLabel* memory_;
  QLabel* memory_size_;
  QProgressBar* memory_bar_;
  bool second_click_ = false;  // of a double click on the two
  StatusColor color_ = StatusColor::kBlue;
};

// `picResult`: what the last store, print or export did, with a button that opens its file. Takes
// no room while it is empty.
class ResultPanel : public QFrame {
  Q_OBJECT

 public:
  explicit ResultPanel(QWidget* parent = nullptr);

  void ShowText(const QString& text);
  // "Printed to PENS.PDF"; the whole path is the tooltip.
  void ShowFile(const QString& action, const QString& path);
  void Clear() { hide(); }

 Q_SIGNALS:
  void OpenRequested(const QString& path);

 private:
  QLabel* text_;
  QPushButton* open_;
  QString path_;
};

// The row below the tabs: those panels and `picImport`. Its height does not depend on them.
class PanelRow : public QWidget {
  Q_OBJECT

 public:
  explicit PanelRow(QWidget* parent = nullptr);

  // A combination of BottomPanels. Clears the result.
  void ShowPanels(unsigned panels);

  // `lblRecordNumber`, on `picNavigate`; 0 clears it.
  void ShowRecordNumber(int position);

  [[nodiscard]] ButtonPanel& PicAction() const { return *action_; }
  [[nodiscard]] ButtonPanel& PicNavigate() const { return *navigate_; }
  [[nodiscard]] TransferStatusPanel& PicTransferStatus() const { return *transfer_status_; }
  [[nodiscard]] ResultPanel& PicResult() const { return *result_; }
  [[nodiscard]] QFrame& PicImport() const {
    return *import_;
  }  // has a horizontal layout to be filled

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void AddRecordNumber();
  void KeepHeight();

  ButtonPanel* action_;
  ButtonPanel* navigate_;
  QLabel* record_ = nullptr;
  QLabel* record_number_ = nullptr;
  TransferStatusPanel* transfer_status_;
  ResultPanel* result_;
  QFrame* import_;
};

}  // namespace vrx
