#include "driverhost/web/TrafficListener.h"

#include "driverhost/web/AnswerFields.h"
#include "driverhost/web/Objects.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <array>
#include <chrono>
#include <optional>
#include <utility>

namespace driverhost {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace websocket = boost::beast::websocket;

constexpr std::chrono::seconds s_ForHandshake{10};
// A client is asked after half of it.
constexpr std::chrono::seconds s_LongestSilence{60};
constexpr std::size_t s_LargestFrame = 16384;

class TrafficListener : public WebClient, public std::enable_shared_from_this<TrafficListener> {
 public:
  TrafficListener(asio::ip::tcp::socket socket, WebDoor& door)
      : m_Door(door), m_Socket(std::move(socket)), m_Place(door.store.Beginning()) {}

  void Start(const UpgradeRequest& request);
  void Close() override;
  void Finish() override;
  void Wake() override;
  std::string TakeLine() override { return m_Posted.Lend(); }
  void OnAnswer(LineAnswer answer) override;

 private:
  using Error = boost::system::error_code;

  void Read();
  void OnRead(Error error, std::size_t size);
  void PostLine();
  void Tell();
  std::optional<asio::const_buffer> Choose();
  void OnTold(Error error);

  WebDoor& m_Door;
  websocket::stream<beast::tcp_stream, false> m_Socket;
  bool m_IsOpen = false;
  bool m_Finishing = false;

  std::array<char, s_LargestFrame> m_Part;
  PaidText m_Line{m_Door.budget};  // as far as it has come
  bool m_LineIsWhole = false;
  bool m_LineIsLost = false;
  PaidText m_Posted{m_Door.budget};  // waits for its turn or its answer
  bool m_Posting = false;

  std::string m_Error;  // waits to be told
  ObjectStore::Place m_Place;
  std::shared_ptr<const std::string> m_About;
  // What is being told: an object of the store, or a text.
  bool m_Telling = false;
  ObjectStore::Object m_Object;
  std::string m_Text;
};

void TrafficListener::Start(const UpgradeRequest& request) {
  beast::get_lowest_layer(m_Socket).expires_never();
  m_Socket.set_option({s_ForHandshake, s_LongestSilence, true});
  m_Socket.set_option(websocket::stream_base::decorator(
      [](websocket::response_type& response) { SetAnswerFields(response); }));
  m_Socket.read_message_max(WebDoor::s_LongestLine);
  m_Socket.write_buffer_bytes(s_LargestFrame);
  m_Socket.async_accept(request, [self = shared_from_this()](Error error) {
    if (error) return;
    self->m_IsOpen = true;
    self->Read();
    self->Tell();
  });
}

void TrafficListener::Close() {
  m_IsOpen = false;
  beast::get_lowest_layer(m_Socket).close();
}

void TrafficListener::Finish() {
  m_Finishing = true;
  Tell();
}

void TrafficListener::Wake() {
  if (m_Object.text && m_Door.store.IsGone(m_Place)) return Close();
  Tell();
}

void TrafficListener::Read() {
  m_Socket.async_read_some(
      asio::buffer(m_Part),
      [self = shared_from_this()](Error error, std::size_t size) { self->OnRead(error, size); });
}

void TrafficListener::OnRead(Error error, std::size_t size) {
  if (error) return Close();
  if (!m_Line.Append({m_Part.data(), size})) m_LineIsLost = true;
  m_LineIsWhole = m_Socket.is_message_done();
  if (m_LineIsWhole) {
    PostLine();
  } else {
    Read();
  }
}

// The next line is not read on before this one is on its way, so that a client has at most two.
void TrafficListener::PostLine() {
  if (!m_LineIsWhole || m_Posting || !m_Error.empty()) return;
  m_LineIsWhole = false;
  if (m_LineIsLost) {
    m_LineIsLost = false;
    m_Line.Clear();
    m_Error = "too many long lines at a time";
    Tell();
  } else {
    m_Posting = true;
    m_Posted.TakeFrom(m_Line);
    m_Door.turns.Enter(shared_from_this());
  }
  Read();
}

void TrafficListener::OnAnswer(LineAnswer answer) {
  m_Posted.Clear();
  m_Posting = false;
  if (answer.result != LineAnswer::Result::Done) m_Error = std::move(answer.text);
  Tell();
  PostLine();
}

void TrafficListener::Tell() {
  if (!m_IsOpen || m_Telling) return;
  const auto what = Choose();
  if (what) {
    m_Telling = true;
    m_Socket.async_write(
        *what, [self = shared_from_this()](Error error, std::size_t) { self->OnTold(error); });
  } else if (m_Finishing) {
    m_IsOpen = false;
    m_Socket.async_close(websocket::close_code::going_away, [self = shared_from_this()](Error) {});
  }
}

// The flag is set before the store is looked at, so that no object can come unnoticed in between.
std::optional<asio::const_buffer> TrafficListener::Choose() {
  if (!m_Error.empty()) {
    m_Text = ErrorObject(std::exchange(m_Error, {}));
    return asio::buffer(m_Text);
  }
  if (m_About != m_Door.about) {
    m_About = m_Door.about;
    return asio::buffer(*m_About);
  }
  m_Door.wanted = true;
  auto next = m_Door.store.Take(m_Place);
  if (!next) return std::nullopt;
  if (next->missing > 0) {
    m_Text = MissingObject(next->missing);
    return asio::buffer(m_Text);
  }
  m_Object = std::move(next->object);
  return asio::const_buffer(m_Object.text.get(), m_Object.size);
}

void TrafficListener::OnTold(Error error) {
  if (error) return Close();
  m_Telling = false;
  m_Object = {};
  PostLine();
  Tell();
}

}  // namespace

std::shared_ptr<WebClient> ServeTraffic(asio::ip::tcp::socket socket, const UpgradeRequest& request,
                                        WebDoor& door) {
  const auto listener = std::make_shared<TrafficListener>(std::move(socket), door);
  listener->Start(request);
  return listener;
}

}  // namespace driverhost
