#include "driver/media.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"

const media::Capability media::s_Capabilities[] = {
    {s_HasShuffleCapStr, &media::m_HasShuffle}, {s_HasRepeatCapStr, &media::m_HasRepeat},
    {s_HasPlayCapStr, &media::m_HasPlay},       {s_HasPauseCapStr, &media::m_HasPause},
    {s_HasStopCapStr, &media::m_HasStop},       {s_HasSkipFwdCapStr, &media::m_HasSkipFwd},
    {s_HasSkipRevCapStr, &media::m_HasSkipRev}, {s_HasScanFwdCapStr, &media::m_HasScanFwd},
    {s_HasScanRevCapStr, &media::m_HasScanRev}, {s_HasMenuCapStr, &media::m_HasMenu},
    {s_HasSearchCapStr, &media::m_HasSearch},   {s_HasBrowseCapStr, &media::m_HasBrowse},
};

void media::CurrentSettingsToUI() {
  const auto settings = TqXML::CreateXmlNode("CURRENT_SETTINGS", "");
  if (!settings) return;

  for (const Capability& capability : s_Capabilities) {
    settings->AddNamedValue(capability.name, this->*capability.flag);
  }
  settings->AddNamedValue("online", m_OnlineStatus);
  settings->AddNamedValue("play_status", m_PlayStatus);
  settings->AddNamedValue("shuffle_mode", m_ShuffleMode);
  settings->AddNamedValue("repeat_mode", m_RepeatMode);
  auto* info = XmlHelper::AddChild(*settings, "MEDIA_INFO_CHANGED", "");
  info->AddNamedValue("media_info_1", m_MediaInfo.m_Line1);
  info->AddNamedValue("media_info_2", m_MediaInfo.m_Line2);
  info->AddNamedValue("media_info_3", m_MediaInfo.m_Line3);
  auto* time = XmlHelper::AddChild(*settings, "PLAY_TIME_CHANGED", "");
  time->AddNamedValue("elapsed", m_Elapsed);
  time->AddNamedValue("remaining", m_Remaining);
  auto* queue = XmlHelper::AddChild(*settings, "QUEUE_PROGRESS_CHANGED", "");
  queue->AddNamedValue("current_song", m_CurrentSong);
  queue->AddNamedValue("total_songs", m_TotalSongs);
  settings->AddNamedValue(s_ShuffleModesCapStr, m_ShuffleModes.GetModesList());
  settings->AddNamedValue(s_RepeatModesCapStr, m_RepeatModes.GetModesList());
  settings->AddNamedValue(s_MediaLabelsCapStr, m_MediaLabels.GetModesList());
  ConSendDataToUI(*settings);
}

void media::OnCmdQueryCurrentSettings(const ICmdMessage&, ICmdReturn*) { CurrentSettingsToUI(); }

// Sends the notification's own text, not the held status (docs/choices.md).
void media::OnNtfCurrentSettings(const IBindMessage& msg) {
  SendToUI("CURRENT_SETTINGS", {{"online", msg.GetParamText("online")}});
}

void media::OnCmdReset(const ICmdMessage& command, ICmdReturn* ret) {
  const auto copy = command.Clone();
  if (!copy) return;
  if (command.HasParam("ROOM_ID") && !command.HasParam("OUTPUT")) {
    const unsigned long room = command.GetParamNumber("ROOM_ID");
    copy->AddParamNumber("OUTPUT", "INTEGER", m_RoomOutputs->GetOutputForRoom(room, 2));
  }
  if (const tq::auto_com<IBindMessage> bound{CreateBindMessage(*copy)}) {
    SendBoundCall(s_ProxyBindingId, *bound, ret);
  }
}

void media::OnBindingChanged(unsigned long bindingId, const std::string& className, bool bound) {
  TqBaseProxyDriver::OnBindingChanged(bindingId, className, bound);
  if (bindingId != s_ProxyBindingId || !bound) return;

  for (const Capability& capability : s_Capabilities) {
    ExtractCapability(capability.name, this->*capability.flag);
  }
  if (m_HasShuffle) SetFromCapability(s_ShuffleModesCapStr, m_ShuffleModes, "On,Off");
  if (m_HasRepeat) SetFromCapability(s_RepeatModesCapStr, m_RepeatModes, "On,Off");
  SetFromCapability(s_MediaLabelsCapStr, m_MediaLabels, "Album,Artist,Title");
}

void media::SetFromCapability(const std::string& name, FlexMode& list, const char* fallback) {
  std::string text;
  list.SetModesList(ExtractCapability(name, text) ? text : fallback);
}
