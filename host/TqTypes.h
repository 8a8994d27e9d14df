#pragma once

namespace TqTypes {

// The types of a state variable, with the host's codes.
enum class VariableType : int { Text = 1 };

}  // namespace TqTypes

enum class DriverMultiplicity : int { One = 1 };

// Types that drivers only pass on.
enum class BindingType : int;
enum class OStatus : int;
class AVParams;
class AVReturn;
class AV_Class;
class ICondMessage;
class IDeviceIP;
class ITqProtocolPacket;
struct AVDriverLocationInfo;
struct AVLocationInfo;
