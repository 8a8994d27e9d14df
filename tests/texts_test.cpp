#include <gtest/gtest.h>

#include "tests/Bench.h"

namespace {

// A text, and the characters that a reader of the document finds.
struct Text {
  std::string sent;
  std::string read;
};

const std::string s_Lost = "\xEF\xBF\xBD";

std::vector<Text> Texts() {
  std::vector<Text> texts = {
      {" leading and trailing ", " leading and trailing "},
      {"\ttab\r\nline\rend\n", "\ttab\r\nline\rend\n"},
      {"<a b=\"c\">&amp;]]></a>'", "<a b=\"c\">&amp;]]></a>'"},
      {"\xC3\xA4\xE6\xB0\xB4\xF0\x9F\x9A\x86\x7F\xC2\x85", "\xC3\xA4\xE6\xB0\xB4\xF0\x9F\x9A\x86\x7F\xC2\x85"},
      {"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD", s_Lost + s_Lost + s_Lost},
      {"\x80 \xC3 \xE6\xB0 \xF0\x9F\x9A", s_Lost + ' ' + s_Lost + ' ' + s_Lost + ' ' + s_Lost},
      {"\xC0\x80 \xE0\x9F\x80", s_Lost + s_Lost + ' ' + s_Lost + s_Lost + s_Lost},
      {"\xED\xA0\x80 \xF4\x90\x80\x80", s_Lost + s_Lost + s_Lost + ' ' + s_Lost + s_Lost + s_Lost + s_Lost},
      {"\xF5\xFF\xF0\x8F", s_Lost + s_Lost + s_Lost + s_Lost},
      {std::string(1 << 20, 'x') + '&', std::string(1 << 20, 'x') + '&'},
  };
  for (char c = 1; c < 0x20; ++c) {
    const bool kept = c == '\t' || c == '\n' || c == '\r';
    texts.push_back({{c, '.'}, (kept ? std::string(1, c) : s_Lost) + '.'});
  }
  return texts;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
  return text;
}

// As canonical XML writes it.
std::string Escaped(std::string text) {
  text = Replaced(Replaced(Replaced(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
  return Replaced(text, "\r", "&#xD;");
}

}  // namespace

TEST(Texts, ReachEveryDocumentWhateverTheirBytes) {
  const struct {
    const char* notification;
    std::vector<const char*> params;
    std::vector<Step> after;
  } cases[] = {
      {"CURRENT_SETTINGS", {"online"}, {}},
      {"MEDIA_INFO_CHANGED", {"media_info_1", "media_info_2", "media_info_3"}, {}},
      {"UPDATE_MEDIA_INFO", {"media_info_1", "media_info_2", "media_info_3"}, {Cmd("QUERY_CURRENT_SETTINGS")}},
      {"PLAY_STATUS_CHANGED", {"play_status"}, {Req("GET_PLAY_STATUS")}},
      {"ONLINE_STATUS_CHANGED", {"online_status"}, {Req("GET_ONLINE_STATUS")}},
      {"PLAY_TIME_CHANGED", {"elapsed", "remaining"}, {}},
      {"QUEUE_PROGRESS_CHANGED", {"current", "total"}, {}},
      {"SHUFFLE_CHANGED", {"shuffle_mode"}, {}},
      {"REPEAT_CHANGED", {"repeat_mode"}, {}},
      {"COVERART_PATH_CHANGED", {"image_path", "width", "height"}, {}},
      {"NEW_COVERART", {"width", "height"}, {}},
      {"SET_SHUFFLE_MODES", {"shuffle_modes"}, {Req("GET_SHUFFLE_MODES")}},
      {"SET_REPEAT_MODES", {"repeat_modes"}, {Req("GET_REPEAT_MODES")}},
      {"SET_MEDIA_LABELS", {"media_labels"}, {Cmd("QUERY_CURRENT_SETTINGS")}},
      {"NEW_MENU", {"title", "num_items"}, {Ntf("ADD_MENU_ITEM", {{"last", "True"}})}},
      {"NEW_LIST", {"title", "total_items", "num_items", "first", "clear"}, {Ntf("ADD_LIST_ITEM", {{"last", "True"}})}},
      {"ADD_LIST_ITEM", {"id", "type", "text"}, {Ntf("ADD_LIST_ITEM", {{"last", "True"}})}},
      {"ADD_MENU_ITEM", {"id", "type", "text"}, {Ntf("ADD_MENU_ITEM", {{"last", "True"}})}},
      {"VOLUME_CHANGED", {"volume"}, {}},
  };
  for (const Text& text : Texts()) {
    Bench bench;
    bench(Ntf("NEW_LIST"));
    for (const auto& test : cases) {
      SCOPED_TRACE(test.notification + (": " + text.sent.substr(0, 40)));
      standin::Params params;
      std::size_t left = 0;
      // A mark before each text tells the values apart, and the rooms' trimming from a loss.
      for (const char* param : test.params) params.push_back({param, std::to_string(left++) + ':' + text.sent + '.'});
      std::vector<std::string> lines = bench(Ntf(test.notification, params));
      for (const Step& step : test.after) {
        for (const auto& line : bench(step)) lines.push_back(line);
      }
      const auto document = [](const std::string& line) {
        return line[0] == 'u' || line[0] == 'a' || line[0] == 'r' ? Canonical(line.substr(line.find('<')))
                                                                  : std::string();
      };
      for (std::size_t i = 0; i < left; ++i) {
        const std::string read = ">" + std::to_string(i) + ':' + Escaped(text.read) + ".<";
        std::size_t found = 0;
        for (const auto& line : lines) found += document(line).find(read) != std::string::npos;
        EXPECT_GE(found,
                  1U + (test.after.empty() || std::string(test.notification).find("_ITEM") != std::string::npos ||
                                std::string(test.notification).rfind("NEW_", 0) == 0
                            ? 0U
                            : 1U));
      }
    }
  }
}

TEST(Traffic, HoldsTheBytesThatCame) {
  Bench bench;
  const std::string bytes = "\x01\xFF\r";
  EXPECT_EQ(bench(Ntf("PLAY_STATUS_CHANGED", {{"play_status", bytes}})).front(), "changed 1000 PLAY_STATUS=" + bytes);
  EXPECT_EQ(bench(Cmd("PLAY", {{"A", bytes}})).front(), "device 5001 PLAY A:STRING=" + bytes);
  EXPECT_EQ(bench(Ntf("NEW_COVERART", {{"format", bytes}})).front(),
            "log 3 ipod::OnNtfCoverArt: invalid format " + bytes);
}
