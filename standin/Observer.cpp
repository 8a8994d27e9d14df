#include "standin/Observer.h"

namespace standin {

Observer::~Observer() = default;

void Observer::OnMisuse(const std::string&) {}

void Observer::OnHint(Hint, const std::string&) {}

void Observer::OnRead(const Read&) {}

}  // namespace standin
