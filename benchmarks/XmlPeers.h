#pragma once

#include <memory>
#include <string>
#include <vector>

// What a document consists of, to be built by other libraries.
struct Element {
  std::string name;
  std::string text;
  std::vector<std::shared_ptr<const Element>> children;
};
Element Describe(const std::string& xml);

// Each builds a new document and returns its text.
std::string PrintWithPugixml(const Element& root);
std::string PrintWithLibxml2(const Element& root);

// Bytes of the heap that a pugixml document of these elements takes.
std::size_t HeapOfPugixml(const Element& root);
