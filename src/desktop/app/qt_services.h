#pragma once

#include <QFileIconProvider>
#include <QObject>
#include <QString>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "platform/user_settings.h"

class QFileDialog;

namespace vrx {

// The operator in front of the screen. Boxes belong to the active window and block all others; the
// cause of a message is its details.
//
// The status line is the main window's: it connects to the signals.
class QtOperator : public QObject, public Operator {
  Q_OBJECT

 public:
  // A box without a title has the application's. It suspends the busy cursor.
  Answer ShowMessage(const MessageBox& box) override;
  void Beep() override;
  void SetBusy(bool busy) override;
  void SetStatusLine(std::string_view text) override;
  void SetStatusColor(StatusColor color) override;

 Q_SIGNALS:
  void StatusLineChanged(const QString& text);
  void StatusColorChanged(vrx::StatusColor color);
  // The operator wants to choose another serial port. The command that reported the problem is
  // still running.
  void PortSetupRequested();

 private:
  void ShowCursor();

  int busy_ = 0;  // calls of SetBusy that have not ended
  bool busy_shown_ = false;
};

// Operator decorator: refreshes the page before each message.
class RefreshingOperator : public Operator {
 public:
  RefreshingOperator(Operator& op, std::function<void()> show) : op_(op), show_(std::move(show)) {}

  Answer ShowMessage(const MessageBox& box) override {
    show_();
    return op_.ShowMessage(box);
  }
  void Beep() override { op_.Beep(); }
  void SetBusy(bool busy) override { op_.SetBusy(busy); }
  void SetStatusLine(std::string_view text) override {
    show_();
    shown_ = !text.empty();
    op_.SetStatusLine(text);
  }
  void SetStatusColor(StatusColor color) override {
    color_ = color;
    op_.SetStatusColor(color);
  }

  // The status line reports a failure.
  [[nodiscard]] bool StatusIsError() const { return shown_ && color_ == StatusColor::kRed; }

 private:
  Operator& op_;
  std::function<void()> show_;
  StatusColor color_ = StatusColor::kBlue;
  bool shown_ = false;
};

// Icons and kinds of the files in a file dialog. The usual provider reads the beginning of a file
// whose name does not show its kind; this one does so for stored files only. A read of a special
// file, or of one that the kernel makes up (/proc/kmsg), can wait for ever.
//
// Called from a thread of the dialog.
class FileIcons : public QFileIconProvider {
 public:
  using QFileIconProvider::icon;
  [[nodiscard]] QIcon icon(const QFileInfo& file) const override;
  [[nodiscard]] QString type(const QFileInfo& file) const override;
};

// File dialogs over the active window. They are Qt's own rather than the platform's, so that a name
// gets its default extension before the question whether to overwrite, everywhere.
class QtFileChooser : public FileChooser {
 public:
  // `home` returns the folder of the dialogs that name none, until a first choice was made.
  explicit QtFileChooser(std::function<std::string()> home);
  FileChoice ShowOpen(const FileDialog& dialog) override;
  FileChoice ShowSave(const FileDialog& dialog) override;
  std::string ShowFolder(const std::string& title) override;

 private:
  void SetUp(QFileDialog& widget, const FileDialog& dialog);
  [[nodiscard]] QString LastFolder() const;

  FileIcons icons_;
  std::function<std::string()> home_;
  QString last_folder_;  // where the last choice was made
};

// The platform's own store: on Linux an INI file below $XDG_CONFIG_HOME, on Windows the registry of
// the user.
class QtUserSettings : public UserSettings {
 public:
  [[nodiscard]] std::string GetSetting(std::string_view key) const override;
  void SaveSetting(std::string_view key, std::string_view value) override;
};

}  // namespace vrx
