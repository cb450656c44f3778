// make_command_docs TEMPLATE OUT: fills the template of a manual page or a completion script for
// vrx2260ctl from the tool's own help. The marks @COMMANDS@, @OPTIONS@, @WORDS@ and @VALUES@ are on
// separate lines.
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

#include "ctl/command_line.h"
#include "make_command_docs/bash_completion.h"
#include "make_command_docs/command_tree.h"
#include "make_command_docs/man_page.h"

namespace {

void Fill(const std::string& pattern, const std::string& result) {
  vrx::CommandNode tool;
  vrx::LookAtCommands([&](const CLI::App& app) { tool = vrx::ReadCommandTree(app); });
  std::ifstream in(pattern);
  if (!in) {
    throw std::runtime_error("cannot read " + pattern);
  }
  std::ofstream out(result, std::ios::trunc);
  for (std::string line; std::getline(in, line);) {
    if (line == "@COMMANDS@") {
      out << vrx::ManCommands(tool, "vrx2260ctl");
    } else if (line == "@OPTIONS@") {
      out << vrx::ManOptions(tool);
    } else if (line == "@WORDS@") {
      out << vrx::CompletionWords(tool);
    } else if (line == "@VALUES@") {
      out << vrx::CompletionValues(tool);
    } else {
      out << line << '\n';
    }
  }
  out.close();
  if (!out) {
    throw std::runtime_error("cannot write " + result);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: make_command_docs TEMPLATE OUT\n";
    return 2;
  }
  try {
    Fill(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::cerr << "make_command_docs: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
