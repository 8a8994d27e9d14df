#include "driverhost/web/WebServer.h"

#include "driverhost/web/Handover.h"
#include "driverhost/web/HttpConnection.h"
#include "driverhost/web/Objects.h"
#include "driverhost/web/WebAddress.h"
#include "driverhost/web/WebDoor.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <iomanip>
#include <random>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace driverhost {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::size_t s_MostClients = 64;
// Up to this number, a client beyond s_MostClients gets an answer that says so; any more
// connections are closed without one.
constexpr std::size_t s_MostConnections = 2 * s_MostClients;
constexpr int s_SendBuffer = 256 << 10;
constexpr std::chrono::seconds s_ForFarewell{1};
constexpr std::chrono::milliseconds s_ForRelief{1};

tcp::acceptor Listen(asio::io_context& loop, const tcp::endpoint& address) {
  try {
    return {loop, address};
  } catch (const boost::system::system_error& error) {
    std::ostringstream text;
    text << "cannot listen on " << address << ": " << error.code().message();
    throw std::runtime_error(text.str());
  }
}

// What only those know who have been told; nothing where other machines cannot come.
std::string MakeToken(const tcp::endpoint& address) {
  if (address.address().is_loopback()) return {};
  std::random_device random;
  std::ostringstream token;
  token << std::hex << std::setfill('0');
  for (int word = 0; word < 4; ++word) token << std::setw(8) << random();
  return token.str();
}

// A thread that gets none of the program's signals.
std::thread StartThread(std::function<void()> run) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread(std::move(run));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

}  // namespace

class WebServer::Core : public std::enable_shared_from_this<Core> {
 public:
  Core(const WebOptions& options, LineTurns::Post post)
      : m_Post(std::move(post)),
        m_Token(MakeToken(options.address)),
        m_Door{WebRules(options.pageFolder, options.imageRoot, m_Token),
               LineTurns([this](std::string line, std::function<void(LineAnswer)> done) {
                 Post(std::move(line), std::move(done));
               }),
               [this](const auto& client) { m_Clients.push_back(client); },
               std::make_shared<const std::string>(AboutObject({}))},
        m_Acceptor(Listen(m_Loop, options.address)) {}

  std::string Url() const {
    std::ostringstream url;
    url << "http://" << HostNames(OpenableEndpoint(m_Acceptor.local_endpoint())).front() << '/';
    if (!m_Token.empty()) url << "?token=" << m_Token;
    return url.str();
  }

  // On the server's thread: until the end, and after it.
  void Run();
  void Finish();

  // These may be called on any thread.
  void Send(std::string_view head, std::string_view rest) noexcept;
  void SetAbout(std::shared_ptr<const std::string> object);
  void End();

 private:
  void Accept();
  void Admit(tcp::socket socket);
  void Post(std::string line, std::function<void(LineAnswer)> done);
  void WakeAll();
  template <class Act>
  void ForEach(Act act);

  const LineTurns::Post m_Post;
  const std::string m_Token;
  WebDoor m_Door;  // before the loop, whose handlers hold clients
  asio::io_context m_Loop{1};
  Handover m_Handover{m_Loop};
  tcp::acceptor m_Acceptor;
  asio::steady_timer m_Pause{m_Loop};
  std::vector<std::weak_ptr<WebClient>> m_Clients;
  bool m_Accepting = false;
  std::atomic<bool> m_Waking = false;
  std::atomic<bool> m_Ended = false;
};

// What a handler throws, because there is no memory, ends its client and no other.
void WebServer::Core::Run() {
  const auto work = asio::make_work_guard(m_Loop);
  while (!m_Ended) {
    try {
      if (!m_Accepting) Accept();
      m_Loop.run();
    } catch (const std::exception&) {
      std::this_thread::sleep_for(s_ForRelief);
    }
  }
}

// What is left to be sent goes out, to those who read it soon.
void WebServer::Core::Finish() {
  const auto end = std::chrono::steady_clock::now() + s_ForFarewell;
  m_Loop.restart();
  asio::post(m_Loop, [this] {
    m_Acceptor.close();
    m_Pause.cancel();
    m_Handover.Stop();
    m_Door.turns.End();
    ForEach([](WebClient& client) { client.Finish(); });
  });
  while (!m_Loop.stopped() && std::chrono::steady_clock::now() < end) {
    try {
      m_Loop.run_until(end);
    } catch (const std::exception&) {
      std::this_thread::sleep_for(s_ForRelief);
    }
  }
}

void WebServer::Core::End() {
  m_Ended = true;
  m_Loop.stop();
}

void WebServer::Core::Accept() {
  m_Accepting = true;
  m_Acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
    if (error == asio::error::operation_aborted) return;
    if (!error) {
      m_Accepting = false;
      Admit(std::move(socket));
      return Accept();
    }
    // Without a free descriptor the next attempt would fail at once.
    m_Pause.expires_after(std::chrono::seconds(1));
    m_Pause.async_wait([this](boost::system::error_code stopped) {
      if (!stopped) Accept();
    });
  });
}

void WebServer::Core::Admit(tcp::socket socket) {
  std::erase_if(m_Clients, [](const auto& client) { return client.expired(); });
  if (m_Clients.size() >= s_MostConnections) return;
  boost::system::error_code ignored;
  socket.set_option(tcp::no_delay(true), ignored);
  socket.set_option(tcp::socket::send_buffer_size(s_SendBuffer), ignored);
  const bool oneTooMany = m_Clients.size() >= s_MostClients;
  m_Clients.push_back(ServeHttp(std::move(socket), m_Door, oneTooMany));
}

void WebServer::Core::Post(std::string line, std::function<void(LineAnswer)> done) {
  m_Post(std::move(line), [weak = weak_from_this(), done = std::move(done)](LineAnswer answer) {
    const auto core = weak.lock();
    if (!core) return;
    core->m_Handover.Post(
        [done, answer = std::move(answer)]() mutable { done(std::move(answer)); });
  });
}

void WebServer::Core::Send(std::string_view head, std::string_view rest) noexcept {
  const bool crowded = m_Door.store.Append(head, rest);
  if (!m_Door.wanted.exchange(false) && !crowded) return;
  if (m_Waking.exchange(true)) return;
  try {
    m_Handover.Post([this] { WakeAll(); });
  } catch (const std::exception&) {  // the next object tries again
    m_Waking = false;
    m_Door.wanted = true;
  }
}

void WebServer::Core::SetAbout(std::shared_ptr<const std::string> object) {
  m_Handover.Post([this, object = std::move(object)] {
    m_Door.about = object;
    WakeAll();
  });
}

void WebServer::Core::WakeAll() {
  m_Waking = false;
  ForEach([](WebClient& client) { client.Wake(); });
}

template <class Act>
void WebServer::Core::ForEach(Act act) {
  for (const auto& weak : m_Clients) {
    if (const auto client = weak.lock()) act(*client);
  }
}

WebServer::WebServer(const WebOptions& options, LineTurns::Post post)
    : m_Core(std::make_shared<Core>(options, std::move(post))),
      m_Thread(StartThread([core = m_Core.get()] {
        core->Run();
        core->Finish();
      })) {}

WebServer::~WebServer() {
  m_Core->End();
  m_Thread.join();
}

std::string WebServer::Url() const { return m_Core->Url(); }

void WebServer::Send(std::string_view head, std::string_view rest) noexcept {
  m_Core->Send(head, rest);
}

void WebServer::SetAbout(const About& about) {
  m_Core->SetAbout(std::make_shared<const std::string>(AboutObject(about)));
}

}  // namespace driverhost
