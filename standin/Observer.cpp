#include "standin/Observer.h"

namespace standin {

Observer::~Observer() = default;

void Observer::OnMisuse(const std::string&) {}

void Observer::OnRead(const std::string&, const std::string&, Accessor, const std::string*) {}

}  // namespace standin
