#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace driverhost {

// Compares what a step was expected to send out with what came, each a list of records as JSON
// texts without their steps. Documents are compared as documents, everything else exactly. Empty
// when they agree; else lines for a reader: "- " and what was expected, "+ " and what came, each
// difference in words below. Requires: every text is a JSON object.
std::string Differences(const std::vector<std::string_view>& expected,
                        const std::vector<std::string>& came, bool coloured);

}  // namespace driverhost
