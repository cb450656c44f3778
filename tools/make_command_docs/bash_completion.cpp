#include "make_command_docs/bash_completion.h"

namespace vrx {
namespace {

std::string NameOf(const CommandNode& node) {
  const auto blank = node.path.rfind(' ');
  return blank == std::string::npos ? node.path : node.path.substr(blank + 1);
}

std::string Branch(const std::string& key, const std::string& words) {
  return "    '" + key + "') echo '" + words + "' ;;\n";
}

// Determined by the name of the value or of the positional argument in the help.
std::string Kind(const Argument& argument, const std::string& name) {
  std::string kind;
  for (const std::string& choice : argument.choices) {
    kind += (kind.empty() ? "" : " ") + choice;
  }
  if (!kind.empty()) {
    return kind;
  }
  if (name == "DIR") {
    return "@dir";
  }
  if (name == "RDB" || name == "rdb") {
    return "@rdb";
  }
  if (name == "TDB" || name == "tdb") {
    return "@tdb";
  }
  const bool is_file = name == "file" || name.find("FILE") != std::string::npos || name == "DEV" ||
                       name == "old" || name == "new";
  return is_file ? "@file" : "@text";
}

}  // namespace

std::string CompletionWords(const CommandNode& tool) {
  std::string words;
  for (const CommandNode& node : tool.subcommands) {
    words += NameOf(node) + " ";
  }
  for (const Argument& option : tool.options) {
    for (const std::string& name : option.names) {
      words += name + " ";
    }
  }
  words.pop_back();
  std::string text = Branch(tool.path, words);
  for (const CommandNode& node : tool.subcommands) {
    text += CompletionWords(node);
  }
  return text;
}

std::string CompletionValues(const CommandNode& tool) {
  std::string text;
  int number = 0;
  for (const Argument& positional : tool.positionals) {
    text += Branch(tool.path + " " + std::to_string(++number),
                   Kind(positional, positional.names.front()));
  }
  for (const Argument& option : tool.options) {
    if (!option.value.empty()) {
      text += Branch(tool.path + " " + option.names.back(), Kind(option, option.value));
    }
  }
  for (const CommandNode& node : tool.subcommands) {
    text += CompletionValues(node);
  }
  return text;
}

}  // namespace vrx
