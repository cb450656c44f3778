#pragma once

#include <QFrame>
#include <QString>
#include <array>
#include <string_view>

#include "database/schema.h"
#include "presenter/database_commands.h"

class QLabel;

namespace vrx {

// A status bar of eight panels: `sbRecipe` or `sbTrans`. The odd ones are captions, the even ones
// tell of the database.
class DatabaseStatusBar : public QFrame {
  Q_OBJECT

 public:
  static constexpr int kPanelCount = 8;

  explicit DatabaseStatusBar(DatabaseKind kind, QWidget* parent = nullptr);

  // Panels count from 1.
  QString Panel(int panel) const;
  void SetPanel(StatusPanel panel, const QString& text);

  // Gives the fixed panels their captions, which the caption pass takes for labels of its own.
  void ShowCaptions();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  QLabel* AddPanel(int panel);
  void AlignPanels();

  DatabaseKind kind_;
  std::array<QLabel*, kPanelCount> panels_{};
};

}  // namespace vrx
