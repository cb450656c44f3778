#pragma once

#include <string>

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
class Option;
}  // namespace CLI

namespace vrx {

// Refuses all but decimal digits, with or without a sign, that make a number from `first` to
// `last`. The library's own check takes 010 for 8 and 0x10 for 16.
CLI::Option* RequireWholeNumber(CLI::Option* option, int first, int last);

// An option, or by a name without dashes an argument, that takes such a number. `number` outlives
// the App.
CLI::Option* AddWholeNumber(CLI::App& app, const std::string& name, const std::string& help,
                            int first, int last, int& number);

// A required argument for the number of a record, from 1 to `last`. `number` outlives the App.
CLI::Option* AddRecordNumber(CLI::App& app, const std::string& name, const std::string& help,
                             int last, int& number);

}  // namespace vrx
