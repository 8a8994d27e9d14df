#include "driverhost/check/CaseResult.h"

#include "driverhost/text/Count.h"

#include <nlohmann/json.hpp>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

const char* Word(const CaseResult& result) {
  if (result.status != s_AllWell) return "failed";
  return result.updated > 0 ? "updated" : "ok";
}

Json Parsed(const std::vector<std::string>& texts) {
  Json records = Json::array();
  for (const std::string& text : texts) records.push_back(Json::parse(text));
  return records;
}

Json DifferenceJson(const CaseDifference& difference) {
  Json json = {{"line", difference.line},
               {"expected", Parsed(difference.expected)},
               {"came", Parsed(difference.came)}};
  if (difference.times > 1) json["times"] = difference.times;
  return json;
}

}  // namespace

std::string DifferenceText(const CaseResult& result, const CaseDifference& difference) {
  std::string text = result.path + ':' + std::to_string(difference.line) + ": " + difference.title +
                     '\n' + difference.words;
  if (difference.times > 1) {
    text += "    " + std::to_string(difference.times) + " times, here first\n";
  }
  return text;
}

std::string ResultText(const CaseResult& result) {
  const std::string text = std::string(Word(result)) + ' ' + result.path;
  if (result.status != s_AllWell) return text + '\n';
  if (result.updated > 0) return text + " (" + Count(result.updated, "record") + ")\n";
  return text + " (" + Count(result.lines, "line") + ", " + Count(result.records, "record") + ")\n";
}

std::string ResultJson(const CaseResult& result) {
  Json differences = Json::array();
  for (const CaseDifference& difference : result.differences) {
    differences.push_back(DifferenceJson(difference));
  }
  const Json json = {{"case", result.path},
                     {"result", Word(result)},
                     {"lines", result.lines},
                     {"records", result.records},
                     {"differences", std::move(differences)}};
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace driverhost
