#include "database/create.h"

#include <exception>
#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

#include "frame/files.h"
#include "frame/folder.h"
#include "frame/text.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kLineEnd = "\r\n";

// In what the two kinds differ.
struct KindWords {
  std::string_view template_name;
  std::string_view blank_type;
  std::string_view user_type;
  std::string_view noun;  // within the messages
  std::string_view failure_title;
  bool dated_before_test;  // the date of creation is set before the marker is looked at, too
};

constexpr KindWords kRecipeWords{kRecipeTemplateName,     kNulRecipeDb, kUserRecipeDb, "recipe",
                                 "New Recipe File Error", false};
constexpr KindWords kTransactionWords{
    kTransactionTemplateName,     kNulTransDb, kUserTransDb, "transaction",
    "New Transaction File Error", true};

std::string Joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) {
    text += part;
  }
  return text;
}

class Creation {
 public:
  Creation(const NewDatabase& wanted, DatabaseIdentity& identity, Operator& op,
           CurrentDatabase& current)
      : wanted_(wanted),
        words_(wanted.kind == DatabaseKind::kRecipe ? kRecipeWords : kTransactionWords),
        identity_(identity),
        operator_(op),
        current_(current) {}

  bool Run() {
    if (!NameIsValid() || !TemplateIsThere() || !TemplateCopied()) {
      return false;
    }
    current_.name = UpperCase(wanted_.title);
    current_.path = wanted_.path;
    try {
      if (CopyIsBlank() && MadeUserFile()) {
        current_.unit = wanted_.unit;
        return true;
      }
    } catch (...) {
      std::error_code second_failure;  // the first one is told
      fs::remove(wanted_.path, second_failure);
      throw;
    }
    fs::remove(wanted_.path);
    return false;
  }

  void TellFailure(const std::exception& failure) {
    Tell(Icon::kCritical, words_.failure_title, "Error: " + std::to_string(FailureNumber(failure)),
         failure.what());
  }

 private:
  void Tell(Icon icon, std::string_view title, std::string text, std::string cause = {}) {
    operator_.ShowMessage({.icon = icon,
                           .title = std::string(title),
                           .text = std::move(text),
                           .cause = std::move(cause)});
  }

  bool NameIsValid() {
    if (ValidDatabaseName(wanted_.title)) {
      return true;
    }
    Tell(Icon::kWarning, "Filename Error",
         Joined({wanted_.title, " is an invalid filename.", kLineEnd,
                 "Please enter a name with a maximum of eight characters (the file extension is "
                 "not required)."}));
    return false;
  }

  fs::path TemplatePath() const { return wanted_.program_directory / words_.template_name; }

  bool TemplateIsThere() {
    if (wanted_.program_directory.empty()) {
      Tell(Icon::kCritical, "Error",
           Joined({"Sorry, cannot create a new ", words_.noun, " database file.", kLineEnd,
                   "Could not determine applications path."}));
      return false;
    }
    if (!FileExists(TemplatePath())) {
      Tell(Icon::kCritical, "File Missing Error",
           Joined({"Couldn't find blank ", words_.noun, " database file.", kLineEnd,
                   "Please run installation and reload support files."}),
           TemplatePath().string() + " does not exist");
      return false;
    }
    return true;
  }

  bool TemplateCopied() {
    const bool existed = FileExists(wanted_.path);
    if (CopyFileNoOverwrite(TemplatePath(), wanted_.path)) {
      return true;
    }
    Tell(Icon::kCritical, "File Creation Error",
         Joined({"New ", words_.noun, " database file creation failed.", kLineEnd, kLineEnd,
                 "A file by the name ", wanted_.title,
                 " may already exist or there might be an invalid character in the name."}),
         wanted_.path.string() + (existed ? " already exists" : " cannot be written"));
    return false;
  }

  bool CopyIsBlank() {
    const std::string type = identity_.GetDatabaseType(wanted_.path);
    if (words_.dated_before_test) {
      identity_.SetDatabaseDate(wanted_.path, DateSelector::kCreated);
    }
    if (type == words_.blank_type) {
      return true;
    }
    Tell(Icon::kWarning, "Invalid Database",
         Joined({"The database file (", current_.name, ") that you specified, is not a valid nul ",
                 words_.noun, " database for use with this VRX-2260 application."}),
         Joined({TemplatePath().string(), " is of type \"", type, "\"; expected \"",
                 words_.blank_type, "\""}));
    return false;
  }

  // A step that fails has told the operator.
  bool MadeUserFile() {
    operator_.SetBusy(true);
    const bool made = identity_.SetDatabaseType(wanted_.path, words_.user_type) &&
                      identity_.SetDatabaseUoM(wanted_.path, wanted_.unit) &&
                      identity_.SetDatabaseDate(wanted_.path, DateSelector::kCreated);
    if (!made) {
      operator_.SetBusy(false);
    }
    return made;
  }

  const NewDatabase& wanted_;
  const KindWords& words_;
  DatabaseIdentity& identity_;
  Operator& operator_;
  CurrentDatabase& current_;
};

}  // namespace

bool CreateDatabase(const NewDatabase& wanted, DatabaseIdentity& identity, Operator& op,
                    CurrentDatabase& current) {
  Creation creation(wanted, identity, op, current);
  try {
    return creation.Run();
  } catch (const std::exception& failure) {
    creation.TellFailure(failure);
    return false;
  }
}

}  // namespace vrx
