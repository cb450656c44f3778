#pragma once

#include <QIcon>
#include <string_view>

namespace vrx {

// An icon of data/icons by its file's name without extension. Drawn anew for each size and scale,
// in the colours of the application's present palette: what the drawing has in black takes the text
// colour of buttons, what it has in royal blue that of a selection.
//
// The drawings are 24 pixels square, their lines 2 wide with their edges on even pixels, so that
// they stay sharp when everything is drawn half as large again.
QIcon SvgIcon(std::string_view name);

}  // namespace vrx
