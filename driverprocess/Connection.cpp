#include "driverprocess/Connection.h"

#include "session/Utf8.h"

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

namespace driverprocess {

namespace {

constexpr int s_LeastDescriptor = 200;

int Move(int descriptor) {
  const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, s_LeastDescriptor);
  if (moved < 0) throw std::runtime_error(std::string("no connection: ") + std::strerror(errno));
  close(descriptor);
  return moved;
}

void WriteAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t size = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (size >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(size));
    } else if (errno != EINTR) {
      std::fprintf(stderr, "the connection to the bench is lost: %s\n", std::strerror(errno));
      _exit(1);
    }
  }
}

}  // namespace

Connection::Connection(int descriptor) : m_Socket(Move(descriptor)) {}

std::optional<std::string_view> Connection::Read() {
  std::array<char, 65536> part;
  for (;;) {
    if (const auto line = m_Lines.Next()) return line->text;
    const ssize_t size = recv(m_Socket, part.data(), part.size(), 0);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return std::nullopt;
    m_Lines.Append({part.data(), static_cast<std::size_t>(size)});
  }
}

void Connection::Write(std::string line) noexcept {
  try {
    line += '\n';
  } catch (const std::bad_alloc&) {
    Fail("out of memory");
  }
  const std::lock_guard<std::mutex> lock(m_Writing);
  WriteAll(m_Socket, line);
}

void Connection::Report(const char* key, std::string_view text) noexcept {
  try {
    const nlohmann::json report = {{key, text}};
    Write(report.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  } catch (const std::exception&) {
    Fail("out of memory");
  }
}

void Connection::Fail(std::string_view why) noexcept {
  const std::lock_guard<std::mutex> lock(m_Writing);
  WriteAll(m_Socket, R"({"failed":")");
  WriteAll(m_Socket, why);
  WriteAll(m_Socket, R"("})");
  WriteAll(m_Socket, "\n");
  _exit(1);
}

}  // namespace driverprocess
