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
  // The name decides which handler gets the message. `xml` is the whole message as text; without it
  // GetXml builds the text from the name and the parameters.
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

  // Reports the read to the observer.
  std::string Read(Observer::Accessor accessor, const std::string& name) const;

  const std::string m_Name;
  const std::string m_Command;
  const Params m_Params;
  const std::optional<std::string> m_Xml;
};

}  // namespace standin
