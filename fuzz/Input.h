#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Takes a fuzzer's bytes apart from the front. At their end come zeros and empty texts.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_Bytes(reinterpret_cast<const char*>(data), size) {}

  bool AtEnd() const { return m_At >= m_Bytes.size(); }

  unsigned char Byte() { return AtEnd() ? 0 : static_cast<unsigned char>(m_Bytes[m_At++]); }

  // The text ends at a backslash and the byte after it. Two backslashes stand for one in the text.
  std::string Text() {
    std::string text;
    while (!AtEnd()) {
      const unsigned char c = Byte();
      if (c == '\\' && Byte() != '\\') break;
      text += static_cast<char>(c);
    }
    return text;
  }

  std::string Rest() {
    const std::size_t at = m_At < m_Bytes.size() ? m_At : m_Bytes.size();
    m_At = m_Bytes.size();
    return m_Bytes.substr(at);
  }

 private:
  const std::string m_Bytes;
  std::size_t m_At = 0;
};
