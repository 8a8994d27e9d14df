#pragma once

#include "host/HostApi.h"
#include "host/INode.h"

// An operation on elements that INode lacks.
class HOST_API XmlHelper {
 public:
  // Adds a child element after all that was added so far, and returns it. It belongs to `parent`
  // and lives as long; the caller does not release it. Requires: `parent` has a name; `name` and
  // `value` are not null.
  static TqXML::INode* AddChild(TqXML::INode& parent, const char* name, const char* value);
};
