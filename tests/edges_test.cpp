#include "driverhost/text/Documents.h"
#include "driverhost/web/WebAddress.h"
#include "driverhost/web/WebRules.h"
#include "driverprocess/JpegSize.h"
#include "session/Base64.h"
#include "session/Legible.h"
#include "session/LineSplitter.h"
#include "session/NearestWord.h"
#include "session/Utf8.h"
#include "standin/Utf8.h"
#include "tests/bench/Bench.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <clocale>
#include <fstream>
#include <random>

using session::LineSplitter;
using testing::ElementsAreArray;
using testing::HasSubstr;

namespace {

// What a splitter makes of a text that comes in pieces, a number before each line.
std::vector<std::string> Lines(const std::string& text, const std::vector<std::size_t>& cuts) {
  LineSplitter splitter;
  std::vector<std::string> lines;
  const auto take = [&] {
    while (const auto line = splitter.Next()) lines.push_back(std::to_string(line->number) + std::string(line->text));
  };
  std::size_t begin = 0;
  for (const std::size_t end : cuts) {
    splitter.Append(std::string_view(text).substr(begin, end - begin));
    take();
    begin = end;
  }
  splitter.Append(std::string_view(text).substr(begin));
  take();
  splitter.End();
  take();
  return lines;
}

// The length of a valid UTF-8 sequence at the start of a text, by the definition: its code point, written again.
std::size_t ValidLength(const std::string& text) {
  for (const std::size_t length : {1U, 2U, 3U, 4U}) {
    if (text.size() < length) return 0;
    static constexpr unsigned marks[] = {0, 0xC0, 0xE0, 0xF0}, least[] = {0, 0x80, 0x800, 0x10000};
    const auto byte = [&](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(text[i])); };
    unsigned code = length == 1 ? byte(0) : byte(0) & (0xFFU >> (length + 1));
    const unsigned mark = length == 1 ? byte(0) & 0x80U : byte(0) & (0xFFU << (7 - length)) & 0xFFU;
    if (mark != marks[length - 1]) continue;
    for (std::size_t i = 1; i < length; ++i) {
      if ((byte(i) & 0xC0U) != 0x80) return 0;
      code = code << 6U | (byte(i) & 0x3FU);
    }
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    return code >= least[length - 1] && code <= 0x10FFFF && !surrogate ? length : 0;
  }
  return 0;
}

// Letters added, left out or replaced, by the plain definition.
std::size_t Edits(std::string_view one, std::string_view two) {
  if (one.empty() || two.empty()) return one.size() + two.size();
  const std::size_t replaced = Edits(one.substr(1), two.substr(1)) + (one[0] == two[0] ? 0 : 1);
  return std::min({replaced, Edits(one.substr(1), two) + 1, Edits(one, two.substr(1)) + 1});
}

}  // namespace

TEST(Edges, LinesAreTheSameHoweverTheyAreCut) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"", {}},
      {"\n", {"1"}},
      {"a", {"1a"}},
      {"a\r\nb\r", {"1a", "2b"}},
      {"\xEF\xBB\xBF\n\xEF\xBB\xBF", {"1", "2\xEF\xBB\xBF"}},
      {"\xEF\xBB", {"1\xEF\xBB"}},
      {"a\r\r\n\n\nb\n", {"1a\r", "2", "3", "4b"}},
      {std::string("\0\n\0", 3), {std::string("1\0", 2), std::string("2\0", 2)}},
  };
  for (const auto& [text, lines] : cases) {
    for (std::size_t one = 0; one <= text.size(); ++one) {
      for (std::size_t two = one; two <= text.size(); ++two) {
        EXPECT_THAT(Lines(text, {one, two}), ElementsAreArray(lines)) << text << ' ' << one << ' ' << two;
      }
    }
  }
}

TEST(Edges, Utf8IsReadAsDefined) {
  // Bytes on both sides of each bound that a sequence's bytes have.
  const std::string bounds =
      "A\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xF8\xFF";
  for (const char first : bounds) {
    for (const char second : bounds) {
      for (const char third : bounds) {
        for (const char fourth : bounds) {
          const std::string text = {first, second, third, fourth};
          const auto read = standin::ReadUtf8(text);
          const std::size_t length = ValidLength(text);
          ASSERT_EQ(read.valid, length != 0) << testing::PrintToString(text);
          ASSERT_TRUE(length == 0 ? read.length >= 1 && read.length <= 3 : read.length == length);
          ASSERT_EQ(session::IsUtf8(text.substr(0, read.length)), read.valid);
        }
      }
    }
  }
}

TEST(Edges, TheNearestWordIsTheNearest) {
  std::mt19937 random(1);
  const auto word = [&] {
    std::string letters(4 + random() % 4, ' ');
    for (char& letter : letters) letter = static_cast<char>('a' + random() % 3);
    return letters;
  };
  for (int round = 0; round < 300; ++round) {
    const std::vector<std::string> words = {word(), word(), word()};
    const std::string written = word();
    const auto farther = [&](const auto& one, const auto& two) { return Edits(written, one) < Edits(written, two); };
    const std::string nearest = *std::min_element(words.begin(), words.end(), farther);
    EXPECT_EQ(session::NearestWord(written, words), Edits(written, nearest) <= 2 ? nearest : "") << written;
  }
  EXPECT_EQ(session::NearestWord("abc", {"abd"}), "");
  EXPECT_EQ(session::NearestWord("reset_all", {"reset_al", "RESET_ALL"}), "RESET_ALL");
}

