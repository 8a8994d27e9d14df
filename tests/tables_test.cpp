#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <cxxabi.h>
#include <dlfcn.h>

#include <cstring>
#include <memory>

namespace {

// The operations of each table, as tests/tables.txt lists them.
std::vector<std::vector<std::string>> ReadTables() {
  std::vector<std::vector<std::string>> tables(8);
  for (const auto& row : ReadRows("tables.txt")) tables.at(std::stoul(row[0])).push_back(row[1]);
  return tables;
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

unsigned long s_Flags = 1;

// The slot of a virtual member function, which the C++ ABI keeps in its pointer.
template <class Function>
std::size_t Slot(Function function) {
  std::size_t offset = 0;
  std::memcpy(&offset, &function, sizeof offset);
  return offset / sizeof(void*);
}

}  // namespace

// The plug-in finds this one before the stand-in's own, which ignores the flags.
void TqBaseProxyDriver::ExecuteCommand(const ICmdMessage& command, ICmdReturn* ret, unsigned long flags) {
  using Function = void (*)(TqBaseProxyDriver*, const ICmdMessage&, ICmdReturn*, unsigned long);
  constexpr const char* name = "_ZN17TqBaseProxyDriver14ExecuteCommandERK11ICmdMessageP10ICmdReturnm";
  s_Flags = flags;
  reinterpret_cast<Function>(dlsym(RTLD_NEXT, name))(this, command, ret, flags);
}

TEST(Tables, HoldTheOperationsInOrder) {
  Bench bench;
  const auto* object = reinterpret_cast<void** const*>(&bench.host.Object());
  EXPECT_EQ(reinterpret_cast<const void*>(&bench.host.Driver()), object + 3);
  const auto tables = ReadTables();
  for (std::size_t t = 0; t < tables.size(); ++t) {
    std::size_t slot = 0;
    for (const std::string& operation : tables[t]) {
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
  const std::tuple<std::size_t, const char*, std::size_t> cases[] = {
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
  const auto tables = ReadTables();
  for (const auto& [table, operation, slot] : cases) EXPECT_EQ(tables.at(table).at(slot), operation);
}

TEST(Tables, TakeTheCallsOfHostAndDriver) {
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
  bench(NtfXml("X", "<command name='PLAY'/>"));
  EXPECT_EQ(s_Flags, 0U);
}
