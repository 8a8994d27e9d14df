#pragma once

#include "host/HandlerTable.h"
#include "host/HostApi.h"
#include "host/ICmdMessage.h"
#include "host/ICmdReturn.h"

#include <boost/function.hpp>

#include <string>

// Delivers commands by name. A handler borrows the command and the place for its answer, which may
// be null.
class HOST_API CmdDispatcher {
 public:
  using Handler = boost::function<void(const ICmdMessage&, ICmdReturn*)>;

  // As NtfDispatcher::RegisterNtf.
  void RegisterCmd(const std::string& name, Handler handler);

  // The handler for that name, or null.
  const Handler* Find(const std::string& name) const;

 private:
  HandlerTable<Handler> m_Handlers;
};
