#pragma once

#include "host/HostApi.h"
#include "host/INode.h"
#include "host/auto_com.h"

#include <string>

namespace TqXML {

// A parsed XML text.
class HOST_API IDocument {
 public:
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // The root element; belongs to the document and lives as long as it.
  virtual INode& GetRootNode() = 0;

 protected:
  ~IDocument() = default;
};

// The factories hand one reference to the caller. A holder that comes back empty means that the
// host could not make the object; a failed allocation is thrown as std::bad_alloc.

// A new element without a name or a value.
HOST_API tq::auto_com<INode> CreateXmlNode();

// A new element with that name and text value; an empty value gives an empty element.
HOST_API tq::auto_com<INode> CreateXmlNode(const std::string& name, const std::string& value);

// Parses XML 1.0 text in UTF-8. The holder is empty when the text is not well-formed.
HOST_API tq::auto_com<IDocument> CreateXmlDocument(const std::string& xml);

}  // namespace TqXML
