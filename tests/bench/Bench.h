#pragma once

#include "standin/Host.h"
#include "standin/Ledger.h"
#include "standin/Messages.h"

#include <libxml/tree.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// A new directory, whose path ends with a separator; removed with the object.
class Directory {
 public:
  Directory();
  ~Directory();
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  std::string path;
};

// Keeps the traffic, each record as one line. Documents have to be well-formed for another parser.
class Recorder : public standin::Observer {
 public:
  std::vector<std::string> lines;

  // What came since the last call.
  std::vector<std::string> Take();

  void OnVariable(Change change, unsigned long id, const std::string& name, const std::string& value) override;
  void OnEvent(unsigned long id, const std::string& label) override;
  void OnUi(const std::string& xml) override;
  void OnRooms(const std::string& command, const standin::Params& params) override;
  void OnDevice(unsigned long binding, const std::string& command, const standin::Params& params,
                const ICmdReturn* ret) override;
  void OnAnswer(const std::string& request, const std::string* xml) override;
  void OnState(const std::string* xml) override;
  void OnLog(unsigned int level, const std::string& text) override;

  const ICmdReturn* lastReturn = nullptr;
};

using Step = std::function<void(standin::Host&)>;
Step Ntf(const std::string& name, const standin::Params& params = {});
Step NtfXml(const std::string& name, const std::string& xml);
Step Cmd(const std::string& name, const standin::Params& params = {});
Step Req(const std::string& name);

// The plug-in under test, loaded once.
const standin::Plugin& ThePlugin();

// A driver on the bench, initialized with id 7. All benches of the process share an image root; it holds no picture at
// first.
class Bench {
 public:
  Bench();
  ~Bench();
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  // What the step sends out.
  std::vector<std::string> operator()(const Step& step);

  // The content of the picture below the image root; nothing when there is none.
  std::optional<std::string> Picture() const;

  const std::string& root;
  Recorder recorder;
  standin::Host host;
};

// A notification of tests/notifications.txt. Each of `reads` is "text NAME" or "value NAME".
struct Notification {
  std::string name;
  std::vector<std::string> reads;

  // All parameters with texts, which may depend on the parameter's number.
  standin::Params Params(const std::function<std::string(std::size_t)>& text) const;
};
std::vector<Notification> ReadNotifications();

// Every message that a driver takes, with `text` in its values.
struct Message {
  std::string what;
  Step step;
};
std::vector<Message> Messages(const std::string& text);

std::string ReadFile(const std::string& path);

// The rows of a table in tests/, cut into columns at each tab. Blank lines and lines that begin
// with # are left out.
std::vector<std::vector<std::string>> ReadRows(const std::string& name);

// The open descriptors and what they are open on.
std::string Descriptors();

// Parses with libxml2, which the stand-in does not use. Null when the text is not well-formed.
using XmlDocument = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;
XmlDocument ParseXml(const std::string& xml);

// The root element as that parser writes it.
std::string RootText(const XmlDocument& document);
