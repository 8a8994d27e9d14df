#pragma once

#include "driverhost/run/Verdict.h"

#include <cstddef>
#include <string>
#include <vector>

namespace driverhost {

// A line of a case whose traffic is not as expected, with both lists of records as JSON.
struct CaseDifference {
  unsigned long line;
  std::string title;  // of the line
  std::vector<std::string> expected;
  std::vector<std::string> came;
  std::string words;      // what differs, in lines for a reader
  std::size_t times = 1;  // how often the same came, here first
};

// What a case came to.
struct CaseResult {
  std::string path;
  ExitStatus status = s_AllWell;
  std::size_t lines = 0;
  std::size_t records = 0;
  std::size_t updated = 0;  // the records that an update has changed, added or removed
  std::vector<CaseDifference> differences;
};

// "CASE:LINE: title" and the words below, with their line breaks.
std::string DifferenceText(const CaseResult& result, const CaseDifference& difference);

// "ok CASE (12 lines, 40 records)", with its line break.
std::string ResultText(const CaseResult& result);

// The same as one JSON object: {"case":...,"result":"ok","lines":12,"records":40,"differences":[]}.
// A difference is {"line":3,"expected":[RECORD...],"came":[RECORD...]}, with "times" at its end
// when it came more than once.
std::string ResultJson(const CaseResult& result);

}  // namespace driverhost
