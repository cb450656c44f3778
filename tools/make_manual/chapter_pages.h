#pragma once

#include <filesystem>
#include <vector>

#include "make_manual/typeset.h"

namespace vrx::manual {

// Each chapter as a page of HTML in the folder, with the picture files that it shows, for F1 in the
// program. Uses only what QTextBrowser shows too. Removes what the folder has. Throws Error.
void WriteChapterPages(const std::vector<Chapter>& chapters, const Pictures& pictures,
                       const std::filesystem::path& folder);

}  // namespace vrx::manual
