#include <gtest/gtest.h>

// An expectation that does not hold stops the process, which a fuzzer takes for a failure.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  GTEST_FLAG_SET(break_on_failure, true);
  return 0;
}
