#include "driverhost/HttpRules.h"

#include "driverhost/FileContent.h"

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <charconv>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

namespace driverhost {

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
namespace fs = std::filesystem;

constexpr std::uintmax_t s_LargestPicture = std::uintmax_t{64} << 20U;
constexpr std::string_view s_Images = "/images/";

// A browser does not interpret files with other names.
std::string TypeOf(const fs::path& path) {
  static const std::map<std::string, std::string> types = {
      {".css", "text/css; charset=utf-8"},
      {".gif", "image/gif"},
      {".html", "text/html; charset=utf-8"},
      {".jpeg", "image/jpeg"},
      {".jpg", "image/jpeg"},
      {".js", "text/javascript; charset=utf-8"},
      {".png", "image/png"},
      {".svg", "image/svg+xml"},
      {".webp", "image/webp"},
  };
  const auto found = types.find(path.extension().string());
  return found == types.end() ? "application/octet-stream" : found->second;
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

// The ways to write the address in "Host".
std::vector<std::string> NamesOf(const boost::asio::ip::tcp::endpoint& served) {
  asio::ip::address address = served.address();
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    address = asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
  }
  const std::string text = address.to_string();
  std::vector<std::string> hosts = {address.is_v6() ? '[' + text + ']' : text};
  if (address.is_loopback()) hosts.emplace_back("localhost");
  std::vector<std::string> names;
  for (const std::string& host : hosts) {
    names.push_back(host + ':' + std::to_string(served.port()));
    if (served.port() == 80) names.push_back(host);
  }
  return names;
}

bool IsJson(std::string_view type) {
  const std::size_t end = type.substr(0, type.find(';')).find_last_not_of(" \t");
  return boost::beast::iequals({type.data(), end == std::string_view::npos ? 0 : end + 1},
                               "application/json");
}

// The one value of a field that may stand once; empty where it is missing or stands more often.
std::string Only(const HttpHeader& header, http::field name) {
  return header.count(name) == 1 ? std::string(header[name]) : std::string();
}

HttpAnswer NotFound() { return PlainAnswer(http::status::not_found, "there is nothing here"); }

}  // namespace

HttpAnswer PlainAnswer(http::status status, const std::string& text) {
  return {status, "text/plain; charset=utf-8", text + '\n'};
}

HttpRules::HttpRules(const std::string& pageFolder, std::string imageRoot)
    : m_ImageRoot(std::move(imageRoot)) {
  for (const fs::directory_entry& entry : fs::directory_iterator(pageFolder)) {
    const std::string name = entry.path().filename().string();
    m_Files.insert({'/' + name, {http::status::ok, TypeOf(name), ReadFile(entry.path())}});
  }
  const auto index = m_Files.extract("/index.html");
  if (!index) throw std::runtime_error("no index.html in " + pageFolder);
  m_Files.insert({"/", std::move(index.mapped())});
}

std::optional<HttpAnswer> HttpRules::Refusal(const HttpHeader& header,
                                             const boost::asio::ip::tcp::endpoint& served) const {
  const std::string host = Only(header, http::field::host);
  const std::vector<std::string> names = NamesOf(served);
  if (std::find(names.begin(), names.end(), host) == names.end()) {
    return PlainAnswer(http::status::forbidden, "the Host is not " + names.front());
  }
  if (header.count(http::field::origin) != 0 &&
      Only(header, http::field::origin) != "http://" + host) {
    return PlainAnswer(http::status::forbidden, "a foreign Origin");
  }
  const bool isSession = header.target() == "/session";
  if (header.method() != (isSession ? http::verb::post : http::verb::get)) {
    return PlainAnswer(http::status::method_not_allowed,
                       isSession ? "/session takes POST" : "only GET is served here");
  }
  if (isSession && !IsJson(Only(header, http::field::content_type))) {
    return PlainAnswer(http::status::unsupported_media_type, "send application/json");
  }
  return std::nullopt;
}

HttpAnswer HttpRules::Get(std::string_view target) const {
  const std::string_view path = target.substr(0, target.find('?'));
  const auto file = m_Files.find(path);
  if (file != m_Files.end()) return file->second;
  if (path.substr(0, s_Images.size()) != s_Images) return NotFound();
  const auto decoded = PercentDecoded(path.substr(s_Images.size()));
  return decoded ? Picture(*decoded) : NotFound();
}

// The links in a path are followed first, to know where it leads. The file is read whole between
// two calls into the driver, which may write it again in the next call.
HttpAnswer HttpRules::Picture(const std::string& path) const {
  try {
    const fs::path root = fs::canonical(m_ImageRoot);
    const fs::path file = fs::canonical(root / fs::path(path).relative_path());
    const auto [end, _] = std::mismatch(root.begin(), root.end(), file.begin(), file.end());
    if (end != root.end() || !fs::is_regular_file(file) || fs::file_size(file) > s_LargestPicture) {
      return NotFound();
    }
    return {http::status::ok, TypeOf(file), ReadFile(file)};
  } catch (const std::exception&) {
    return NotFound();
  }
}

}  // namespace driverhost
