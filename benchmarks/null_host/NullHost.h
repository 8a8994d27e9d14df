#pragma once

#include "host/CmdDispatcher.h"
#include "host/IBindMessage.h"
#include "host/ICmdMessage.h"
#include "host/NtfDispatcher.h"
#include "host/TqBaseProxyDriver.h"
#include "host/UICmdDispatcher.h"

#include <string>
#include <utility>
#include <vector>

// A host that does nothing: every operation of host/ returns at once, with a fixed text where it
// returns text. What a message costs here is the driver's own.
namespace null_host {

// The calls of the host's operations so far. Drivers that make equally many can be compared.
extern unsigned long s_Calls;

// Every parameter is the text, and so is the whole message.
class BindMessage final : public IBindMessage {
 public:
  explicit BindMessage(std::string text, std::string command = "")
      : m_Text(std::move(text)), m_Command(std::move(command)) {}

  unsigned long AddRef() override { return ++s_Calls; }
  unsigned long Release() override { return ++s_Calls; }
  std::string GetXml() const override { return ++s_Calls, m_Text; }
  const std::string& GetCommand() const override { return ++s_Calls, m_Command; }
  std::string GetParamText(const std::string&) const override { return ++s_Calls, m_Text; }
  std::string GetParamValue(const std::string&) const override { return ++s_Calls, m_Text; }

 private:
  const std::string m_Text;
  const std::string m_Command;
};

// Has the parameter ROOM_ID and no OUTPUT.
class CmdMessage final : public ICmdMessage {
 public:
  unsigned long AddRef() override { return ++s_Calls; }
  unsigned long Release() override { return ++s_Calls; }
  tq::auto_com<ICmdMessage> Clone() const override;
  void AddParamText(const std::string&, const std::string&, const std::string&) override {
    ++s_Calls;
  }
  void AddParamNumber(const std::string&, const std::string&, unsigned long) override { ++s_Calls; }
  bool HasParam(const std::string& name) const override { return ++s_Calls, name[0] == 'R'; }
  unsigned long GetParamNumber(const std::string&) const override { return ++s_Calls, 5; }
};

// What the driver that was made last has registered, in that order.
struct Handlers {
  std::vector<std::pair<std::string, NtfDispatcher::Handler>> notifications;
  std::vector<std::pair<std::string, CmdDispatcher::Handler>> commands;
  std::vector<std::pair<std::string, UICmdDispatcher::Handler>> requests;
};
extern Handlers s_Handlers;

// Loads a plug-in and makes a driver; both stay to the end. Throws std::runtime_error.
TqBaseProxyDriver& MakeDriver(const char* plugin);

}  // namespace null_host
