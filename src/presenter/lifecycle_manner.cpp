#include "presenter/lifecycle_manner.h"

#include <array>

#include "presenter/command_states.h"

namespace vrx {

namespace {

constexpr Milliseconds kNoDelay{0};

constexpr std::array kRecipeTabs{+kTabIngredients, +kTabPens, +kTabRecipes};
constexpr std::array kTransactionTabs{+kTabBatchedFed};

constexpr LifecycleManner kRecipeManner{.goes_to_transfer_tab = true,
                                        .new_delay = Milliseconds{1000},
                                        .browse_delay = Milliseconds{500},
                                        .save_as_delay = Milliseconds{500},
                                        .save_as_tests_name = true,
                                        .open_stands_by = true,
                                        .new_beeps = true,
                                        .tabs_of_new = kRecipeTabs};

constexpr LifecycleManner kTransactionManner{.goes_to_transfer_tab = false,
                                             .new_delay = kNoDelay,
                                             .browse_delay = kNoDelay,
                                             .save_as_delay = kNoDelay,
                                             .save_as_tests_name = false,
                                             .open_stands_by = false,
                                             .new_beeps = false,
                                             .tabs_of_new = kTransactionTabs};

}  // namespace

const LifecycleManner& MannerOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? kRecipeManner : kTransactionManner;
}

}  // namespace vrx
