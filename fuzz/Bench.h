#pragma once

#include "standin/Host.h"
#include "standin/Ledger.h"
#include "standin/Messages.h"

#include <libxml/tree.h>

#include <memory>
#include <string>

// Aborts when `holds` is false, which a fuzzer takes for a failure. `what` says what should hold.
void Require(bool holds, const char* what, const std::string& text = {});

// Parses with libxml2, which the stand-in does not use. Null when the text is not well-formed.
using XmlDocument = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;
XmlDocument ParseXml(const std::string& xml);

// The root element as that parser writes it.
std::string RootText(const XmlDocument& document);

// Counts what a driver sends out and requires its documents to be well-formed.
class Witness : public standin::Observer {
 public:
  unsigned documents = 0;
  unsigned logLines = 0;

  void OnVariable(Change, unsigned long, const std::string&, const std::string&) override {}
  void OnEvent(unsigned long) override {}
  void OnUi(const std::string& xml) override;
  void OnRooms(const std::string& command, const standin::Params& params) override;
  void OnDevice(unsigned long, const std::string&, const standin::Params&, const ICmdReturn*) override {}
  void OnAnswer(const std::string& request, const std::string* xml) override;
  void OnState(const std::string* xml) override;
  void OnLog(unsigned int, const std::string&) override { ++logLines; }
};

// A driver of its own for one input, initialized with id 7. Requires that nothing is left of it.
class Bench {
 public:
  Bench();
  ~Bench();
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  // The image root of all drivers of this process, with a separator at its end.
  static const std::string& Root();

  Witness witness;
  standin::Host host;
};
