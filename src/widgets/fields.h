#pragma once

#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QObject>
#include <QTableView>
#include <QValidator>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

namespace vrx {

// A line edit that filters each character that the operator enters: typed, pasted, dropped or
// composed. A text set by the program is not filtered and may be longer.
//
// A character that is refused or exceeds the limit emits Refused and changes nothing. Of a text
// entered at once the other characters are kept, and Refused is emitted once.
class FilteredEdit : public QLineEdit {
  Q_OBJECT

 public:
  // Takes the text before the key, without the selection, and the key; returns the code to insert,
  // or 0 to drop it. Both are Windows-1252; the key is 0 for a character that Windows-1252 lacks.
  // Also called if the limit is reached, but not for a backspace.
  using Filter = std::function<int(std::string_view text, int key)>;

  // Why a key that the filter or the limit drops is refused, by the same two arguments; UTF-8.
  using Reason = std::function<std::string(std::string_view text, int key)>;

  // A number must never become another one: of a text entered at once all characters are kept or
  // none, and after a refused decimal key digits are refused until any other key.
  enum class Takes { kText, kNumber };

  // `limit` in characters.
  FilteredEdit(Filter filter, int limit, QWidget* parent = nullptr);

  // A refused key shows its reason beside the box.
  void Explain(Reason reason, Takes takes = Takes::kText);

  void setText(const QString& text);

  // UTF-8.
  [[nodiscard]] std::string Text() const { return text().toStdString(); }

 Q_SIGNALS:
  void Refused();

  // The backspace key, before its effect.
  void Backspace();

  // The focus moved to another field. Not emitted for a menu, a list or another window.
  void Left();

 protected:
  // The keys of undo and redo work on what was typed since the text was stored; otherwise they are
  // shortcuts of the window.
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  // Handles all input other than keys.
  class Gate;

  QValidator::State Admit(QString& text, int& cursor);
  QValidator::State AdmitNumber(QString& text, int& cursor);
  QString Filtered(QString before, const QString& typed);
  [[nodiscard]] QString OneFiltered(const QString& before, QChar character) const;
  QString TypedDigit(const QString& before, QChar character);
  void Refuse(const QString& before, QChar character);

  Filter filter_;
  int limit_;
  Reason reason_;
  Takes takes_ = Takes::kText;
  QString stopped_by_;  // the refused decimal key after which no digit is taken
  QString accepted_;    // the text before a change that is not accepted yet
  bool by_program_ = false;
};

// Whether a control loses the focus to another control of the form, and not to a menu, a drop-down
// list or another window.
bool LeavesField(const QFocusEvent& event);

// Whether the key is Ctrl+Tab or Ctrl+Shift+Tab. Controls pass it up to the tab folder, which
// switches tabs.
bool TurnsTabs(const QKeyEvent& key);

// The width in logical pixels of that many of the widest characters and the frame of a box.
int WidthFor(const QWidget& box, std::size_t characters);

// A box as wide as `limit` of the widest characters, which shrinks in a narrow window.
FilteredEdit* MakeBox(FilteredEdit::Filter filter, std::size_t limit, const char* name,
                      QWidget* parent);

// A list whose choice changes only while it is open. While it is closed, keys that would change the
// choice open it instead, and the wheel does nothing.
class ChoiceList : public QComboBox {
  Q_OBJECT

 public:
  using QComboBox::QComboBox;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

// A list whose cells the Enter key goes through by itself. A part of it is a descendant widget.
class EnterByCell {
 public:
  virtual ~EnterByCell() = default;
  // Returns false after the last cell: the key then leaves the list.
  virtual bool EnterPressed() = 0;
};

// Moves to the next visible column in the order on the screen, and from the last one to the first
// of the next row. Returns false at the last cell of the list.
bool GoToNextCell(QTableView& list);

// Makes the Enter key move to the next field, like Tab, on all controls of a form. It keeps its
// meaning in menus, drop-down lists and other windows.
class EnterAsTab : public QObject {
  Q_OBJECT

 public:
  // Owned by the form.
  explicit EnterAsTab(QWidget* form);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* form_;
};

}  // namespace vrx
