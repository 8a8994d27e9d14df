#include "driver/media.h"
#include "host/TqXML.h"

#include <boost/bind/bind.hpp>

namespace placeholders = boost::placeholders;

void media::RegisterNotifications() {
  static constexpr struct {
    const char* name;
    void (media::*handler)(const IBindMessage&);
  } rows[] = {
      {"CURRENT_SETTINGS", &media::OnNtfCurrentSettings},
      {"UPDATE_MEDIA_INFO", &media::OnNtfUpdateMediaInfo},
      {"MEDIA_INFO_CHANGED", &media::OnNtfMediaInfoChanged},
      {"PLAY_STATUS_CHANGED", &media::OnNtfPlayStatusChanged},
      {"ONLINE_STATUS_CHANGED", &media::OnNtfOnlineStatusChanged},
      {"PLAY_TIME_CHANGED", &media::OnNtfPlayTimeChanged},
      {"QUEUE_PROGRESS_CHANGED", &media::OnNtfQueueProgressChanged},
      {"SHUFFLE_CHANGED", &media::OnNtfShuffleChanged},
      {"REPEAT_CHANGED", &media::OnNtfRepeatChanged},
      {"COVERART_PATH_CHANGED", &media::OnNtfCoverArtChanged},
      {"NEW_COVERART", &media::OnNtfNewCoverArt},
      {"SET_SHUFFLE_MODES", &media::OnNtfSetShuffleModes},
      {"SET_REPEAT_MODES", &media::OnNtfSetRepeatModes},
      {"SET_MEDIA_LABELS", &media::OnNtfSetMediaLabels},
      {"NEW_LIST", &media::OnNtfNewList},
      {"ADD_LIST_ITEM", &media::OnNtfAddListItem},
      {"NEW_MENU", &media::OnNtfNewMenu},
      {"ADD_MENU_ITEM", &media::OnNtfAddMenuItem},
  };
  for (const auto& row : rows) {
    m_NtfDispatcher.RegisterNtf(row.name, boost::bind(row.handler, this, placeholders::_1));
  }
  m_NtfDispatcher.RegisterDefaultNtf(boost::bind(&media::OnNtfDefault, this, placeholders::_1));
}

void media::RegisterCommands() {
  static constexpr struct {
    const char* name;
    void (media::*handler)(const ICmdMessage&, ICmdReturn*);
  } rows[] = {
      {"QUERY_CURRENT_SETTINGS", &media::OnCmdQueryCurrentSettings},
      {"RESET", &media::OnCmdReset},
  };
  for (const auto& row : rows) {
    m_CmdDispatcher.RegisterCmd(row.name,
                                boost::bind(row.handler, this, placeholders::_1, placeholders::_2));
  }
}

void media::RegisterRequests() {
  static constexpr struct {
    const char* name;
    tq::auto_com<TqXML::INode> (media::*handler)(const ICmdMessage&);
  } rows[] = {
      {"GET_ONLINE_STATUS", &media::OnGetOnlineStatus},
      {"GET_PLAY_STATUS", &media::OnGetPlayStatus},
      {"GET_SHUFFLE_MODES", &media::OnGetShuffleModes},
      {"GET_REPEAT_MODES", &media::OnGetRepeatModes},
  };
  for (const auto& row : rows) {
    m_UICmdDispatcher.RegisterUICmd(row.name, boost::bind(row.handler, this, placeholders::_1));
  }
}

void media::RegisterConditionals() {}

void media::RegisterVariables() {
  VmAdd(s_PlayStatusVariable, "PLAY_STATUS", TqTypes::VariableType::Text, "0", 0, 0, "");
  VmAdd(s_OnlineStatusVariable, "ONLINE_STATUS", TqTypes::VariableType::Text, "0", 0, 0, "");
}

// Removes the second variable even when the host throws at the first.
void media::UnregisterVariables() {
  try {
    VmRemove(s_PlayStatusVariable);
  } catch (...) {
    VmRemove(s_OnlineStatusVariable);
    throw;
  }
  VmRemove(s_OnlineStatusVariable);
}

void media::OnNtfDefault(const IBindMessage& msg) {
  if (!msg.GetCommand().empty()) {
    if (const auto command = CreateCommandMessageFromXml(msg.GetXml())) {
      ExecuteCommand(*command, nullptr, 0);
    }
  } else if (const auto document = TqXML::CreateXmlDocument(msg.GetXml())) {
    ConSendDataToUI(document->GetRootNode());
  }
}
