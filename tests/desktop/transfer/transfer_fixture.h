#pragma once

#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <functional>
#include <string>

#include "desktop/main_window/main_window_fixture.h"

namespace vrx::testing {

// The Data Transfer tab is shown; its line is scripted in the pump's time.
class TransferFixture : public MainWindowFixture {
 protected:
  TransferFixture() { settings_.SetEnableBeeperOn(false); }

  // With every widget on the screen.
  void ShowTab() {
    Show();
    operator_.status_lines.clear();
  }

  void Click(const QString& button) {
    QTest::mouseClick(&Find<QAbstractButton>(button), Qt::LeftButton);
  }
  // Clicks during a wait, after that time.
  void ClickAfter(Milliseconds delay, const QString& button) {
    pump_.After(delay, [this, button] { Click(button); });
  }
  bool Visible(const QString& control) { return Find<QWidget>(control).isVisible(); }
  bool Enabled(const QString& control) { return Find<QWidget>(control).isEnabled(); }
  bool HasFocus(const QString& control) { return Find<QWidget>(control).hasFocus(); }

  std::string Data() {
    return Find<QPlainTextEdit>(u"txtDataWindow"_qs).toPlainText().toStdString();
  }
  std::string Path() { return Find<QLineEdit>(u"txtFilePath"_qs).text().toStdString(); }

  QListWidget& List() { return Find<QListWidget>(u"lstDataFiles"_qs); }
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    rows.reserve(static_cast<std::size_t>(List().count()));
    for (int i = 0; i < List().count(); ++i) {
      rows.push_back(List().item(i)->text().toStdString());
    }
    return rows;
  }
  std::vector<int> Checked() {
    std::vector<int> rows;
    for (int i = 0; i < List().count(); ++i) {
      if (List().item(i)->checkState() == Qt::Checked) {
        rows.push_back(i);
      }
    }
    return rows;
  }
  // The check box of a row, with the mouse.
  void ClickBox(int row) {
    QStyleOptionViewItem option;
    option.initFrom(&List());
    option.rect = List().visualItemRect(List().item(row));
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    const QRect box =
        List().style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &List());
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, box.center());
  }

  // Scripts a module that answers with this memory.
  void ModuleHolds(const std::string& memory) {
    serial_.WillAnswer("\x19\x1f");
    serial_.WillAnswer("\x15\x1f" + memory + "\x1f");
  }
  // Scripts a module that accepts a download.
  void ModuleTakesDownload() {
    serial_.WillAnswer("\x19\x1f");
    serial_.WillAnswer("\x14\x1f");
  }
};

}  // namespace vrx::testing
