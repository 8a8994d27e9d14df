#pragma once

#include "host/IBindMessage.h"
#include "standin/Counted.h"
#include "standin/Observer.h"
#include "standin/Params.h"

#include <optional>
#include <string>

namespace standin {

class BindMessage final : public Counted<BindMessage, IBindMessage> {
 public:
  // `name` is what the message is dispatched by. Without a text of its own, `xml`, the message
  // makes one of its name and its parameters.
  BindMessage(std::string name, std::string command, Params params, std::optional<std::string> xml);

  static const BindMessage& Of(const IBindMessage& message);  // as in OwnOf.h

  const std::string& Name() const { return m_Name; }
  const Params& Parameters() const { return m_Params; }

  std::string GetXml() const override;
  const std::string& GetCommand() const override { return m_Command; }
  std::string GetParamText(const std::string& name) const override;
  std::string GetParamValue(const std::string& name) const override;

 private:
  ~BindMessage() = default;
  friend class Counted<BindMessage, IBindMessage>;

  // Tells the observer of the host that is calling its driver.
  std::string Read(Observer::Accessor accessor, const std::string& name) const;

  const std::string m_Name;
  const std::string m_Command;
  const Params m_Params;
  const std::optional<std::string> m_Xml;
};

}  // namespace standin
