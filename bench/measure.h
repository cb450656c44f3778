#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace vrx::bench {

// Runs a program from PATH to its end, with its standard output in a file ("/dev/null" to discard
// it). Throws if its exit code is not 0.
void RunProgram(const std::vector<std::string>& words, const std::string& output);

double Milliseconds(const std::function<void()>& work);

double Median(std::vector<double> values);

}  // namespace vrx::bench
