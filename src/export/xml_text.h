#pragma once

#include <string>
#include <string_view>

namespace vrx {

// Append to an XML text. Whatever the bytes, the text stays well-formed: a character that XML does
// not know (a control character, a byte that is no UTF-8) becomes U+FFFD.
void AppendXmlText(std::string_view utf8, std::string& xml);
// For between double quotes; line ends and tabs survive a reader's normalising.
void AppendXmlAttribute(std::string_view utf8, std::string& xml);

// The name of a field as an element: each blank an "_", each "%" gone.
std::string XmlElementName(std::string_view field);

}  // namespace vrx
