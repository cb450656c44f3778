#pragma once

#include <QImage>
#include <span>
#include <string_view>

#include "make_manual/sample_program.h"

namespace vrx::manual {

// A picture of the program, by the name that the source of the manual calls it.
struct Figure {
  std::string_view name;
  QImage (*grab)(SampleProgram& program);
};

// Each brings the program into the state that it shows; they are taken in the order of the table.
std::span<const Figure> Figures();

}  // namespace vrx::manual
