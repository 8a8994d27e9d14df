#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace driverhost {

// A document for a reader: one element a line, indented, each line legible. Lines after the first
// begin with `margin` blanks more. A text that is no document is shown as it is.
std::string Indented(std::string_view xml, std::size_t margin);

// Where and how two documents first differ in elements, attributes, order or texts, in one legible
// line; empty when they do not, whatever their bytes.
std::string FirstDifference(std::string_view expected, std::string_view came);

}  // namespace driverhost
