#pragma once

#include <memory>
#include <string>
#include <vector>

// What a document consists of, to be built by another library.
struct Element {
  std::string name;
  std::string text;
  std::vector<std::shared_ptr<const Element>> children;
};
Element Describe(const std::string& xml);

// Builds a new document and returns its text.
std::string PrintWithPugixml(const Element& root);

// Bytes of the heap that a pugixml document of these elements takes.
std::size_t HeapOfPugixml(const Element& root);
