#pragma once

#include <array>
#include <string_view>

namespace vrx {

// The panels of `sbRecipe` and `sbTrans` that tell of a database, by their numbers. Each stands
// behind its caption, which is the panel of the number before.
enum StatusPanel : int {
  kPanelName = 2,
  kPanelUnit = 4,
  kPanelCreated = 6,
  kPanelModified = 8,
};

struct StatusPanelWords {
  StatusPanel panel;
  std::string_view caption;
  std::string_view tooltip;
};

inline constexpr std::array<StatusPanelWords, 4> kRecipePanels{{
    {kPanelName, "Recipe dB:", "Recipe Database Filename"},
    {kPanelUnit, "Units:", "Recipe Database Weight Units"},
    {kPanelCreated, "Created:", "Recipe Database Creation Date"},
    {kPanelModified, "Modified:", "Recipe Database Last Modified Date"},
}};

inline constexpr std::array<StatusPanelWords, 4> kTransactionPanels{{
    {kPanelName, "Transaction dB:", "Transaction Database Filename"},
    {kPanelUnit, "Units:", "Transaction Database Weight Units"},
    {kPanelCreated, "Created:", "Transaction Database Creation Date"},
    {kPanelModified, "Modified:", "Transaction Database Last Modified Date"},
}};

}  // namespace vrx
