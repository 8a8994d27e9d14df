#pragma once

#include "driverprocess/Connection.h"
#include "standin/Observer.h"

#include <nlohmann/json_fwd.hpp>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace driverprocess {

// Reports to the bench what the driver does.
class Reporter : public standin::Observer {
 public:
  // Borrowed; outlives the object.
  explicit Reporter(Connection& connection) : m_Connection(connection) {}

  // What comes from now on belongs to that message.
  void BeginMessage(standin::Read::Message kind, const std::string& name);

  // Reports which parameters the handler has read, unless it read the same of the last message of
  // that name.
  void EndMessage();

  // The driver has written a file: its path below `imageRoot`.
  void OnFile(const std::string& imageRoot, const std::string& path);

  void OnVariable(Change change, unsigned long id, const std::string& name,
                  const std::string& value) override;
  void OnEvent(unsigned long id, const std::string& label) override;
  void OnUi(const std::string& xml) override;
  void OnRooms(const std::string& command, const standin::Params& params) override;
  void OnDevice(unsigned long binding, const std::string& command, const standin::Params& params,
                const ICmdReturn* ret) override;
  void OnAnswer(const std::string& request, const std::string* xml) override;
  void OnState(const std::string* xml) override;
  void OnLog(unsigned int level, const std::string& text) override;
  void OnMisuse(const std::string& what) override;
  void OnHint(standin::Hint hint, const std::string& what) override;
  void OnRead(const standin::Read& read) override;

 private:
  void Write(const nlohmann::ordered_json& report);

  // What a handler read, and whether it was there.
  using Reads = std::vector<std::pair<std::string, bool>>;

  using Message = std::pair<standin::Read::Message, std::string>;

  Connection& m_Connection;
  Message m_Message;
  Reads m_Reads;
  bool m_Whole = false;  // the handler takes the message as a whole
  std::map<Message, Reads> m_Known;
  std::set<unsigned long> m_Labelled;
};

}  // namespace driverprocess
