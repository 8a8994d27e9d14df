#include <clocale>
#include <cstdlib>
#include <locale>

#include <gtest/gtest.h>

namespace {

struct Grouping : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

// A process that groups digits, in the C locale that the environment names.
class Surroundings : public testing::Environment {
  void SetUp() override {
    const char* name = std::getenv("MEDIAPROXY_TEST_LOCALE");
    if (!name) return;
    std::locale::global(std::locale(std::locale::classic(), new Grouping));
    ASSERT_NE(std::setlocale(LC_ALL, name), nullptr) << name;
  }
};

const auto* const s_Surroundings = testing::AddGlobalTestEnvironment(new Surroundings);

}  // namespace
