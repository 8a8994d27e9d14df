// A driver for a light. The light reports how bright it is; the driver tells the rest of the house.

#include "host/LogXMessage.h"
#include "host/ToString.h"
#include "host/TqBaseProxyDriver.h"
#include "host/TqXML.h"

#include <charconv>
#include <optional>
#include <string>
#include <utility>

namespace {

// A percentage. What a device says is checked here, and nowhere else.
std::optional<unsigned long> ReadLevel(const std::string& text) {
  unsigned long level = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, level);
  if (error != std::errc() || stop != end || level > 100) return std::nullopt;
  return level;
}

class Light final : public TqBaseProxyDriver {
 public:
  explicit Light(IInstanceManager& im)
      : TqBaseProxyDriver(im, s_LightBinding, DriverMultiplicity::One) {
    Light::RegisterNotifications();
    Light::RegisterCommands();
  }

  // What the host throws here is dropped: nobody could catch it.
  ~Light() override {
    try {
      Light::UnregisterVariables();
    } catch (...) {
    }
  }

 private:
  static constexpr unsigned long s_LightBinding = 5001;
  static constexpr unsigned long s_LevelVariable = 1000;
  static constexpr unsigned long s_OnEvent = 0;
  static constexpr unsigned long s_OffEvent = 1;

  void RegisterNotifications() override {
    m_NtfDispatcher.RegisterNtf("LIGHT_LEVEL_CHANGED",
                                [this](const IBindMessage& msg) { OnNtfLevelChanged(msg); });
  }
  void RegisterCommands() override {
    m_CmdDispatcher.RegisterCmd("TOGGLE", [this](const ICmdMessage&, ICmdReturn*) { Toggle(); });
    m_UICmdDispatcher.RegisterUICmd("GET_LIGHT_LEVEL", [this](const ICmdMessage&) {
      return TqXML::CreateXmlNode("level", tq::ToString(m_Level));
    });
  }
  void RegisterConditionals() override {}
  void RegisterVariables() override {
    VmAdd(s_LevelVariable, "LIGHT_LEVEL", TqTypes::VariableType::Text, tq::ToString(m_Level), 0, 0,
          "");
  }
  void UnregisterVariables() override { VmRemove(s_LevelVariable); }

  // User interfaces are told each report; events and the variable follow what has changed.
  void OnNtfLevelChanged(const IBindMessage& msg) {
    const std::string text = msg.GetParamText("level");
    const auto level = ReadLevel(text);
    if (!level) {
      LogXMessage(3, "light: invalid level \"%s\"", text.c_str());
      return;
    }
    const unsigned long before = std::exchange(m_Level, *level);
    if ((before == 0) != (m_Level == 0)) FireEvent(m_Level == 0 ? s_OffEvent : s_OnEvent);
    if (before != m_Level) ChangeMyVariable(s_LevelVariable, tq::ToString(m_Level));
    if (const auto document = TqXML::CreateXmlNode("LIGHT_LEVEL_CHANGED", "")) {
      document->AddNamedValue("level", tq::ToString(m_Level));
      ConSendDataToUI(*document);
    }
  }

  // Only asks the light: what comes of it, the light reports.
  void Toggle() {
    const auto command = CreateCommandMessageFromName("SET_LEVEL");
    if (!command) return;
    command->AddParamNumber("LEVEL", "INTEGER", m_Level == 0 ? 100 : 0);
    const tq::auto_com<IBindMessage> message(CreateBindMessage(*command));
    if (message) SendBoundCall(s_LightBinding, *message, nullptr);
  }

  unsigned long m_Level = 0;
};

}  // namespace

CreationFunc GetCreationFunc() {
  return [](IInstanceManager& im) -> IDriver* { return new Light(im); };
}
