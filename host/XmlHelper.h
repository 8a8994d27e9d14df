#pragma once

#include "host/HostApi.h"
#include "host/INode.h"

class HOST_API XmlHelper {
 public:
  // Appends a child element. The child belongs to `parent`, lives as long as it, and is never
  // released by the caller. Requires: `parent` has a name; `name` and `value` are not null.
  static TqXML::INode* AddChild(TqXML::INode& parent, const char* name, const char* value);
};
