#pragma once

#include "driverhost/check/CaseResult.h"

#include <pugixml.hpp>

#include <string>

namespace driverhost {

// What cases came to, as the XML that systems for continuous integration read.
class Junit {
 public:
  Junit();

  // `told` is what was told of the case beside its differences.
  void Add(const CaseResult& result, const std::string& told, double seconds);

  // Throws std::runtime_error when the file cannot be written.
  void Write(const std::string& path);

 private:
  pugi::xml_document m_Document;
  pugi::xml_node m_Suite;
  unsigned m_Failures = 0;
  unsigned m_Tests = 0;
};

}  // namespace driverhost
