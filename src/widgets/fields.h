#pragma once

#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QObject>
#include <QValidator>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

namespace vrx {

// A line edit that asks a filter about each character that the operator brings in: typed, pasted,
// dropped or composed. What the program sets is not asked about and may be longer.
//
// A character that is refused, or has no room, sends Refused and changes nothing; of a text that
// comes in at once the other characters stay, and Refused is sent once.
class FilteredEdit : public QLineEdit {
  Q_OBJECT

 public:
  // The text ahead of the key, without what is selected, and the key: the code to insert, or 0 to
  // drop it. Both are Windows-1252, one byte per character; the key is 0 for a character that it
  // does not have. Asked also where there is no room left, but not about a backspace.
  using Filter = std::function<int(std::string_view text, int key)>;

  // `limit` in characters.
  FilteredEdit(Filter filter, int limit, QWidget* parent = nullptr);

  void setText(const QString& text);

  // UTF-8.
  std::string Text() const { return text().toStdString(); }

 Q_SIGNALS:
  void Refused();

  // The backspace key, ahead of what it does.
  void Backspace();

  // The focus went to another field. A menu, a list or another window in front takes none away.
  void Left();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  // Everything that is brought in other than by a key passes here.
  class Gate;

  QValidator::State Admit(QString& text, int& cursor);
  QString Filtered(QString before, const QString& typed);
  QString OneFiltered(const QString& before, QChar character) const;

  Filter filter_;
  int limit_;
  QString accepted_;  // what stands in the box, ahead of a change that is not admitted yet
  bool by_program_ = false;
};

// Whether a control that loses the focus is left for another one, as a form understands it. A menu,
// a list that drops down or another window in front leaves it on show with what stands in it.
bool LeavesField(const QFocusEvent& event);

// Ctrl+Tab, and back: from every control it goes up to the tab folder, which turns to another tab.
bool TurnsTabs(const QKeyEvent& key);

// Logical pixels for that many of the widest characters and what a box puts around them.
int WidthFor(const QWidget& box, std::size_t characters);

// A box that is as wide as `limit` of the widest characters and gives way in a narrow window.
FilteredEdit* MakeBox(FilteredEdit::Filter filter, std::size_t limit, const char* name,
                      QWidget* parent);

// A list that is chosen from only while it is dropped down, which the keys do that move in others:
// neither a key nor a turn of the wheel in passing makes a choice.
class ChoiceList : public QComboBox {
  Q_OBJECT

 public:
  using QComboBox::QComboBox;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

// Turns the Enter key into the Tab key on everything in a form, so that Enter goes on to the next
// field. Menus, lists that drop down and other windows keep theirs.
class EnterAsTab : public QObject {
  Q_OBJECT

 public:
  // Belongs to the form.
  explicit EnterAsTab(QWidget* form);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* form_;
};

}  // namespace vrx
