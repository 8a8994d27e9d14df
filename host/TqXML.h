#pragma once

#include "host/HostApi.h"
#include "host/INode.h"
#include "host/auto_com.h"

#include <string>

namespace TqXML {

// A parsed XML text. The order of the operations is part of the binary interface.
class HOST_API IDocument {
 public:
  // Only auto_com calls these. Both return the number of references afterwards.
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // The root element. It belongs to the document and lives as long.
  virtual INode& GetRootNode() = 0;

 protected:
  ~IDocument() = default;
};

// Each factory returns one reference, which the caller owns. An empty holder means that the host
// could not make the object. The stand-in throws std::bad_alloc when memory runs out.

// A new element without a name or a value.
HOST_API tq::auto_com<INode> CreateXmlNode();

// A new element with that name and text value; an empty value gives an empty element.
HOST_API tq::auto_com<INode> CreateXmlNode(const std::string& name, const std::string& value);

// Parses XML text. The holder is empty when the text is no document. The stand-in takes well-formed
// XML 1.0 in UTF-8 that has no entities of its own.
HOST_API tq::auto_com<IDocument> CreateXmlDocument(const std::string& xml);

}  // namespace TqXML
