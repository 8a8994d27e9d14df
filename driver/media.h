#pragma once

#include "driver/documents.h"
#include "host/FlexMode.h"
#include "host/IBindMessage.h"
#include "host/ICmdMessage.h"
#include "host/ICmdReturn.h"
#include "host/IDriver.h"
#include "host/IInstanceManager.h"
#include "host/INode.h"
#include "host/TqBaseProxyDriver.h"
#include "host/auto_com.h"

#include <initializer_list>
#include <string>

// The media proxy driver: holds what the bound player last reported, as text exactly as it came,
// passes each report on, and repeats the whole state on request.
class media : public TqBaseProxyDriver {
 public:
  // What is playing, in up to three lines.
  struct MediaInfo {
    bool m_Valid = false;
    std::string m_Line1;
    std::string m_Line2;
    std::string m_Line3;
    std::string m_Image;

    void Clear();

    // Adds the lines that are not empty, trimmed, and the image if it is asked for; adds nothing
    // while the record is not valid. `node` is borrowed and not null.
    void AddToINode(TqXML::INode* node, bool includeImage) const;
  };

  // The plug-in's CreationFunc: makes a driver with its defaults and handlers, not yet initialized.
  static IDriver* Create(IInstanceManager& im);

  explicit media(IInstanceManager& im);

  void OnBindingChanged(unsigned long bindingId, const std::string& className, bool bound) override;
  ~media() override;
  long Initialize(unsigned long id, TqXML::INode& config, TqXML::INode* state) override;
  tq::auto_com<TqXML::INode> GetPersistState(unsigned long id) override;
  void RegisterCommands() override;
  void RegisterNotifications() override;
  void RegisterConditionals() override;
  void RegisterVariables() override;
  void UnregisterVariables() override;

 private:
  // The binding to the bound device.
  static constexpr unsigned long s_ProxyBindingId = 5001;

  static constexpr unsigned long s_PlayStatusVariable = 1000;
  static constexpr unsigned long s_OnlineStatusVariable = 1001;

  // The names of the device's capabilities: three mode lists, twelve flags.
  static const std::string s_ShuffleModesCapStr;
  static const std::string s_RepeatModesCapStr;
  static const std::string s_MediaLabelsCapStr;
  static const std::string s_HasShuffleCapStr;
  static const std::string s_HasRepeatCapStr;
  static const std::string s_HasPlayCapStr;
  static const std::string s_HasPauseCapStr;
  static const std::string s_HasStopCapStr;
  static const std::string s_HasSkipFwdCapStr;
  static const std::string s_HasSkipRevCapStr;
  static const std::string s_HasScanFwdCapStr;
  static const std::string s_HasScanRevCapStr;
  static const std::string s_HasMenuCapStr;
  static const std::string s_HasSearchCapStr;
  static const std::string s_HasBrowseCapStr;

  // A flag of the device with its name. The table has the order of the settings report.
  struct Capability {
    const std::string& name;
    bool media::*flag;
  };
  static const Capability s_Capabilities[12];

  // A parameter of a notification, the field that stores its text, and its name in the document.
  struct StoredValue {
    const std::string& parameter;
    std::string& field;
    const std::string& name;
  };

  void RegisterRequests();

  void OnNtfDefault(const IBindMessage& msg);
  void OnNtfCurrentSettings(const IBindMessage& msg);
  void OnNtfUpdateMediaInfo(const IBindMessage& msg);
  void OnNtfMediaInfoChanged(const IBindMessage& msg);
  void OnNtfPlayStatusChanged(const IBindMessage& msg);
  void OnNtfOnlineStatusChanged(const IBindMessage& msg);
  void OnNtfPlayTimeChanged(const IBindMessage& msg);
  void OnNtfQueueProgressChanged(const IBindMessage& msg);
  void OnNtfShuffleChanged(const IBindMessage& msg);
  void OnNtfRepeatChanged(const IBindMessage& msg);
  void OnNtfCoverArtChanged(const IBindMessage& msg);
  void OnNtfNewCoverArt(const IBindMessage& msg);
  void OnNtfSetShuffleModes(const IBindMessage& msg);
  void OnNtfSetRepeatModes(const IBindMessage& msg);
  void OnNtfSetMediaLabels(const IBindMessage& msg);
  void OnNtfNewList(const IBindMessage& msg);
  void OnNtfAddListItem(const IBindMessage& msg);
  void OnNtfNewMenu(const IBindMessage& msg);
  void OnNtfAddMenuItem(const IBindMessage& msg);

  void OnCmdQueryCurrentSettings(const ICmdMessage& command, ICmdReturn* ret);
  void OnCmdReset(const ICmdMessage& command, ICmdReturn* ret);

  tq::auto_com<TqXML::INode> OnGetOnlineStatus(const ICmdMessage& request);
  tq::auto_com<TqXML::INode> OnGetPlayStatus(const ICmdMessage& request);
  tq::auto_com<TqXML::INode> OnGetShuffleModes(const ICmdMessage& request);
  tq::auto_com<TqXML::INode> OnGetRepeatModes(const ICmdMessage& request);

  void CurrentSettingsToUI();

  // The bodies of handlers that differ only in names. They read all parameters before they store
  // one, so that a failure leaves the fields as they were.
  void StoreAndSendTwo(const IBindMessage& msg, const std::string& document,
                       const StoredValue& first, const StoredValue& second);
  void StoreAndSendMode(const IBindMessage& msg, const std::string& document,
                        const std::string& name, std::string& field);
  void StoreAndSendModesList(const IBindMessage& msg, const std::string& document,
                             const std::string& name, FlexMode& list);
  void SetFromCapability(const std::string& name, FlexMode& list, const char* fallback);
  void NewDocument(const std::string& name, std::initializer_list<NamedValue> values);
  void AddItem(const IBindMessage& msg);

  // Sends a document of these values; nothing when the host makes no node.
  void SendToUI(const std::string& document, std::initializer_list<NamedValue> values);

  FlexMode m_ShuffleModes;
  FlexMode m_RepeatModes;
  FlexMode m_MediaLabels;

  // The menu or list that is being put together, or the last one. The items' element belongs to it
  // and is null until the first header, and after one whose making failed part-way.
  tq::auto_com<TqXML::INode> m_ListNode;
  TqXML::INode* m_ListItemsNode = nullptr;

  std::string m_PlayStatus = "Stopped";
  std::string m_Elapsed;
  std::string m_Remaining;
  std::string m_OnlineStatus = "False";
  std::string m_CurrentSong = "0";
  std::string m_TotalSongs = "0";
  std::string m_ShuffleMode;
  std::string m_RepeatMode;
  MediaInfo m_MediaInfo;

  // The cover art's file, and its path as it is sent to user interfaces. Both are empty until
  // Initialize.
  std::string m_CoverArtFile;
  std::string m_CoverArtImagePath;
  long m_CoverArtWidth = 0;
  long m_CoverArtHeight = 0;

  bool m_HasShuffle = true;
  bool m_HasRepeat = true;
  bool m_HasPlay = true;
  bool m_HasPause = true;
  bool m_HasStop = true;
  bool m_HasSkipFwd = true;
  bool m_HasSkipRev = true;
  bool m_HasScanFwd = true;
  bool m_HasScanRev = true;
  bool m_HasMenu = true;
  bool m_HasSearch = true;
  bool m_HasBrowse = false;
};
