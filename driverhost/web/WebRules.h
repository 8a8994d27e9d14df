#pragma once

#include "driverhost/io/FileContent.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace driverhost {

// What is asked, as it came. Texts are borrowed.
struct WebRequest {
  std::string_view method;
  std::string_view target;
  std::vector<std::string> names;  // what "Host" may say
  // Fields that may stand once: empty when they are missing or stand more often.
  std::string_view host;
  std::string_view contentType;
  std::string_view cookie;
  std::optional<std::string_view> origin;  // nothing when it is missing

  std::string_view Path() const { return target.substr(0, target.find('?')); }
};

struct WebAnswer {
  unsigned status = 200;
  std::string type;
  std::variant<std::string, std::string_view, FilePtr> body;  // a view lives as long as the rules
  std::vector<std::pair<const char*, std::string>> fields = {};
};

// An answer of one line of text, to which the line break is added.
WebAnswer PlainAnswer(unsigned status, const std::string& text);

// Says what is served and what is refused; knows nothing of connections.
class WebRules {
 public:
  // Reads the page's files below `pageFolder`; throws std::runtime_error when there are none.
  // `token` is what every request needs, empty for nothing.
  WebRules(const std::string& pageFolder, std::string imageRoot, std::string token);

  // The answer that refuses the request, whatever it asks for; nothing for one that is let in.
  std::optional<WebAnswer> Refusal(const WebRequest& request) const;

  // The page's files and the pictures.
  WebAnswer Get(const WebRequest& request) const;

 private:
  bool KnowsToken(const WebRequest& request) const;
  WebAnswer Picture(std::string_view path) const;

  struct PageFile {
    std::string type;
    std::string content;
  };
  std::map<std::string, PageFile, std::less<>> m_Files;
  const std::string m_ImageRoot;
  const std::string m_Token;
};

}  // namespace driverhost
