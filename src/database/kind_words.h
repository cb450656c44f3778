#pragma once

#include <string_view>

#include "database/schema.h"

namespace vrx {

// The words in which the two kinds of database differ.
struct KindWords {
  std::string_view noun;  // within the messages
  std::string_view template_name;
  std::string_view blank_type;
  std::string_view user_type;
  std::string_view extension;  // default extension of the dialogs
  std::string_view filter;
  std::string_view new_dialog_title;
  std::string_view open_dialog_title;
  std::string_view save_as_dialog_title;
  // Titles of the boxes that tell a trapped failure.
  std::string_view new_failure;
  std::string_view open_failure;
  std::string_view close_failure;
  std::string_view save_as_failure;
  // Keys of the per-user settings.
  std::string_view recent_path_key;
  std::string_view recent_name_key;
};

const KindWords& WordsOf(DatabaseKind kind);

}  // namespace vrx
