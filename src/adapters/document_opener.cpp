#include "adapters/document_opener.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <QStandardPaths>
#include <memory>
#include <optional>
#include <vector>

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

namespace vrx {
namespace {

constexpr int kNoFile = 2;
constexpr int kBadProgram = 11;
constexpr int kNoAssociation = 31;
constexpr int kFound = 33;

struct Unreference {
  void operator()(GAppInfo* application) const { g_object_unref(application); }
};
using Application = std::unique_ptr<GAppInfo, Unreference>;

// The document's type and the more general ones that include it, except "any file".
QStringList TypesOf(const QString& document) {
  const QMimeType type = QMimeDatabase().mimeTypeForFile(document);
  QStringList types = {type.name()};
  types << type.allAncestors();
  types.removeAll(QStringLiteral("application/octet-stream"));
  return types;
}

// The installed applications for a type, the preferred one first.
std::vector<Application> ApplicationsFor(const QString& type) {
  const QByteArray name = type.toUtf8();
  std::vector<Application> applications;
  if (GAppInfo* const preferred = g_app_info_get_default_for_type(name.constData(), FALSE)) {
    applications.emplace_back(preferred);
  }
  GList* const recommended = g_app_info_get_recommended_for_type(name.constData());
  for (const GList* entry = recommended; entry != nullptr; entry = entry->next) {
    applications.emplace_back(static_cast<GAppInfo*>(entry->data));
  }
  g_list_free(recommended);
  return applications;
}

// The field codes for one document or several become the document, the others nothing.
std::optional<QString> Expanded(const QString& word, const QString& document) {
  if (word.size() == 2 && word[0] == u'%' && word[1] != u'%') {
    return QStringLiteral("fFuU").contains(word[1]) ? std::optional(document) : std::nullopt;
  }
  QString text = word;
  return text.replace(QStringLiteral("%%"), QStringLiteral("%"));
}

// GIO could start the application too, but reports success when the program cannot be executed, and
// neither its folder nor its blocked signals could be chosen.
std::optional<ProgramCall> CallOf(const Application& application, const QString& document) {
  if (g_desktop_app_info_get_boolean(G_DESKTOP_APP_INFO(application.get()), "Terminal") != FALSE) {
    return std::nullopt;
  }
  const char* const command = g_app_info_get_commandline(application.get());
  char** parsed = nullptr;
  if (command == nullptr || g_shell_parse_argv(command, nullptr, &parsed, nullptr) == FALSE) {
    return std::nullopt;
  }
  const std::unique_ptr<char*, decltype(&g_strfreev)> words(parsed, &g_strfreev);
  ProgramCall call{.program = QStandardPaths::findExecutable(QString::fromUtf8(*parsed)),
                   .arguments = {}};
  for (char** word = parsed + 1; *word != nullptr; ++word) {
    if (const auto argument = Expanded(QString::fromUtf8(*word), document)) {
      call.arguments << *argument;
    }
  }
  return call.program.isEmpty() ? std::nullopt : std::optional(call);
}

}  // namespace

DocumentOpener FindDocumentOpener(const QString& document) {
  if (!QFileInfo(document).isFile()) {
    return {.code = kNoFile, .call = {}};
  }
  bool associated = false;
  for (const QString& type : TypesOf(document)) {
    for (const Application& application : ApplicationsFor(type)) {
      associated = true;
      if (const std::optional<ProgramCall> call = CallOf(application, document)) {
        return {.code = kFound, .call = *call};
      }
    }
  }
  return {.code = associated ? kBadProgram : kNoAssociation, .call = {}};
}

}  // namespace vrx
