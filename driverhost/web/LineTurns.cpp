#include "driverhost/web/LineTurns.h"

#include <exception>
#include <stdexcept>
#include <utility>

namespace driverhost {

namespace {

constexpr char s_Ending[] = "the program is ending";

}  // namespace

void LineTurns::Enter(std::shared_ptr<WebClient> client) {
  m_Waiting.push_back(std::move(client));
  Next();
}

void LineTurns::End() {
  m_Ended = true;
  Answer({LineAnswer::Result::Unavailable, s_Ending});
  Next();
}

void LineTurns::Next() {
  while (!m_Current && !m_Waiting.empty()) {
    m_Current = std::move(m_Waiting.front());
    m_Waiting.pop_front();
    try {
      if (m_Ended) throw std::runtime_error(s_Ending);
      m_Post(m_Current->TakeLine(), [this](LineAnswer answer) { Answer(std::move(answer)); });
    } catch (const std::exception& error) {
      Answer({LineAnswer::Result::Unavailable, error.what()});
    }
  }
}

void LineTurns::Answer(LineAnswer answer) {
  const auto client = std::exchange(m_Current, nullptr);
  if (!client) return;
  try {
    client->OnAnswer(std::move(answer));
  } catch (const std::exception&) {  // no memory is left for this client
    client->Close();
  }
  Next();
}

}  // namespace driverhost
