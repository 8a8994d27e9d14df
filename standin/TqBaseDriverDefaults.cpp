#include "host/TqBaseDriver.h"

#include <string>

// The host's calls that concern neither messages nor variables. The stand-in has no project, no
// audio and video in rooms, no network and no timers, so these do nothing and answer with nothing.

namespace {

const std::string s_Empty;

}  // namespace

bool TqBaseDriver::QueryInterface(const std::string&, void** out) {
  *out = nullptr;
  return false;
}

unsigned long TqBaseDriver::GetRoomId() const { return 0; }
unsigned long TqBaseDriver::GetDeviceId() const { return m_DeviceId; }
const std::string& TqBaseDriver::GetDeviceName() const { return s_Empty; }
unsigned long TqBaseDriver::GetDeviceType() const { return 0; }
const std::string* TqBaseDriver::GetDeviceRoomNameAddr() const { return &s_Empty; }
const unsigned long* TqBaseDriver::GetDeviceStateAddr() const { return nullptr; }
void TqBaseDriver::SetRoomName() {}
void TqBaseDriver::HaveBeenIdentified() {}
void TqBaseDriver::LateInitialize() {}
DriverMultiplicity TqBaseDriver::GetMultiplicity() { return m_Multiplicity; }
void TqBaseDriver::OnDriverAdded() {}
void TqBaseDriver::OnDestroy() {}
void TqBaseDriver::RemovedFromProject() {}
void TqBaseDriver::OnAVRoomOff(unsigned long) {}
tq::auto_com<TqXML::INode> TqBaseDriver::GetIdentifyStrings() { return {}; }
const std::string& TqBaseDriver::GetModel() { return s_Empty; }
const std::string& TqBaseDriver::GetControlTag() const { return s_Empty; }
const std::string& TqBaseDriver::GetStringNameDriver() const { return s_Empty; }
const std::string& TqBaseDriver::GetStringNameProxy() const { return s_Empty; }
void TqBaseDriver::OnDriverNameChanged(const std::string&) {}
tq::auto_com<TqXML::INode> TqBaseDriver::GetCapabilities(unsigned long) { return {}; }
tq::auto_com<TqXML::INode> TqBaseDriver::GetPersistState(unsigned long) { return {}; }
tq::auto_com<TqXML::INode> TqBaseDriver::GetEvents() { return {}; }
tq::auto_com<TqXML::INode> TqBaseDriver::GetInitializeData(unsigned long) { return {}; }
void TqBaseDriver::OnAVSelected(const AVParams&, const AV_Class&, const AV_Class&,
                                const AVLocationInfo&, const AVDriverLocationInfo*, AVReturn&) {}
void TqBaseDriver::OnAVReSelected(const AVParams&, const AV_Class&, const AV_Class&,
                                  const AVLocationInfo&, const AVDriverLocationInfo*, AVReturn&) {}
void TqBaseDriver::OnAVDeselected(const AVParams&, const AV_Class&, const AV_Class&) {}
void TqBaseDriver::OnAVAddLocationInfo(const AVParams&, const AV_Class&, const AV_Class&,
                                       AVLocationInfo&, AVDriverLocationInfo**) {}
bool TqBaseDriver::IsAVOutputToInputValid(const AVParams&, const AV_Class&, const AV_Class&) {
  return false;
}
bool TqBaseDriver::IsAVMultiSelect(const AVParams&, const AV_Class&, const AV_Class&) {
  return false;
}
bool TqBaseDriver::IsAVSourceAvailable(const AVParams&, const AV_Class&, const AV_Class&) {
  return false;
}
unsigned long TqBaseDriver::GetDriverType() const { return 0; }
IDeviceCommon* TqBaseDriver::GetDeviceCommon() { return this; }
IDeviceIP* TqBaseDriver::GetDeviceIP() { return nullptr; }
void TqBaseDriver::OnRoomNameChanged(const std::string&) {}
tq::auto_com<TqXML::INode> TqBaseDriver::GetDeviceBindingInfo(unsigned long) { return {}; }
std::string TqBaseDriver::GetEventLabel(unsigned long) const { return {}; }
void TqBaseDriver::OnVariableChanged(unsigned long, unsigned long, const std::string&) {}
void TqBaseDriver::OnConnectionStatusChanged(unsigned long, int, OStatus) {}
void TqBaseDriver::OnDataIn(unsigned long, int, const unsigned char*, unsigned int) {}
void TqBaseDriver::OnDataIn(unsigned long, int, const ITqProtocolPacket&) {}
void TqBaseDriver::OnPoll(unsigned long, int) {}
void TqBaseDriver::OnNetworkBound(unsigned long, long) {}
void TqBaseDriver::OnEventFired(unsigned long, unsigned long) {}
void TqBaseDriver::OnTimerExpired(unsigned long, long) {}
void TqBaseDriver::OnNetworkBindingChanged(unsigned long, bool) {}
