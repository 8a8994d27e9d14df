#include "driver/media.h"
#include "host/ToString.h"
#include "host/TqXML.h"

#include <algorithm>
#include <iterator>
#include <utility>

void media::OnNtfPlayStatusChanged(const IBindMessage& msg) {
  static constexpr const char* events[] = {"Playing", "Stopped", "Paused"};
  std::string value = msg.GetParamValue("play_status");
  if (value != m_PlayStatus) {
    m_PlayStatus = std::move(value);
    const auto* const event = std::find(std::begin(events), std::end(events), m_PlayStatus);
    if (event != std::end(events)) FireEvent(static_cast<unsigned long>(event - events));
    ChangeMyVariable(s_PlayStatusVariable, m_PlayStatus);
  }
  SendDataToUISimple("play_status", m_PlayStatus);
}

void media::OnNtfOnlineStatusChanged(const IBindMessage& msg) {
  std::string value = msg.GetParamValue("online_status");
  if (value != m_OnlineStatus) {
    m_OnlineStatus = std::move(value);
    ChangeMyVariable(s_OnlineStatusVariable, m_OnlineStatus);
  }
  SendDataToUISimple("online_status", m_OnlineStatus);
}

tq::auto_com<TqXML::INode> media::OnGetPlayStatus(const ICmdMessage&) {
  return TqXML::CreateXmlNode("play_status", m_PlayStatus);
}

// The answer, like the settings report, says "online" where the notification says "online_status".
tq::auto_com<TqXML::INode> media::OnGetOnlineStatus(const ICmdMessage&) {
  return TqXML::CreateXmlNode("online", m_OnlineStatus);
}

void media::StoreAndSendModesList(const IBindMessage& msg, const std::string& document,
                                  const std::string& name, FlexMode& list) {
  list.SetModesList(msg.GetParamValue(name));
  SendToUI(document, {{name, list.GetModesList()}});
}

void media::OnNtfSetShuffleModes(const IBindMessage& msg) {
  StoreAndSendModesList(msg, "SHUFFLE_MODES_CHANGED", s_ShuffleModesCapStr, m_ShuffleModes);
}

void media::OnNtfSetRepeatModes(const IBindMessage& msg) {
  StoreAndSendModesList(msg, "REPEAT_MODES_CHANGED", s_RepeatModesCapStr, m_RepeatModes);
}

void media::OnNtfSetMediaLabels(const IBindMessage& msg) {
  StoreAndSendModesList(msg, "MEDIA_LABELS_CHANGED", s_MediaLabelsCapStr, m_MediaLabels);
}

tq::auto_com<TqXML::INode> media::OnGetShuffleModes(const ICmdMessage&) {
  return TqXML::CreateXmlNode(s_ShuffleModesCapStr, m_ShuffleModes.GetModesList());
}

tq::auto_com<TqXML::INode> media::OnGetRepeatModes(const ICmdMessage&) {
  return TqXML::CreateXmlNode(s_RepeatModesCapStr, m_RepeatModes.GetModesList());
}

void media::StoreAndSendMode(const IBindMessage& msg, const std::string& document,
                             const std::string& name, std::string& field) {
  field = msg.GetParamValue(name);
  SendToUI(document, {{name, field}});
}

void media::OnNtfShuffleChanged(const IBindMessage& msg) {
  StoreAndSendMode(msg, "SHUFFLE_CHANGED", "shuffle_mode", m_ShuffleMode);
}

void media::OnNtfRepeatChanged(const IBindMessage& msg) {
  StoreAndSendMode(msg, "REPEAT_CHANGED", "repeat_mode", m_RepeatMode);
}

void media::StoreAndSendTwo(const IBindMessage& msg, const std::string& document,
                            const StoredValue& first, const StoredValue& second) {
  std::string firstText = msg.GetParamText(first.parameter);
  std::string secondText = msg.GetParamText(second.parameter);
  first.field = std::move(firstText);
  second.field = std::move(secondText);
  SendToUI(document, {{first.name, first.field}, {second.name, second.field}});
}

void media::OnNtfPlayTimeChanged(const IBindMessage& msg) {
  StoreAndSendTwo(msg, "PLAY_TIME_CHANGED", {"elapsed", m_Elapsed, "elapsed"},
                  {"remaining", m_Remaining, "remaining"});
}

void media::OnNtfQueueProgressChanged(const IBindMessage& msg) {
  StoreAndSendTwo(msg, "QUEUE_PROGRESS_CHANGED", {"current", m_CurrentSong, "current_song"},
                  {"total", m_TotalSongs, "total_songs"});
}

void media::OnNtfUpdateMediaInfo(const IBindMessage& msg) {
  const auto command = CreateCommandMessageFromName("UPDATE_MEDIA_INFO");
  const auto node = TqXML::CreateXmlNode("mediainfo", "");
  if (!node) return;
  node->AddNamedValue("mediatype", "MEDIASONG");
  node->AddNamedValue("deviceid", tq::ToString(GetDeviceId()).c_str());

  MediaInfo info;
  info.m_Line1 = msg.GetParamText("media_info_1");
  info.m_Line2 = msg.GetParamText("media_info_2");
  info.m_Line3 = msg.GetParamText("media_info_3");
  info.m_Valid = true;
  m_MediaInfo = std::move(info);

  m_MediaInfo.AddToINode(node.get(), false);
  if (!command) return;
  command->AddParamText("MEDIA_INFO", "STRING", node->GetXmlString());
  SendCommandToRooms(*command);
}

void media::OnNtfMediaInfoChanged(const IBindMessage& msg) {
  SendToUI("MEDIA_INFO_CHANGED", {{"media_info_1", msg.GetParamText("media_info_1")},
                                  {"media_info_2", msg.GetParamText("media_info_2")},
                                  {"media_info_3", msg.GetParamText("media_info_3")}});
}
