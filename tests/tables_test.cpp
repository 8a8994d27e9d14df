#include <cxxabi.h>
#include <dlfcn.h>

#include <cstring>
#include <memory>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/Bench.h"

namespace {

// Every table in the order in which it stands in the object, one operation behind another; "media"
// marks those that the plug-in overrides.
const char* const s_Tables[] = {
    "AddRef()|Release()|QueryInterface(|BoundCall(|media OnBindingChanged|media ~|media ~ and free|"
    "GetRoomId() const|GetDeviceId() const|GetDeviceName() const|GetDeviceType() const|"
    "GetDeviceRoomNameAddr() const|GetDeviceStateAddr() const|SetRoomName()|HaveBeenIdentified()|"
    "LateInitialize()|GetMultiplicity()|media Initialize|OnDriverAdded()|OnDestroy()|RemovedFromProject()|"
    "OnAVRoomOff(unsigned long)|GetIdentifyStrings()|GetModel()|GetControlTag() const|"
    "GetStringNameDriver() const|GetStringNameProxy() const|OnDriverNameChanged(|GetCapabilities(unsigned long)|"
    "media GetPersistState|GetEvents()|ExecuteCommand(|GetInitializeData(unsigned long)|TestCondition(|"
    "UIRequest(|OnAVSelected(|OnAVReSelected(|OnAVDeselected(|OnAVAddLocationInfo(|IsAVOutputToInputValid(|"
    "IsAVMultiSelect(|IsAVSourceAvailable(|GetDriverType() const|GetDeviceCommon()|GetDeviceIP()|"
    "OnRoomNameChanged(|GetDeviceBindingInfo(unsigned long)|GetEventLabel(unsigned long) const|VmAdd(|"
    "VmRemove(unsigned long)|OnVariableChanged(|OnConnectionStatusChanged(|"
    "OnDataIn(unsigned long, int, unsigned char const*, unsigned int)|"
    "OnDataIn(unsigned long, int, ITqProtocolPacket const&)|OnPoll(unsigned long, int)|"
    "OnNetworkBound(unsigned long, long)|OnEventFired(unsigned long, unsigned long)|"
    "OnTimerExpired(unsigned long, long)|OnNetworkBindingChanged(unsigned long, bool)|HandleNotification(|"
    "media RegisterCommands|media RegisterNotifications|media RegisterConditionals|media RegisterVariables|"
    "media UnregisterVariables",
    "AddRef()|Release()|QueryInterface(|OnConnectionStatusChanged(|"
    "OnDataIn(unsigned long, int, unsigned char const*, unsigned int)|OnPoll(|OnNetworkBound(",
    "LateInitialize()|GetDeviceId() const|GetDeviceName() const|GetDeviceType() const|"
    "GetDeviceRoomNameAddr() const|GetDeviceStateAddr() const|OnRoomNameChanged(",
    "AddRef()|Release()|QueryInterface(|GetMultiplicity()|media Initialize|OnDriverAdded()|OnDestroy()|"
    "RemovedFromProject()|OnAVRoomOff(|GetStringNameDriver() const|GetStringNameProxy() const|"
    "OnDriverNameChanged(|GetCapabilities(|media GetPersistState|GetEvents()|ExecuteCommand(|GetInitializeData(|"
    "TestCondition(|UIRequest(|GetIdentifyStrings()|GetModel()|OnAVSelected(|OnAVReSelected(|OnAVDeselected(|"
    "OnAVAddLocationInfo(|IsAVOutputToInputValid(|IsAVMultiSelect(|IsAVSourceAvailable(|GetControlTag() const|"
    "LateInitialize()|GetDriverType() const|GetDeviceCommon()|GetDeviceIP()|GetDeviceBindingInfo(|GetEventLabel(",
    "AddRef()|Release()|QueryInterface(|OnEventFired(",
    "AddRef()|Release()|QueryInterface(|OnNetworkBindingChanged(",
    "OnTimerExpired(",
    "AddRef()|Release()|QueryInterface(|OnVariableChanged(|GetDeviceId() const",
};

std::vector<std::string> Operations(std::size_t table) {
  std::vector<std::string> operations;
  std::istringstream names(s_Tables[table]);
  for (std::string name; std::getline(names, name, '|');) operations.push_back(name);
  return operations;
}

std::string Demangled(const char* name) {
  if (!name) return "?";
  const std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(name, nullptr, nullptr, nullptr),
                                                         &std::free);
  std::string readable = text ? text.get() : name;
  const auto tag = readable.find("[abi:cxx11]");
  if (tag != std::string::npos) readable.erase(tag, 11);
  return readable;
}

