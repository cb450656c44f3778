#pragma once

#include <string>
#include <string_view>

namespace vrx {

// The stored form of a text in a Jet 4 file as UTF-8: UTF-16, or behind the bytes FF FE a form in
// which a character of one byte takes one, with a NUL wherever that form and UTF-16 take turns.
// What is no character becomes U+FFFD.
std::string DecodeJetText(std::string_view stored);

}  // namespace vrx
