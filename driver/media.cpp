#include "driver/media.h"

#include "host/IHostPaths.h"
#include "host/LogXMessage.h"
#include "host/ToString.h"
#include "host/TqXML.h"
#include "host/Version.h"

#include <boost/filesystem/operations.hpp>

const std::string media::s_ShuffleModesCapStr = "shuffle_modes";
const std::string media::s_RepeatModesCapStr = "repeat_modes";
const std::string media::s_MediaLabelsCapStr = "media_labels";
const std::string media::s_HasShuffleCapStr = "has_shuffle";
const std::string media::s_HasRepeatCapStr = "has_repeat";
const std::string media::s_HasPlayCapStr = "has_play";
const std::string media::s_HasPauseCapStr = "has_pause";
const std::string media::s_HasStopCapStr = "has_stop";
const std::string media::s_HasSkipFwdCapStr = "has_skip_fwd";
const std::string media::s_HasSkipRevCapStr = "has_skip_rev";
const std::string media::s_HasScanFwdCapStr = "has_scan_fwd";
const std::string media::s_HasScanRevCapStr = "has_scan_rev";
const std::string media::s_HasMenuCapStr = "has_menu";
const std::string media::s_HasSearchCapStr = "has_search";
const std::string media::s_HasBrowseCapStr = "has_browse";

// Tells the version of a file on a controller: strings media.so.
[[gnu::used]] static const char s_Version[] = "mediaproxy " MEDIAPROXY_VERSION;

CreationFunc GetCreationFunc() { return &media::Create; }

IDriver* media::Create(IInstanceManager& im) { return new media(im); }

media::media(IInstanceManager& im)
    : TqBaseProxyDriver(im, s_ProxyBindingId, DriverMultiplicity::One) {
  m_MediaInfo.Clear();
  m_ListNode = TqXML::CreateXmlNode();
  // These are virtual: the qualified names call this class's own.
  media::RegisterNotifications();
  media::RegisterCommands();
  RegisterRequests();
  media::RegisterConditionals();
}

// An exception that leaves a destructor ends the process, so what the host throws is dropped.
media::~media() {
  try {
    media::UnregisterVariables();
  } catch (...) {
  }
}

namespace {

namespace fs = boost::filesystem;

bool IsMissing(const fs::path& path) {
  const fs::file_type type = fs::status(path).type();
  return type == fs::status_error || type == fs::file_not_found;
}

// One call for each missing level: create_directories ends the process when memory runs out while
// it makes a missing parent.
void CreateDirectories(const std::string& directory) {
  for (std::size_t end = 0; end != std::string::npos;) {
    end = directory.find('/', end + 1);
    const fs::path path(directory.substr(0, end));
    if (IsMissing(path)) fs::create_directories(path);
  }
}

// What exists already stays as it is, whatever it is.
void CreateImageDirectory(const std::string& directory) {
  try {
    if (IsMissing(directory)) CreateDirectories(directory);
  } catch (...) {
    LogXMessage(3, "ipod::Initialize: failed to create ipod image directory (%s)",
                directory.c_str());
  }
}

}  // namespace

long media::Initialize(unsigned long id, TqXML::INode& config, TqXML::INode* state) {
  const long result = TqBaseDriver::Initialize(id, config, state);

  void* service = nullptr;
  m_InstanceManager.GetInstance("{311BE68F-E34E-4ED2-9D6F-39AC29384C02}", &service);
  if (!service) {
    // The paths stay empty: every picture then fails with a log line (docs/choices.md).
    LogXMessage(3, "ipod::Initialize: %s", "the host has no path service");
    return result;
  }
  auto& paths = *static_cast<IHostPaths*>(service);

  const std::string folder = "ipod/" + tq::ToString(id);
  std::string imagePath = folder + "/coverart.jpg";
  m_CoverArtFile = paths.GetRootPath() + imagePath;
  m_CoverArtImagePath = std::move(imagePath);
  CreateImageDirectory(paths.GetRootPath() + folder);
  return result;
}

tq::auto_com<TqXML::INode> media::GetPersistState(unsigned long) {
  auto state = TqXML::CreateXmlNode();
  if (state) state->SetNameValue("State", "");
  return state;
}
