#pragma once

#include <QLineEdit>
#include <QValidator>
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

}  // namespace vrx
