#include "tests/bench/Bench.h"

#include <boost/algorithm/string/replace.hpp>
#include <gtest/gtest.h>

#include <set>

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
      {{"a\0b", 3}, "a" + s_Lost + "b"},
      {"\ttab\r\nline\rend\n", "\ttab\r\nline\rend\n"},
      {"<a b=\"c\">&amp;]]></a>'", "<a b=\"c\">&amp;]]></a>'"},
      {"\xC3\xA4\xE6\xB0\xB4\xF0\x9F\x9A\x86\x7F\xC2\x85", "\xC3\xA4\xE6\xB0\xB4\xF0\x9F\x9A\x86\x7F\xC2\x85"},
      {"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD", s_Lost + s_Lost + s_Lost},
      {"\x80 \xC3 \xE6\xB0 \xF0\x9F\x9A", s_Lost + ' ' + s_Lost + ' ' + s_Lost + ' ' + s_Lost},
      {"\xC0\x80 \xE0\x9F\x80", s_Lost + s_Lost + ' ' + s_Lost + s_Lost + s_Lost},
      {"\xED\xA0\x80 \xF4\x90\x80\x80", s_Lost + s_Lost + s_Lost + ' ' + s_Lost + s_Lost + s_Lost + s_Lost},
      {"\xF5\xFF\xF0\x8F", s_Lost + s_Lost + s_Lost + s_Lost},
      {std::string(300000, 'x') + '&', std::string(300000, 'x') + '&'},  // more than a small stack holds
  };
  for (char c = 1; c < 0x20; ++c) {
    const bool kept = c == '\t' || c == '\n' || c == '\r';
    texts.push_back({{c, '.'}, (kept ? std::string(1, c) : s_Lost) + '.'});
  }
  return texts;
}

// As canonical XML writes it.
std::string Escaped(std::string text) {
  boost::replace_all(text, "&", "&amp;");
  boost::replace_all(text, "<", "&lt;");
  boost::replace_all(text, ">", "&gt;");
  boost::replace_all(text, "\r", "&#13;");
  return text;
}

}  // namespace

TEST(Texts, ReachEveryDocumentWhateverTheirBytes) {
  const std::set<std::string> unsent = {"value cover_art", "value format", "text size", "value last"};
  const std::vector<Step> others = {Ntf("ADD_LIST_ITEM", {{"last", "True"}}), Cmd("QUERY_CURRENT_SETTINGS"),
                                    Req("GET_PLAY_STATUS"), Req("GET_SHUFFLE_MODES")};
  for (const Text& text : Texts()) {
    Bench bench;
    bench(Ntf("NEW_LIST"));
    for (const auto& notification : ReadNotifications()) {
      SCOPED_TRACE(notification.name + ": " + text.sent.substr(0, 40));
      // The mark around each text says which value it is, and keeps blanks at its ends from being trimmed.
      const auto mark = [&](std::size_t i) { return notification.name + std::to_string(i) + ':' + text.sent + '.'; };
      Ntf(notification.name, notification.Params(mark))(bench.host);
      for (const Step& step : others) step(bench.host);
      std::string documents;
      for (const auto& line : bench.recorder.Take()) {
        const std::size_t xml = line.find('<');
        if (line.rfind("log", 0) != 0 && xml != std::string::npos) documents += RootText(ParseXml(line.substr(xml)));
      }
      for (std::size_t i = 0; i < notification.reads.size(); ++i) {
        const std::string read = '>' + notification.name + std::to_string(i) + ':' + Escaped(text.read) + ".<";
        EXPECT_NE(documents.find(read) != std::string::npos, unsent.count(notification.reads[i]) != 0)
            << notification.reads[i];
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
