#include "make_command_docs/command_tree.h"

#include <sstream>

#include <CLI/CLI.hpp>

namespace vrx {
namespace {

std::vector<std::string> Split(const std::string& text, char mark) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, mark);) {
    parts.push_back(part);
  }
  return parts;
}

// The library describes a value as "TEXT:{LB,KG}" or "NUMBER:1 to 100".
void ReadValue(const std::string& type, Argument& argument) {
  const auto colon = type.find(':');
  argument.value = type.substr(0, colon);
  if (colon == std::string::npos) {
    return;
  }
  const std::string limits = type.substr(colon + 1);
  if (limits.starts_with('{') && limits.ends_with('}')) {
    argument.choices = Split(limits.substr(1, limits.size() - 2), ',');
  } else if (limits.find(" to ") != std::string::npos) {
    argument.range = limits;
  }
}

Argument ReadArgument(const CLI::Option& option) {
  Argument argument;
  argument.description = option.get_description();
  argument.required = option.get_required();
  if (option.get_positional()) {
    argument.names.push_back(option.get_name(true));
  } else {
    for (const std::string& name : option.get_snames()) {
      argument.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
      argument.names.push_back("--" + name);
    }
  }
  if (option.get_items_expected_max() > 0) {
    ReadValue(option.get_type_name(), argument);
  }
  return argument;
}

}  // namespace

CommandNode ReadCommandTree(const CLI::App& app, const std::string& path) {
  CommandNode node{.path = path,
                   .description = app.get_description(),
                   .positionals = {},
                   .options = {},
                   .footer = Split(app.get_footer(), '\n'),
                   .subcommands = {}};
  for (const CLI::Option* option : app.get_options({})) {
    (option->get_positional() ? node.positionals : node.options).push_back(ReadArgument(*option));
  }
  const std::string before = path.empty() ? path : path + " ";
  for (const CLI::App* subcommand : app.get_subcommands({})) {
    node.subcommands.push_back(ReadCommandTree(*subcommand, before + subcommand->get_name()));
  }
  return node;
}

}  // namespace vrx
