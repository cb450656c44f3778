#include "presenter/create_database.h"

#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/undo.h"
#include "database/identity.h"
#include "presenter/report_failure.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kCreationError = "File Creation Error";

std::string Joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) {
    text += part;
  }
  return text;
}

void ShowBox(Operator& op, Icon icon, std::string_view title, std::string text,
             std::string cause = {}) {
  op.ShowMessage({.icon = icon,
                  .title = std::string(title),
                  .text = std::move(text),
                  .cause = std::move(cause)});
}

class Creation {
 public:
  Creation(const NewDatabase& wanted, DatabaseIdentity& identity, Operator& op,
           CurrentDatabase& current)
      : wanted_(wanted),
        words_(TextsOf(wanted.kind)),
        identity_(identity),
        operator_(op),
        current_(current) {}

  bool Run() {
    if (!AcceptDatabaseName(wanted_.title, operator_) || !TemplateIsThere() || !TemplateCopied()) {
      return false;
    }
    const CurrentDatabase before = current_;
    current_.name = UnicodeUpperCase(wanted_.title);
    current_.path = wanted_.path;
    const auto make = [&] {
      if (!CopyIsBlank()) {
        return false;
      }
      if (!MadeUserFile()) {
        current_ = before;
        ReportNotMade();
        return false;
      }
      current_.unit = wanted_.unit;
      return true;
    };
    const bool made = RunOrUndo(make, [this] {
      std::error_code second_failure;  // the first one is reported
      fs::remove(wanted_.path, second_failure);
    });
    if (!made) {
      fs::remove(wanted_.path);
    }
    return made;
  }

 private:
  void ShowBox(Icon icon, std::string_view title, std::string text, std::string cause = {}) {
    vrx::ShowBox(operator_, icon, title, std::move(text), std::move(cause));
  }

  [[nodiscard]] fs::path TemplatePath() const {
    return wanted_.program_directory / words_.template_name;
  }

  bool TemplateIsThere() {
    if (wanted_.program_directory.empty()) {
      ShowBox(Icon::kCritical, "Error",
              Joined({"Sorry, cannot create a new ", words_.noun, " database file.", kLineEnd,
                      "Could not determine applications path."}));
      return false;
    }
    if (!FileExists(TemplatePath())) {
      ShowBox(Icon::kCritical, "File Missing Error",
              Joined({"Couldn't find blank ", words_.noun, " database file.", kLineEnd,
                      "Please run installation and reload support files."}),
              TemplatePath().string() + " does not exist");
      return false;
    }
    return true;
  }

  bool TemplateCopied() {
    std::error_code why;
    if (CopyFileNoOverwrite(TemplatePath(), wanted_.path, &why)) {
      return true;
    }
    const std::string problem =
        Joined({"New ", words_.noun, " database file creation failed.", kLineEnd, kLineEnd,
                "A file by the name ", wanted_.title,
                " may already exist or there might be an invalid character in the name."});
    const std::string path = wanted_.path.string();
    if (why == std::errc::file_exists) {
      ShowBox(Icon::kCritical, kCreationError, problem, Tr("%1 already exists", {path}));
    } else {
      ShowBox(Icon::kCritical, kCreationError,
              Joined({problem, kLineEnd, kLineEnd,
                      Tr("%1 cannot be written: %2", {path, why.message()})}));
    }
    return false;
  }

  // The identity has already reported what failed, but not which file.
  void ReportNotMade() {
    ShowBox(Icon::kCritical, kCreationError,
            Joined({"New ", words_.noun, " database file creation failed.", kLineEnd, kLineEnd,
                    Tr("%1 was not made: %2", {wanted_.path.string(), identity_.FailureCause()})}));
  }

  bool CopyIsBlank() {
    const std::string type = identity_.GetDatabaseType(wanted_.path);
    // For transactions the file is also dated before its type is checked.
    if (wanted_.kind == DatabaseKind::kTransaction) {
      identity_.SetDatabaseDate(wanted_.path, DateSelector::kCreated);
    }
    if (type == words_.blank_type) {
      return true;
    }
    ShowBox(
        Icon::kWarning, "Invalid Database",
        Joined({"The database file (", current_.name, ") that you specified, is not a valid nul ",
                words_.noun, " database for use with this VRX-2260 application."}),
        Tr("%1 is of type '%2'; expected '%3'",
           {TemplatePath().string(), type, std::string(words_.blank_type)}));
    return false;
  }

  // Each step reports its own failure.
  bool MadeUserFile() {
    if (wanted_.accepted) {
      wanted_.accepted();
    }
    return identity_.SetDatabaseType(wanted_.path, words_.user_type) &&
           identity_.SetDatabaseUoM(wanted_.path, wanted_.unit) &&
           identity_.SetDatabaseDate(wanted_.path, DateSelector::kCreated);
  }

  const NewDatabase& wanted_;
  const KindTexts& words_;
  DatabaseIdentity& identity_;
  Operator& operator_;
  CurrentDatabase& current_;
};

}  // namespace

bool AcceptDatabaseName(const std::string& title, Operator& op) {
  if (ValidDatabaseName(title)) {
    return true;
  }
  ShowBox(op, Icon::kWarning, "Filename Error",
          Joined({title, " is an invalid filename.", kLineEnd,
                  "Please enter a name with a maximum of eight characters (the file extension is "
                  "not required)."}));
  return false;
}

bool CreateDatabase(const NewDatabase& wanted, DatabaseIdentity& identity, Operator& op,
                    CurrentDatabase& current) {
  return RunReported(op, {.title = TextsOf(wanted.kind).new_failure},
                     [&] { return Creation(wanted, identity, op, current).Run(); });
}

}  // namespace vrx
