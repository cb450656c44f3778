#pragma once

#include <QWidget>
#include <optional>

#include "presenter/recipe_actions.h"
#include "presenter/services.h"

namespace vrx {

// Shows the free recipes with the proposed one selected. Returns the chosen one, nothing after a
// cancel.
std::optional<int> AskForCopy(const CopyOffer& offer, QWidget* owner);

// Shows a recipe of the open database beside another one, of the same or of another file.
void ShowComparison(const ComparedFile& file, int recipe, Services& services, QWidget* owner);

}  // namespace vrx
