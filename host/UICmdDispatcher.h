#pragma once

#include "host/HandlerTable.h"
#include "host/HostApi.h"
#include "host/ICmdMessage.h"
#include "host/INode.h"
#include "host/auto_com.h"

#include <boost/function.hpp>

#include <string>

// Delivers user-interface requests by name. A handler borrows the request. The node that it returns
// is the answer, and its reference passes to the host; an empty holder says that there is none.
class HOST_API UICmdDispatcher {
 public:
  using Handler = boost::function<tq::auto_com<TqXML::INode>(const ICmdMessage&)>;

  // As NtfDispatcher::RegisterNtf.
  void RegisterUICmd(const std::string& name, Handler handler);

  // The handler for that name, or null.
  const Handler* Find(const std::string& name) const;

 private:
  HandlerTable<Handler> m_Handlers;
};