TEST(Edges, AJpegHasASizeOnceItsHeaderIsThere) {
  const std::string file = ReadFile(SESSIONS "/pictures/record-96x96.jpg");
  std::size_t needed = 0;
  for (std::size_t size = 0; size <= file.size(); ++size) {
    const auto read = driverprocess::ReadJpegSize(std::string(file, 0, size));  // a copy, whose end a sanitizer guards
    if (!read && needed != 0) ADD_FAILURE() << "lost after " << size;
    if (!read || needed != 0) continue;
    needed = size;
    EXPECT_TRUE(read->width == 96 && read->height == 96);
  }
  EXPECT_GT(needed, 20U);
  std::string broken = file;
  broken[3] ^= 1;
  for (const std::string& other : {broken.substr(1), std::string("\xFF\xD8\xFF\xFF\xC4\0\6\0\1\0\2\xFF\xD9\0\0", 15)}) {
    EXPECT_FALSE(driverprocess::ReadJpegSize(other));
  }
}

TEST(Edges, Base64HasOneTextForEachBytes) {
  for (std::size_t size = 0; size < 70; ++size) {
    std::string bytes(size, '\xA5');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 37 + size);
    const std::string text = session::EncodeBase64(bytes);
    EXPECT_EQ(session::DecodeBase64(text), bytes);
    const auto cut = session::DecodeBase64(text.substr(0, size == 0 ? 0 : text.size() - 1));
    EXPECT_EQ(cut.has_value(), size == 0) << text;
  }
  for (const char* wrong : {"A", "AB", "ABC", "=", "====", "A===", "AB=C", "AB\nCD", "AB-_", "ABC\xFF"}) {
    EXPECT_EQ(session::DecodeBase64(wrong), std::nullopt) << wrong;
  }
}

TEST(Edges, TextForATerminalIsLegibleAndFits) {
  const std::tuple<std::string, std::size_t, std::string> cases[] = {
      {"plain", 5, "plain"},
      {"plainer", 6, "pla..."},
      {"a\nb\x1B[0m", 40, "a\\nb\\x1B[0m"},
      {"\x7F\xC2\x9B", 40, "\\x7F\\xC2\\x9B"},
      {"\xC3\xA9", 1, "\xC3\xA9"},
      {"\xC3", 4, "\\xC3"},
      {"\xE6\xB0\xB4\xE6\xB0\xB4", 3, "..."},
      {"a\\b", 9, "a\\b"},
      {"", 0, ""},
  };
  const std::string locale = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);  // for the widths of characters
  for (const auto& [text, columns, shown] : cases) EXPECT_EQ(session::Cut(text, columns), shown);
  std::setlocale(LC_CTYPE, locale.c_str());
  EXPECT_THAT(session::Legible(std::string(1000, 'x'), 60), HasSubstr("x... (1000 bytes)"));
}

TEST(Edges, DocumentsDifferWhereTheyFirstDo) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"<a><b/><b>1</b></a>", "<a><b/><b>2</b></a>", "in <a>/<b>[2]: expected text \"1\", came text \"2\""},
      {"<a x='1'/>", "<a x='2'/>", "expected attribute x \"1\", came attribute x \"2\""},
      {"<a><b/></a>", "<a/>", "expected element <b>, came its end"},
      {"<a>&#60;</a>", "<a><![CDATA[<]]></a>", ""},
      {"<a> </a>", "<a/>", "expected text \" \", came no text"},
      {"<a><b/><c/></a>", "<a><c/><b/></a>", "expected element <b>, came element <c>"},
  };
  for (const auto& [expected, came, words] : cases) {
    const std::string told = driverhost::FirstDifference(expected, came);
    EXPECT_TRUE(*words ? told.find(words) != std::string::npos : told.empty()) << expected << ": " << told;
  }
}

TEST(Edges, AHostIsTheAddressServed) {
  const Directory page;
  std::ofstream(page.path + "index.html") << "page";
  const driverhost::WebRules rules(page.path, page.path, "");
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"8080", "127.0.0.1:8080", true},
      {"8080", "localhost:8080", true},
      {"8080", "127.0.0.1", false},
      {"8080", "127.0.0.1:80", false},
      {"8080", "", false},
      {"80", "127.0.0.1", true},
      {"80", "localhost", true},
      {"80", "127.0.0.1:80", true},
      {"[::1]:8080", "[::1]:8080", true},
      {"[::1]:8080", "::1:8080", false},
      {"[::1]:8080", "localhost:8080", true},
      {"10.0.0.7:8080", "10.0.0.7:8080", true},
      {"10.0.0.7:8080", "localhost:8080", false},
      {"[::ffff:10.0.0.7]:8080", "10.0.0.7:8080", true},
  };
  for (const auto& [served, host, letIn] : cases) {
    driverhost::WebRequest request;
    request.method = "GET";
    request.target = "/";
    request.names = driverhost::HostNames(driverhost::ReadEndpoint(served));
    request.host = host;
    EXPECT_EQ(!rules.Refusal(request), letIn) << served << ' ' << host;
  }
  for (const char* wrong : {"", ":", "65536", "-1", "8080x", "localhost:8080", "[::1]", "1.2.3:80", "127.0.0.1:"}) {
    EXPECT_THROW(driverhost::ReadEndpoint(wrong), std::runtime_error) << wrong;
  }
}
