#include "host/ToString.h"

std::string tq::ToString(unsigned long n) { return std::to_string(n); }
