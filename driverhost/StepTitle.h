#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace driverhost {

// How a session's line is shown above its traffic: "notify NAME  parameter=value ...", legible and
// shortened. `kind` is the line's main key; the rest of the line may be wrong.
std::string StepTitle(const std::string& kind, const nlohmann::ordered_json& line);

}  // namespace driverhost
