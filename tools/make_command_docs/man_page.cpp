#include "make_command_docs/man_page.h"

namespace vrx {
namespace {

// Escapes a text so that troff prints it unchanged.
std::string Plain(const std::string& text) {
  std::string plain;
  for (const char character : text) {
    if (character == '\\') {
      plain += "\\e";
    } else if (character == '-') {
      plain += "\\-";
    } else {
      plain += character;
    }
  }
  return plain.starts_with('.') || plain.starts_with('\'') ? "\\&" + plain : plain;
}

std::string Bold(const std::string& text) { return "\\fB" + Plain(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Plain(text) + "\\fR"; }

std::string Joined(const std::vector<std::string>& words, const std::string& between) {
  std::string joined;
  for (const std::string& word : words) {
    joined += (joined.empty() ? "" : between) + Bold(word);
  }
  return joined;
}

std::string Value(const Argument& argument) {
  return argument.choices.empty() ? Italic(argument.value) : Joined(argument.choices, "|");
}

bool IsHelp(const Argument& option) { return option.names.back() == "--help"; }

std::string Usage(const CommandNode& node, const std::string& program) {
  std::string usage = Bold(program + " " + node.path);
  for (const Argument& positional : node.positionals) {
    const std::string word =
        positional.choices.empty() ? Italic(positional.names.front()) : Value(positional);
    usage += positional.required ? " " + word : " [" + word + "]";
  }
  bool optional = false;
  for (const Argument& option : node.options) {
    if (option.required) {
      usage += " " + Bold(option.names.back()) + " " + Value(option);
    } else {
      optional = optional || !IsHelp(option);
    }
  }
  return usage + (optional ? " [" + Italic("options") + "]" : "");
}

std::string Item(const Argument& argument) {
  const bool positional = !argument.names.front().starts_with('-');
  std::string head = positional ? Italic(argument.names.front()) : Joined(argument.names, ", ");
  if (!positional && !argument.value.empty()) {
    head += " " + Value(argument);
  }
  std::string text = argument.description;
  if (!argument.range.empty()) {
    text += " (" + argument.range + ")";
  }
  return ".TP\n" + head + "\n" + Plain(text) + ".\n";
}

bool DoesSomething(const CommandNode& node) {
  return node.subcommands.empty() || !node.positionals.empty();
}

std::string Section(const CommandNode& node, const std::string& program) {
  std::string section = ".SS " + Plain(node.path) + "\n" + Plain(node.description) + ".\n.PP\n" +
                        Usage(node, program) + "\n";
  for (const Argument& positional : node.positionals) {
    section += Item(positional);
  }
  for (const Argument& option : node.options) {
    if (!IsHelp(option)) {
      section += Item(option);
    }
  }
  if (!node.footer.empty()) {
    section += ".PP\n" + Plain(node.footer.front()) + "\n.PP\n.EX\n";
    for (std::size_t line = 1; line < node.footer.size(); ++line) {
      section += Plain(node.footer[line]) + "\n";
    }
    section += ".EE\n";
  }
  return section;
}

}  // namespace

std::string ManCommands(const CommandNode& tool, const std::string& program) {
  std::string text;
  for (const CommandNode& node : tool.subcommands) {
    if (DoesSomething(node)) {
      text += Section(node, program);
    }
    text += ManCommands({.path = {},
                         .description = {},
                         .positionals = {},
                         .options = {},
                         .footer = {},
                         .subcommands = node.subcommands},
                        program);
  }
  return text;
}

std::string ManOptions(const CommandNode& tool) {
  std::string text;
  for (const Argument& option : tool.options) {
    text += Item(option);
  }
  return text;
}

}  // namespace vrx
