#include "host/Base64Encoder.h"
#include "host/FlexMode.h"
#include "host/LogXMessage.h"
#include "host/ToString.h"
#include "host/TqBaseProxyDriver.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"

#include <boost/bind/bind.hpp>

#include <cstdlib>

// A driver without a picture: each message written out from its first call of the host to its last,
// with nothing shared, and bound to its name as the framework has it. It makes the calls that media
// makes and keeps the texts that it keeps.
namespace {

using namespace boost::placeholders;

// The names that media, too, keeps for the life of the library.
const std::string s_ShuffleModes = "shuffle_modes";
const std::string s_RepeatModes = "repeat_modes";
const std::string s_MediaLabels = "media_labels";
const std::string s_HasShuffle = "has_shuffle";
const std::string s_HasRepeat = "has_repeat";
const std::string s_HasPlay = "has_play";
const std::string s_HasPause = "has_pause";
const std::string s_HasStop = "has_stop";
const std::string s_HasSkipFwd = "has_skip_fwd";
const std::string s_HasSkipRev = "has_skip_rev";
const std::string s_HasScanFwd = "has_scan_fwd";
const std::string s_HasScanRev = "has_scan_rev";
const std::string s_HasMenu = "has_menu";
const std::string s_HasSearch = "has_search";
const std::string s_HasBrowse = "has_browse";

class StraightLine final : public TqBaseProxyDriver {
 public:
  explicit StraightLine(IInstanceManager& im)
      : TqBaseProxyDriver(im, 5001, DriverMultiplicity::One) {
    m_ListNode = TqXML::CreateXmlNode();
    m_NtfDispatcher.RegisterNtf("PLAY_STATUS_CHANGED",
                                boost::bind(&StraightLine::OnNtfPlayStatusChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("ONLINE_STATUS_CHANGED",
                                boost::bind(&StraightLine::OnNtfOnlineStatusChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("UPDATE_MEDIA_INFO",
                                boost::bind(&StraightLine::OnNtfUpdateMediaInfo, this, _1));
    m_NtfDispatcher.RegisterNtf("MEDIA_INFO_CHANGED",
                                boost::bind(&StraightLine::OnNtfMediaInfoChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("PLAY_TIME_CHANGED",
                                boost::bind(&StraightLine::OnNtfPlayTimeChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("QUEUE_PROGRESS_CHANGED",
                                boost::bind(&StraightLine::OnNtfQueueProgressChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("SET_SHUFFLE_MODES",
                                boost::bind(&StraightLine::OnNtfSetShuffleModes, this, _1));
    m_NtfDispatcher.RegisterNtf("SET_REPEAT_MODES",
                                boost::bind(&StraightLine::OnNtfSetRepeatModes, this, _1));
    m_NtfDispatcher.RegisterNtf("SET_MEDIA_LABELS",
                                boost::bind(&StraightLine::OnNtfSetMediaLabels, this, _1));
    m_NtfDispatcher.RegisterNtf("SHUFFLE_CHANGED",
                                boost::bind(&StraightLine::OnNtfShuffleChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("REPEAT_CHANGED",
                                boost::bind(&StraightLine::OnNtfRepeatChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("NEW_LIST", boost::bind(&StraightLine::OnNtfNewList, this, _1));
    m_NtfDispatcher.RegisterNtf("NEW_MENU", boost::bind(&StraightLine::OnNtfNewMenu, this, _1));
    m_NtfDispatcher.RegisterNtf("NEW_COVERART",
                                boost::bind(&StraightLine::OnNtfNewCoverart, this, _1));
    m_NtfDispatcher.RegisterNtf("COVERART_PATH_CHANGED",
                                boost::bind(&StraightLine::OnNtfCoverartPathChanged, this, _1));
    m_NtfDispatcher.RegisterNtf("CURRENT_SETTINGS",
                                boost::bind(&StraightLine::OnNtfCurrentSettings, this, _1));
    m_NtfDispatcher.RegisterNtf("ADD_LIST_ITEM", boost::bind(&StraightLine::OnNtfItem, this, _1));
    m_NtfDispatcher.RegisterNtf("ADD_MENU_ITEM", boost::bind(&StraightLine::OnNtfItem, this, _1));
    m_NtfDispatcher.RegisterDefaultNtf(boost::bind(&StraightLine::OnNtfDefault, this, _1));
    m_CmdDispatcher.RegisterCmd(
        "QUERY_CURRENT_SETTINGS",
        boost::bind(&StraightLine::OnCmdQueryCurrentSettings, this, _1, _2));
    m_CmdDispatcher.RegisterCmd("RESET", boost::bind(&StraightLine::OnCmdReset, this, _1, _2));
    m_UICmdDispatcher.RegisterUICmd("GET_ONLINE_STATUS",
                                    boost::bind(&StraightLine::OnGetOnlineStatus, this, _1));
    m_UICmdDispatcher.RegisterUICmd("GET_PLAY_STATUS",
                                    boost::bind(&StraightLine::OnGetPlayStatus, this, _1));
    m_UICmdDispatcher.RegisterUICmd("GET_SHUFFLE_MODES",
                                    boost::bind(&StraightLine::OnGetShuffleModes, this, _1));
    m_UICmdDispatcher.RegisterUICmd("GET_REPEAT_MODES",
                                    boost::bind(&StraightLine::OnGetRepeatModes, this, _1));
  }
  ~StraightLine() override { StraightLine::UnregisterVariables(); }

  void RegisterCommands() override {}
  void RegisterNotifications() override {}
  void RegisterConditionals() override {}
  void RegisterVariables() override {
    VmAdd(1000, "PLAY_STATUS", TqTypes::VariableType::Text, "0", 0, 0, "");
    VmAdd(1001, "ONLINE_STATUS", TqTypes::VariableType::Text, "0", 0, 0, "");
  }
  void UnregisterVariables() override {
    VmRemove(1000);
    VmRemove(1001);
  }
  void OnBindingChanged(unsigned long id, const std::string& className, bool bound) override;

 private:
  void OnNtfPlayStatusChanged(const IBindMessage& msg);
  void OnNtfOnlineStatusChanged(const IBindMessage& msg);
  tq::auto_com<TqXML::INode> OnGetOnlineStatus(const ICmdMessage&);
  tq::auto_com<TqXML::INode> OnGetPlayStatus(const ICmdMessage&);
  void OnNtfUpdateMediaInfo(const IBindMessage& msg);
  void OnNtfMediaInfoChanged(const IBindMessage& msg);
  void OnNtfPlayTimeChanged(const IBindMessage& msg);
  void OnNtfQueueProgressChanged(const IBindMessage& msg);
  void OnNtfSetShuffleModes(const IBindMessage& msg);
  void OnNtfSetRepeatModes(const IBindMessage& msg);
  void OnNtfSetMediaLabels(const IBindMessage& msg);
  void OnNtfShuffleChanged(const IBindMessage& msg);
  void OnNtfRepeatChanged(const IBindMessage& msg);
  tq::auto_com<TqXML::INode> OnGetShuffleModes(const ICmdMessage&);
  tq::auto_com<TqXML::INode> OnGetRepeatModes(const ICmdMessage&);
  void OnNtfNewList(const IBindMessage& msg);
  void OnNtfNewMenu(const IBindMessage& msg);
  void OnNtfNewCoverart(const IBindMessage& msg);
  void OnNtfCoverartPathChanged(const IBindMessage& msg);
  void OnNtfCurrentSettings(const IBindMessage& msg);
  void OnCmdQueryCurrentSettings(const ICmdMessage&, ICmdReturn*);
  void OnCmdReset(const ICmdMessage& command, ICmdReturn* ret);
  void OnNtfItem(const IBindMessage& msg);
  void OnNtfDefault(const IBindMessage& msg);

  FlexMode m_ShuffleModes, m_RepeatModes, m_MediaLabels;
  tq::auto_com<TqXML::INode> m_ListNode;
  TqXML::INode* m_Items = nullptr;
  std::string m_PlayStatus = "Stopped", m_OnlineStatus = "False";
  std::string m_Elapsed, m_Remaining, m_CurrentSong = "0", m_TotalSongs = "0";
  std::string m_ShuffleMode, m_RepeatMode, m_Line1, m_Line2, m_Line3, m_Image;
  std::string m_ImagePath = "ipod/1/coverart.jpg";
  long m_Width = 0, m_Height = 0;
  bool m_Valid = false;
  bool m_HasShuffle = true, m_HasRepeat = true, m_HasPlay = true, m_HasPause = true;
  bool m_HasStop = true, m_HasSkipFwd = true, m_HasSkipRev = true, m_HasScanFwd = true;
  bool m_HasScanRev = true, m_HasMenu = true, m_HasSearch = true, m_HasBrowse = false;
};

std::string Trimmed(std::string text) {
  const std::size_t first = text.find_first_not_of("\" ");
  if (first == std::string::npos) return text;
  text.erase(text.find_last_not_of("\" ") + 1);
  text.erase(0, first);
  return text;
}

void StraightLine::OnNtfPlayStatusChanged(const IBindMessage& msg) {
  std::string value = msg.GetParamValue("play_status");
  if (value != m_PlayStatus) {
    m_PlayStatus = std::move(value);
    if (m_PlayStatus == "Playing") {
      FireEvent(0);
    } else if (m_PlayStatus == "Stopped") {
      FireEvent(1);
    } else if (m_PlayStatus == "Paused") {
      FireEvent(2);
    }
    ChangeMyVariable(1000, m_PlayStatus);
  }
  SendDataToUISimple("play_status", m_PlayStatus);
}

void StraightLine::OnNtfOnlineStatusChanged(const IBindMessage& msg) {
  std::string value = msg.GetParamValue("online_status");
  if (value != m_OnlineStatus) {
    m_OnlineStatus = std::move(value);
    ChangeMyVariable(1001, m_OnlineStatus);
  }
  SendDataToUISimple("online_status", m_OnlineStatus);
}

tq::auto_com<TqXML::INode> StraightLine::OnGetOnlineStatus(const ICmdMessage&) {
  return TqXML::CreateXmlNode("online", m_OnlineStatus);
}

tq::auto_com<TqXML::INode> StraightLine::OnGetPlayStatus(const ICmdMessage&) {
  return TqXML::CreateXmlNode("play_status", m_PlayStatus);
}

void StraightLine::OnNtfUpdateMediaInfo(const IBindMessage& msg) {
  const auto command = CreateCommandMessageFromName("UPDATE_MEDIA_INFO");
  const auto node = TqXML::CreateXmlNode("mediainfo", "");
  if (!node) return;
  node->AddNamedValue("mediatype", "MEDIASONG");
  node->AddNamedValue("deviceid", tq::ToString(GetDeviceId()).c_str());
  m_Line1 = msg.GetParamText("media_info_1");
  m_Line2 = msg.GetParamText("media_info_2");
  m_Line3 = msg.GetParamText("media_info_3");
  m_Image.clear();
  m_Valid = true;
  if (!m_Line1.empty()) node->AddNamedValue("label_1", Trimmed(m_Line1));
  if (!m_Line2.empty()) node->AddNamedValue("label_2", Trimmed(m_Line2));
  if (!m_Line3.empty()) node->AddNamedValue("label_3", Trimmed(m_Line3));
  if (!command) return;
  command->AddParamText("MEDIA_INFO", "STRING", node->GetXmlString());
  SendCommandToRooms(*command);
}

void StraightLine::OnNtfMediaInfoChanged(const IBindMessage& msg) {
  const std::string first = msg.GetParamText("media_info_1");
  const std::string second = msg.GetParamText("media_info_2");
  const std::string third = msg.GetParamText("media_info_3");
  const auto node = TqXML::CreateXmlNode("MEDIA_INFO_CHANGED", "");
  if (!node) return;
  node->AddNamedValue("media_info_1", first);
  node->AddNamedValue("media_info_2", second);
  node->AddNamedValue("media_info_3", third);
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfPlayTimeChanged(const IBindMessage& msg) {
  m_Elapsed = msg.GetParamText("elapsed");
  m_Remaining = msg.GetParamText("remaining");
  const auto node = TqXML::CreateXmlNode("PLAY_TIME_CHANGED", "");
  if (!node) return;
  node->AddNamedValue("elapsed", m_Elapsed);
  node->AddNamedValue("remaining", m_Remaining);
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfQueueProgressChanged(const IBindMessage& msg) {
  m_CurrentSong = msg.GetParamText("current");
  m_TotalSongs = msg.GetParamText("total");
  const auto node = TqXML::CreateXmlNode("QUEUE_PROGRESS_CHANGED", "");
  if (!node) return;
  node->AddNamedValue("current_song", m_CurrentSong);
  node->AddNamedValue("total_songs", m_TotalSongs);
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfSetShuffleModes(const IBindMessage& msg) {
  m_ShuffleModes.SetModesList(msg.GetParamValue(s_ShuffleModes));
  const auto node = TqXML::CreateXmlNode("SHUFFLE_MODES_CHANGED", "");
  if (!node) return;
  node->AddNamedValue(s_ShuffleModes, m_ShuffleModes.GetModesList());
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfSetRepeatModes(const IBindMessage& msg) {
  m_RepeatModes.SetModesList(msg.GetParamValue(s_RepeatModes));
  const auto node = TqXML::CreateXmlNode("REPEAT_MODES_CHANGED", "");
  if (!node) return;
  node->AddNamedValue(s_RepeatModes, m_RepeatModes.GetModesList());
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfSetMediaLabels(const IBindMessage& msg) {
  m_MediaLabels.SetModesList(msg.GetParamValue(s_MediaLabels));
  const auto node = TqXML::CreateXmlNode("MEDIA_LABELS_CHANGED", "");
  if (!node) return;
  node->AddNamedValue(s_MediaLabels, m_MediaLabels.GetModesList());
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfShuffleChanged(const IBindMessage& msg) {
  m_ShuffleMode = msg.GetParamValue("shuffle_mode");
  const auto node = TqXML::CreateXmlNode("SHUFFLE_CHANGED", "");
  if (!node) return;
  node->AddNamedValue("shuffle_mode", m_ShuffleMode);
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfRepeatChanged(const IBindMessage& msg) {
  m_RepeatMode = msg.GetParamValue("repeat_mode");
  const auto node = TqXML::CreateXmlNode("REPEAT_CHANGED", "");
  if (!node) return;
  node->AddNamedValue("repeat_mode", m_RepeatMode);
  ConSendDataToUI(*node);
}

tq::auto_com<TqXML::INode> StraightLine::OnGetShuffleModes(const ICmdMessage&) {
  return TqXML::CreateXmlNode(s_ShuffleModes, m_ShuffleModes.GetModesList());
}

tq::auto_com<TqXML::INode> StraightLine::OnGetRepeatModes(const ICmdMessage&) {
  return TqXML::CreateXmlNode(s_RepeatModes, m_RepeatModes.GetModesList());
}

void StraightLine::OnNtfNewList(const IBindMessage& msg) {
  const std::string title = msg.GetParamText("title");
  const std::string totalItems = msg.GetParamValue("total_items");
  const std::string numItems = msg.GetParamValue("num_items");
  const std::string first = msg.GetParamValue("first");
  const std::string clear = msg.GetParamValue("clear");
  m_ListNode = TqXML::CreateXmlNode();
  if (!m_ListNode) return;
  m_ListNode->SetNameValue("list", "");
  m_ListNode->AddNamedValue("title", title);
  m_ListNode->AddNamedValue("total_items", totalItems);
  m_ListNode->AddNamedValue("num_items", numItems);
  m_ListNode->AddNamedValue("first_item", first);
  m_ListNode->AddNamedValue("clear", clear);
  m_Items = XmlHelper::AddChild(*m_ListNode, "items", "");
}

void StraightLine::OnNtfNewMenu(const IBindMessage& msg) {
  const std::string title = msg.GetParamText("title");
  const std::string numItems = msg.GetParamValue("num_items");
  m_ListNode = TqXML::CreateXmlNode();
  if (!m_ListNode) return;
  m_ListNode->SetNameValue("menu_list", "");
  m_ListNode->AddNamedValue("title", title);
  m_ListNode->AddNamedValue("num_items", numItems);
  m_Items = XmlHelper::AddChild(*m_ListNode, "items", "");
}

void StraightLine::OnNtfNewCoverart(const IBindMessage& msg) {
  const std::string coverArt = msg.GetParamValue("cover_art");
  const std::string width = msg.GetParamValue("width");
  const std::string height = msg.GetParamValue("height");
  const std::string format = msg.GetParamValue("format");
  const std::string size = msg.GetParamText("size");
  m_Width = std::strtol(width.c_str(), nullptr, 10);
  m_Height = std::strtol(height.c_str(), nullptr, 10);
  std::strtol(size.c_str(), nullptr, 10);
  const std::string bytes = Base64Encoder().Base64Decode(coverArt);
  if (format != "RGB565" && format != "RGB888" && format != "JPEG") {
    LogXMessage(3, "ipod::OnNtfCoverArt: invalid format %s", format.c_str());
  }
  const auto node = TqXML::CreateXmlNode("NEW_COVER_ART", "");
  if (!node) return;
  node->AddNamedValue("image_path", m_ImagePath);
  node->AddNamedValue("width", width);
  node->AddNamedValue("height", height);
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfCoverartPathChanged(const IBindMessage& msg) {
  const std::string path = msg.GetParamValue("image_path");
  const std::string width = msg.GetParamText("width");
  const std::string height = msg.GetParamText("height");
  const auto node = TqXML::CreateXmlNode("NEW_COVER_ART", "");
  if (!node) return;
  node->AddNamedValue("image_path", path);
  node->AddNamedValue("width", width);
  node->AddNamedValue("height", height);
  ConSendDataToUI(*node);
}

void StraightLine::OnNtfCurrentSettings(const IBindMessage& msg) {
  const std::string online = msg.GetParamText("online");
  const auto node = TqXML::CreateXmlNode("CURRENT_SETTINGS", "");
  if (!node) return;
  node->AddNamedValue("online", online);
  ConSendDataToUI(*node);
}

void StraightLine::OnCmdQueryCurrentSettings(const ICmdMessage&, ICmdReturn*) {
  const auto node = TqXML::CreateXmlNode("CURRENT_SETTINGS", "");
  if (!node) return;
  node->AddNamedValue(s_HasShuffle, m_HasShuffle);
  node->AddNamedValue(s_HasRepeat, m_HasRepeat);
  node->AddNamedValue(s_HasPlay, m_HasPlay);
  node->AddNamedValue(s_HasPause, m_HasPause);
  node->AddNamedValue(s_HasStop, m_HasStop);
  node->AddNamedValue(s_HasSkipFwd, m_HasSkipFwd);
  node->AddNamedValue(s_HasSkipRev, m_HasSkipRev);
  node->AddNamedValue(s_HasScanFwd, m_HasScanFwd);
  node->AddNamedValue(s_HasScanRev, m_HasScanRev);
  node->AddNamedValue(s_HasMenu, m_HasMenu);
  node->AddNamedValue(s_HasSearch, m_HasSearch);
  node->AddNamedValue(s_HasBrowse, m_HasBrowse);
  node->AddNamedValue("online", m_OnlineStatus);
  node->AddNamedValue("play_status", m_PlayStatus);
  node->AddNamedValue("shuffle_mode", m_ShuffleMode);
  node->AddNamedValue("repeat_mode", m_RepeatMode);
  auto* const info = XmlHelper::AddChild(*node, "MEDIA_INFO_CHANGED", "");
  info->AddNamedValue("media_info_1", m_Line1);
  info->AddNamedValue("media_info_2", m_Line2);
  info->AddNamedValue("media_info_3", m_Line3);
  auto* const time = XmlHelper::AddChild(*node, "PLAY_TIME_CHANGED", "");
  time->AddNamedValue("elapsed", m_Elapsed);
  time->AddNamedValue("remaining", m_Remaining);
  auto* const queue = XmlHelper::AddChild(*node, "QUEUE_PROGRESS_CHANGED", "");
  queue->AddNamedValue("current_song", m_CurrentSong);
  queue->AddNamedValue("total_songs", m_TotalSongs);
  node->AddNamedValue(s_ShuffleModes, m_ShuffleModes.GetModesList());
  node->AddNamedValue(s_RepeatModes, m_RepeatModes.GetModesList());
  node->AddNamedValue(s_MediaLabels, m_MediaLabels.GetModesList());
  ConSendDataToUI(*node);
}

void StraightLine::OnCmdReset(const ICmdMessage& command, ICmdReturn* ret) {
  const auto copy = command.Clone();
  if (!copy) return;
  if (command.HasParam("ROOM_ID") && !command.HasParam("OUTPUT")) {
    const unsigned long room = command.GetParamNumber("ROOM_ID");
    copy->AddParamNumber("OUTPUT", "INTEGER", m_RoomOutputs->GetOutputForRoom(room, 2));
  }
  const tq::auto_com<IBindMessage> bound(CreateBindMessage(*copy));
  if (bound) SendBoundCall(5001, *bound, ret);
}

void StraightLine::OnNtfItem(const IBindMessage& msg) {
  const std::string id = msg.GetParamValue("id");
  const std::string type = msg.GetParamValue("type");
  const std::string text = msg.GetParamValue("text");
  const std::string last = msg.GetParamValue("last");
  if (!m_Items) return;
  auto* const item = XmlHelper::AddChild(*m_Items, "item", "");
  item->AddNamedValue("id", id);
  item->AddNamedValue("type", type);
  item->AddNamedValue("text", text);
  if (last == "True") ConSendDataToUI(*m_ListNode);
}

void StraightLine::OnNtfDefault(const IBindMessage& msg) {
  if (!msg.GetCommand().empty()) {
    const auto command = CreateCommandMessageFromXml(msg.GetXml());
    if (command) ExecuteCommand(*command, nullptr, 0);
  } else {
    const auto document = TqXML::CreateXmlDocument(msg.GetXml());
    if (document) ConSendDataToUI(document->GetRootNode());
  }
}

void StraightLine::OnBindingChanged(unsigned long id, const std::string& className, bool bound) {
  TqBaseProxyDriver::OnBindingChanged(id, className, bound);
  if (id != 5001 || !bound) return;
  ExtractCapability(s_HasShuffle, m_HasShuffle);
  ExtractCapability(s_HasRepeat, m_HasRepeat);
  ExtractCapability(s_HasPlay, m_HasPlay);
  ExtractCapability(s_HasPause, m_HasPause);
  ExtractCapability(s_HasStop, m_HasStop);
  ExtractCapability(s_HasSkipFwd, m_HasSkipFwd);
  ExtractCapability(s_HasSkipRev, m_HasSkipRev);
  ExtractCapability(s_HasScanFwd, m_HasScanFwd);
  ExtractCapability(s_HasScanRev, m_HasScanRev);
  ExtractCapability(s_HasMenu, m_HasMenu);
  ExtractCapability(s_HasSearch, m_HasSearch);
  ExtractCapability(s_HasBrowse, m_HasBrowse);
  std::string list;
  if (m_HasShuffle) {
    m_ShuffleModes.SetModesList(ExtractCapability(s_ShuffleModes, list) ? list : "On,Off");
  }
  if (m_HasRepeat) {
    m_RepeatModes.SetModesList(ExtractCapability(s_RepeatModes, list) ? list : "On,Off");
  }
  m_MediaLabels.SetModesList(ExtractCapability(s_MediaLabels, list) ? list : "Album,Artist,Title");
}

IDriver* Create(IInstanceManager& im) { return new StraightLine(im); }

}  // namespace

CreationFunc GetCreationFunc() { return &Create; }
