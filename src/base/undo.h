#pragma once

#include <concepts>
#include <utility>

namespace vrx {

// Runs an action and returns its result. If it throws, runs `undo` before the exception goes on.
template <std::invocable Action, std::invocable Undo>
decltype(auto) RunOrUndo(Action&& action, Undo&& undo) {
  try {
    return std::forward<Action>(action)();
  } catch (...) {
    std::forward<Undo>(undo)();
    throw;
  }
}

}  // namespace vrx
