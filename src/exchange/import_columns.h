#pragma once

#include <string>

namespace vrx {

// The caption that a column of `grdIMPORT`, 1 to 112, has at design: "Transaction", "Recipe ID" ...
// "Ing01 Wt" ... "Ing100 Wt". At run time the ingredient columns bear the ingredients' names.
std::string DesignImportCaption(int column);

// Whether a column of `grdIMPORT` holds words; all others hold numbers, aligned right.
bool IsImportText(int column);

// A column of the grid as it is shown now.
struct ImportGridColumn {
  std::string caption;
  bool visible = true;
};

}  // namespace vrx
