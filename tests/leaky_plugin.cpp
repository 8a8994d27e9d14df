// A plug-in that forgets two nodes and makes no driver.

#include "host/IDriver.h"
#include "host/TqXML.h"

CreationFunc GetCreationFunc() {
  return [](IInstanceManager&) -> IDriver* {
    TqXML::CreateXmlNode()->AddRef();
    TqXML::CreateXmlNode()->AddRef();
    return nullptr;
  };
}
