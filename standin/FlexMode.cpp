#include "host/FlexMode.h"

FlexMode::FlexMode() = default;

FlexMode::~FlexMode() = default;

void FlexMode::SetModesList(const std::string& list) { m_List = list; }

const std::string& FlexMode::GetModesList() const { return m_List; }
