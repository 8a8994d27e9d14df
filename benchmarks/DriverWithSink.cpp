#include "benchmarks/DriverWithSink.h"

#include <malloc.h>

#include <stdexcept>

void Sink::OnLog(unsigned int, const std::string& text) { throw std::runtime_error(text); }

DriverWithSink::DriverWithSink(const std::string& imageRoot)
    : m_Plugin(MEDIA_PLUGIN), m_Host(m_Plugin, m_Sink, imageRoot) {
  m_Host.Initialize(1);
}

std::size_t HeapInUse() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}
