#include "adapters/desktop_entry.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>

namespace vrx {
namespace {

QString ValueOf(const KeyFileGroup& group, const QString& key) {
  const auto found = group.find(key);
  return found == group.end() ? QString() : found->second;
}

// The escapes of a string value. The quoting of a command line comes after them.
QString Unescaped(const QString& value) {
  QString text;
  for (qsizetype i = 0; i < value.size(); ++i) {
    if (value[i] != u'\\' || i + 1 == value.size()) {
      text += value[i];
      continue;
    }
    switch (value[++i].unicode()) {
      case u's':
        text += u' ';
        break;
      case u'n':
        text += u'\n';
        break;
      case u't':
        text += u'\t';
        break;
      case u'r':
        text += u'\r';
        break;
      default:
        text += value[i];
    }
  }
  return text;
}

// Words in double quotes are one; a backslash in them takes the next character as it stands.
QStringList SplitCommand(const QString& command) {
  QStringList words;
  QString word;
  bool quoted = false;
  bool begun = false;
  for (qsizetype i = 0; i < command.size(); ++i) {
    const QChar character = command[i];
    if (character == u'"') {
      quoted = !quoted;
      begun = true;
    } else if (quoted && character == u'\\' && i + 1 < command.size()) {
      word += command[++i];
    } else if (!quoted && character.isSpace()) {
      if (begun) {
        words << word;
      }
      word.clear();
      begun = false;
    } else {
      word += character;
      begun = true;
    }
  }
  if (begun) {
    words << word;
  }
  return words;
}

// The field codes that stand for one document or for many become the document, the others nothing.
std::optional<QString> Expanded(const QString& word, const QString& document) {
  if (word.size() == 2 && word[0] == u'%' && word[1] != u'%') {
    return QStringLiteral("fFuU").contains(word[1]) ? std::optional(document) : std::nullopt;
  }
  QString text = word;
  return text.replace(QStringLiteral("%%"), QStringLiteral("%"));
}

QString ExecutablePath(const QString& program) {
  if (!program.contains(u'/')) {
    return QStandardPaths::findExecutable(program);
  }
  const QFileInfo file(program);
  return file.isFile() && file.isExecutable() ? program : QString();
}

}  // namespace

KeyFile ReadKeyFile(const QString& path) {
  KeyFile groups;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
    return groups;
  }
  QTextStream lines(&file);
  QString group;
  QString line;
  while (lines.readLineInto(&line)) {
    const QString text = line.trimmed();
    const qsizetype equals = text.indexOf(u'=');
    if (text.startsWith(u'[') && text.endsWith(u']')) {
      group = text.mid(1, text.size() - 2);
    } else if (!text.startsWith(u'#') && equals > 0) {
      groups[group].try_emplace(text.left(equals).trimmed(), text.mid(equals + 1).trimmed());
    }
  }
  return groups;
}

std::optional<ProgramCall> CallOfDesktopEntry(const QString& entry_path, const QString& document) {
  const KeyFile file = ReadKeyFile(entry_path);
  const auto entry = file.find(QStringLiteral("Desktop Entry"));
  if (entry == file.end()) {
    return std::nullopt;
  }
  const QString yes = QStringLiteral("true");
  if (ValueOf(entry->second, QStringLiteral("Hidden")) == yes ||
      ValueOf(entry->second, QStringLiteral("Terminal")) == yes) {
    return std::nullopt;
  }
  const QStringList words = SplitCommand(Unescaped(ValueOf(entry->second, QStringLiteral("Exec"))));
  const QString program = words.isEmpty() ? QString() : ExecutablePath(words.constFirst());
  if (program.isEmpty()) {
    return std::nullopt;
  }
  ProgramCall call{.program = program, .arguments = {}};
  for (const QString& word : words.mid(1)) {
    if (const std::optional<QString> argument = Expanded(word, document)) {
      call.arguments << *argument;
    }
  }
  return call;
}

}  // namespace vrx
