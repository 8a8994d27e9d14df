#pragma once

#include "host/IBindMessage.h"
#include "standin/Counted.h"

#include <string>

namespace standin {

class BindMessage final : public Counted<BindMessage, IBindMessage> {
 public:
  // `name` is what the message is dispatched by. Without `xml` the text is made from name and
  // parameters.
  BindMessage(std::string name, std::string command, Params params, std::string xml);

  const std::string& Name() const { return m_Name; }
  const Params& Parameters() const { return m_Params; }

  std::string GetXml() const override;
  const std::string& GetCommand() const override { return m_Command; }
  std::string GetParamText(const std::string& name) const override;
  std::string GetParamValue(const std::string& name) const override;

 private:
  ~BindMessage() = default;
  friend class Counted<BindMessage, IBindMessage>;

  std::string Read(const char* accessor, const std::string& name) const;

  const std::string m_Name;
  const std::string m_Command;
  const Params m_Params;
  const std::string m_Xml;
};

}  // namespace standin
