#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* count, char*** files);

// Runs the inputs in the files that are named.
int main(int count, char** files) {
  LLVMFuzzerInitialize(&count, &files);
  for (int i = 1; i < count; ++i) {
    std::ifstream file(files[i], std::ios::binary);
    if (!file) return 2;
    const std::string input(std::istreambuf_iterator<char>(file), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
  }
}
