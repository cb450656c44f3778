#include "ctl/examples.h"

#include <string>

#include <CLI/CLI.hpp>

namespace vrx {

void AddExamples(CLI::App& command, std::initializer_list<Example> examples) {
  std::string text = "Examples:";
  for (const Example& example : examples) {
    text.append("\n  vrx2260ctl ").append(example.call);
    text.append("\n      ").append(example.does);
  }
  command.footer(text);
}

}  // namespace vrx
