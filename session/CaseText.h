#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace session {

// The records that came after each line of a case, by the line's number; 0 is creation. Lines that
// are no steps have none.
using CaseRecords = std::vector<std::vector<std::string>>;

struct CaseText {
  std::string text;
  std::size_t changed;  // how many records were changed, added or removed
};

// A case with these records in place of its own; creation gets none if it had none. Everything else
// stays as it is, to the byte. Records take the place of the first old one, or stand right behind
// their line, and end as the first line does. Requires: `came` has a place for each line.
CaseText WithRecords(std::string_view old, const CaseRecords& came);

}  // namespace session
