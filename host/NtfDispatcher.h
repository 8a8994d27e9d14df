#pragma once

#include "host/HandlerTable.h"
#include "host/HostApi.h"
#include "host/IBindMessage.h"

#include <boost/function.hpp>

#include <string>

// Delivers the bound device's notifications by name. A handler borrows the message.
class HOST_API NtfDispatcher {
 public:
  using Handler = boost::function<void(const IBindMessage&)>;

  // `handler` receives each notification of that name, for the life of the driver. In the stand-in
  // a name that is registered again gets the new handler.
  void RegisterNtf(const std::string& name, Handler handler);

  // `handler` receives each notification whose name has no handler.
  void RegisterDefaultNtf(Handler handler);

  // The handler for that name, else the default one; null when there is neither.
  const Handler* Find(const std::string& name) const;

 private:
  HandlerTable<Handler> m_Handlers;
  Handler m_Default;
};
