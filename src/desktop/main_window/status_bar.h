#pragma once

#include <QFrame>
#include <QString>
#include <QToolButton>
#include <array>
#include <string_view>

#include "database/schema.h"
#include "presenter/central_push.h"
#include "presenter/database_commands.h"

class QLabel;

namespace vrx {

// A status bar of eight panels: `sbRecipe` or `sbTrans`. The odd ones are captions, the even ones
// describe the database.
class DatabaseStatusBar : public QFrame {
  Q_OBJECT

 public:
  static constexpr int kPanelCount = 8;

  explicit DatabaseStatusBar(DatabaseKind kind, QWidget* parent = nullptr);

  // Panels count from 1.
  [[nodiscard]] QString Panel(int panel) const;
  void SetPanel(StatusPanel panel, const QString& text);

  // Sets the captions of the fixed panels, which the caption pass would treat as its own labels.
  void ShowCaptions();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  QLabel* AddPanel(int panel);
  void AlignPanels();

  DatabaseKind kind_;
  std::array<QLabel*, kPanelCount> panels_{};
};

// What waits for the central database, at the end of a status bar. Hidden without a connection.
class CentralSignButton : public QToolButton {
  Q_OBJECT

 public:
  explicit CentralSignButton(DatabaseStatusBar& bar);

  void ShowState(const CentralPushState& state);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void ShowColor();

  bool failed_ = false;
};

}  // namespace vrx