// The slot of a virtual member function, which the C++ ABI keeps in its pointer.
template <class Function>
std::size_t Slot(Function function) {
  std::size_t offset = 0;
  std::memcpy(&offset, &function, sizeof offset);
  return offset / sizeof(void*);
}

}  // namespace

TEST(Tables, HoldTheOperationsInOrder) {
  Bench bench;
  const auto* object = reinterpret_cast<void** const*>(&bench.host.Object());
  EXPECT_EQ(reinterpret_cast<const void*>(&bench.host.Driver()), object + 3);
  for (std::size_t t = 0; t < std::size(s_Tables); ++t) {
    std::size_t slot = 0;
    for (const std::string& operation : Operations(t)) {
      SCOPED_TRACE("table " + std::to_string(t) + " slot " + std::to_string(slot) + " " + operation);
      Dl_info info{};
      ASSERT_NE(dladdr(object[t][slot++], &info), 0);
      const bool inPlugin = std::string(info.dli_fname).find("media.so") != std::string::npos;
      EXPECT_EQ(inPlugin, operation.rfind("media ", 0) == 0);
      if (!inPlugin) {
        EXPECT_NE(Demangled(info.dli_sname).find("Driver::" + operation), std::string::npos)
            << Demangled(info.dli_sname);
      }
    }
  }
}

TEST(Tables, PlaceTheOverriddenOperations) {
  const struct {
    std::size_t table;
    const char* operation;
    std::size_t slot;
  } cases[] = {
      {0, "media OnBindingChanged", Slot(&TqBaseDriver::OnBindingChanged)},
      {0, "media Initialize", Slot(&TqBaseDriver::Initialize)},
      {0, "media GetPersistState", Slot(&TqBaseDriver::GetPersistState)},
      {0, "media RegisterCommands", Slot(&TqBaseDriver::RegisterCommands)},
      {0, "media RegisterNotifications", Slot(&TqBaseDriver::RegisterNotifications)},
      {0, "media RegisterConditionals", Slot(&TqBaseDriver::RegisterConditionals)},
      {0, "media RegisterVariables", Slot(&TqBaseDriver::RegisterVariables)},
      {0, "media UnregisterVariables", Slot(&TqBaseDriver::UnregisterVariables)},
      {3, "media Initialize", Slot(&IDriver::Initialize)},
      {3, "media GetPersistState", Slot(&IDriver::GetPersistState)},
  };
  for (const auto& test : cases) EXPECT_EQ(Operations(test.table).at(test.slot), test.operation);
}

TEST(Tables, AnswerWithTheBaseClassesDefaults) {
  Bench bench;
  auto& driver = bench.host.Driver();
  EXPECT_EQ(driver.GetDeviceCommon(), static_cast<IDeviceCommon*>(&bench.host.Object()));
  EXPECT_EQ(driver.GetDeviceIP(), nullptr);
  EXPECT_EQ(driver.GetEventLabel(0), "");
  EXPECT_EQ(driver.GetMultiplicity(), DriverMultiplicity::One);
  EXPECT_EQ(driver.GetDeviceCommon()->GetDeviceId(), 7U);
  const auto message = standin::MakeNotification("X", {});
  bench.host.Object().BoundCall(5002, {}, "", *message, nullptr);
  EXPECT_TRUE(bench.recorder.Take().empty());
  EXPECT_EQ(driver.AddRef(), 2U);
  EXPECT_EQ(driver.Release(), 1U);
}
