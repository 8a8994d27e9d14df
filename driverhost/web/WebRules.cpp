#include "driverhost/web/WebRules.h"

#include "driverhost/web/Picture.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <stdexcept>

namespace driverhost {

namespace {

constexpr std::string_view s_Images = "/images/";
constexpr std::string_view s_Session = "/session";
constexpr std::string_view s_Json = "application/json";
constexpr std::string_view s_TokenKey = "token=";

std::string TypeOf(const std::string& name) {
  static const std::map<std::string, std::string> types = {
      {".css", "text/css; charset=utf-8"},
      {".html", "text/html; charset=utf-8"},
      {".js", "text/javascript; charset=utf-8"},
      {".svg", "image/svg+xml"},
  };
  const auto found = types.find(std::filesystem::path(name).extension());
  return found == types.end() ? PictureType(name) : found->second;
}

// Nothing for a path that is not well-formed.
std::optional<std::string> PercentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      decoded += text[at];
      continue;
    }
    unsigned char byte = 0;
    const std::string_view digits = text.substr(at + 1, 2);
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (error != std::errc() || digits.size() != 2 || end != digits.data() + 2 || byte == 0) {
      return std::nullopt;
    }
    decoded += static_cast<char>(byte);
    at += 2;
  }
  return decoded;
}

bool IsJson(std::string_view type) {
  type = type.substr(0, type.find(';'));
  type = type.substr(0, type.find_last_not_of(" \t") + 1);
  return std::equal(type.begin(), type.end(), s_Json.begin(), s_Json.end(), [](char a, char b) {
    return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b);
  });
}

// Whether one of the parts, which the separator ends, is `whole`.
bool HasPart(std::string_view text, char separator, std::string_view whole) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (text.substr(0, end) == whole) return true;
    text.remove_prefix(std::min(end + 1, text.size()));
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  }
  return false;
}

std::string_view Query(const WebRequest& request) {
  return request.target.substr(std::min(request.Path().size() + 1, request.target.size()));
}

// A browser sends the cookies of one port to all.
std::string CookieName(const WebRequest& request) {
  const std::string& name = request.names.front();
  return "driverhost-" + name.substr(name.rfind(':') + 1) + '=';
}

WebAnswer NotFound() { return PlainAnswer(404, "there is nothing here"); }

}  // namespace

WebAnswer PlainAnswer(unsigned status, const std::string& text) {
  return {status, "text/plain; charset=utf-8", text + '\n'};
}

WebRules::WebRules(const std::string& pageFolder, std::string imageRoot, std::string token)
    : m_ImageRoot(std::move(imageRoot)), m_Token(std::move(token)) {
  for (const auto& entry : std::filesystem::directory_iterator(pageFolder)) {
    const std::string name = entry.path().filename();
    m_Files.insert({'/' + name, {TypeOf(name), ReadFile(entry.path())}});
  }
  auto index = m_Files.extract("/index.html");
  if (!index) throw std::runtime_error("no index.html in " + pageFolder);
  m_Files.insert({"/", std::move(index.mapped())});
}

std::optional<WebAnswer> WebRules::Refusal(const WebRequest& request) const {
  if (std::find(request.names.begin(), request.names.end(), request.host) == request.names.end()) {
    return PlainAnswer(403, "the Host is not " + request.names.front());
  }
  if (request.origin && *request.origin != "http://" + std::string(request.host)) {
    return PlainAnswer(403, "a foreign Origin");
  }
  if (!KnowsToken(request)) {
    return PlainAnswer(403, "open the address that the program has told: it carries a token");
  }
  const bool isSession = request.Path() == s_Session;
  const bool isGet = request.method == "GET" || request.method == "HEAD";
  if (isSession ? request.method != "POST" : !isGet) {
    WebAnswer answer = PlainAnswer(405, "this method is not served here");
    answer.fields.emplace_back("Allow", isSession ? "POST" : "GET, HEAD");
    return answer;
  }
  if (isSession && !IsJson(request.contentType)) {
    return PlainAnswer(415, "send application/json");
  }
  return std::nullopt;
}

bool WebRules::KnowsToken(const WebRequest& request) const {
  return m_Token.empty() || HasPart(request.cookie, ';', CookieName(request) + m_Token) ||
         HasPart(Query(request), '&', std::string(s_TokenKey) + m_Token);
}

WebAnswer WebRules::Get(const WebRequest& request) const {
  const std::string_view path = request.Path();
  if (path.starts_with(s_Images)) return Picture(path.substr(s_Images.size()));
  const auto file = m_Files.find(path);
  if (file == m_Files.end()) return NotFound();
  WebAnswer answer{200, file->second.type, std::string_view(file->second.content)};
  if (!m_Token.empty()) {
    answer.fields.emplace_back(
        "Set-Cookie", CookieName(request) + m_Token + "; Path=/; HttpOnly; SameSite=Strict");
  }
  return answer;
}

WebAnswer WebRules::Picture(std::string_view path) const {
  const auto decoded = PercentDecoded(path);
  FilePtr file = decoded ? OpenPicture(m_ImageRoot, *decoded) : nullptr;
  if (!file) return NotFound();
  return {200, PictureType(*decoded), std::move(file)};
}

}  // namespace driverhost
