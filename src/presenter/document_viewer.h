#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/system_info.h"

namespace vrx {

// The kinds of document that a viewer is looked up for.
inline constexpr std::array<std::string_view, 3> kDocumentKinds = {".DOC", ".TXT", ".PDF"};

// The path of the program that opens a document of the program's directory, with `message` empty;
// or else the text of the failure, with a second text in `message` where there is more to say.
std::string FindDocumentViewer(const SystemInfo& system, const std::string& document,
                               std::string& message);

// The same look-up for a document of any kind: true if there is a program for it.
bool HasDocumentViewer(const SystemInfo& system, const std::string& document);

}  // namespace vrx
