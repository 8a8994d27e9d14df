#pragma once

#include "host/HostApi.h"
#include "host/IBindMessage.h"
#include "host/ICmdMessage.h"
#include "host/auto_com.h"
#include "standin/Params.h"

#include <string>

namespace standin {

// These make the messages for Host, which refuses any others. A message can be delivered any number
// of times. Each starts with one reference, the caller's.

// A notification does not use the types of its parameters.
HOST_API tq::auto_com<IBindMessage> MakeNotification(const std::string& name, Params params);

// `xml` is the whole message: the children of its root are the parameters, and a root `command`
// with an attribute `name` makes it a message that carries that command. Text that is no
// document makes a message without either; the observer hears of it at each delivery.
HOST_API tq::auto_com<IBindMessage> MakeNotificationFromXml(const std::string& name,
                                                            std::string xml);

// A notification's parameters; they live as long as it.
HOST_API const Params& ParametersOf(const IBindMessage& notification);

// Whether a text is a document: well-formed XML 1.0 in UTF-8 that has no entities of its own.
HOST_API bool IsXml(const std::string& text);

// A command, or a user-interface request.
HOST_API tq::auto_com<ICmdMessage> MakeCommand(const std::string& name, Params params);

}  // namespace standin
