#pragma once

#include "host/INode.h"

#include <initializer_list>
#include <string>

// A named value of a document. Both texts are borrowed for the call that takes it.
struct NamedValue {
  const std::string& name;
  const std::string& value;
};

// Inline, so that compilers write out the calls, without a list in memory.
inline void AddValues(TqXML::INode& node, std::initializer_list<NamedValue> values) {
  for (const NamedValue& value : values) node.AddNamedValue(value.name, value.value);
}
