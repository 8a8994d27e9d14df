#include "tests/FaultPoints.h"

#include "tests/bench/Bench.h"

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <libxml/xmlmemory.h>

#include <jerror.h>

#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// Plain data, because malloc is called before any constructor has run.
struct {
  bool armed;
  Calls calls;
  int error;
  unsigned long at;
  bool onwards;
  unsigned long* passed;  // shared with child processes
} s_Fault;
long s_LiveBlocks = 0;
bool s_ForeignJPEG = false;

bool Fails(Calls calls) {
  if (!s_Fault.armed || s_Fault.calls != calls) return false;
  const unsigned long n = ++*s_Fault.passed;
  if (s_Fault.at == 0 || n < s_Fault.at || (n > s_Fault.at && !s_Fault.onwards)) return false;
  errno = s_Fault.error;
  return true;
}

// The library's function of that name, which the one in this program hides.
template <class Result, class... Parameters>
auto Real(Result (*)(Parameters...), const char* name) {
  return reinterpret_cast<Result (*)(Parameters...)>(dlsym(RTLD_NEXT, name));
}

template <class Function, class Result, class... Arguments>
Result Attempt(Function function, const char* name, Result failure, Arguments... arguments) {
  return Fails(Calls::Files) ? failure : Real(function, name)(arguments...);
}

void* Counted(void* block) {
  if (block) ++s_LiveBlocks;
  return block;
}

}  // namespace

#ifdef __SANITIZE_ADDRESS__

void* operator new(std::size_t size) {
  void* block = Fails(Calls::Memory) ? nullptr : Counted(std::malloc(size));
  if (!block) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept {
  if (block) --s_LiveBlocks;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

// For std::pmr, which asks for no more than malloc's own alignment.
void* operator new(std::size_t size, std::align_val_t) { return operator new(size); }

void operator delete(void* block, std::size_t, std::align_val_t) noexcept { operator delete(block); }

#else

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) { return Fails(Calls::Memory) ? nullptr : Counted(__libc_malloc(size)); }

void* calloc(std::size_t n, std::size_t size) {
  return Fails(Calls::Memory) ? nullptr : Counted(__libc_calloc(n, size));
}

void* realloc(void* block, std::size_t size) {
  if (!block) return malloc(size);
  if (Fails(Calls::Memory)) return nullptr;
  if (size == 0) --s_LiveBlocks;
  return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return Fails(Calls::Memory) ? nullptr : Counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = aligned_alloc(alignment, size);
  return *block ? 0 : ENOMEM;
}

void free(void* block) {
  if (block) --s_LiveBlocks;
  __libc_free(block);
}
}

// libxml2, with which the tests read documents, is spared the faults.
const int s_Parser = xmlMemSetup(&__libc_free, &__libc_malloc, &__libc_realloc, [](const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  return static_cast<char*>(std::memcpy(__libc_malloc(size), text, size));
});

#endif

extern "C" {
std::FILE* fopen(const char* path, const char* mode) {
  return Attempt(&fopen, "fopen", static_cast<std::FILE*>(nullptr), path, mode);
}

std::size_t fwrite(const void* data, std::size_t size, std::size_t n, std::FILE* file) {
  return Attempt(&fwrite, "fwrite", std::size_t{0}, data, size, n, file);
}

int fclose(std::FILE* file) {
  const bool fails = Fails(Calls::Files);
  const int result = Real(&fclose, "fclose")(file);
  return fails ? EOF : result;
}

int mkdir(const char* path, mode_t mode) noexcept { return Attempt(&mkdir, "mkdir", -1, path, mode); }

int stat64(const char* path, struct stat64* status) noexcept {
  return Attempt(static_cast<int (*)(const char*, struct stat64*)>(&stat64), "stat64", -1, path, status);
}

int statx(int directory, const char* path, int flags, unsigned mask, struct statx* status) noexcept {
  return Attempt(&statx, "statx", -1, directory, path, flags, mask, status);
}

void jpeg_CreateCompress(j_compress_ptr info, int version, std::size_t size) {
  if (!s_ForeignJPEG) return Real(&jpeg_CreateCompress, "jpeg_CreateCompress")(info, version, size);
  info->mem = nullptr;
  ERREXIT2(info, JERR_BAD_LIB_VERSION, 90, version);
}
}

unsigned long Sweep(Calls calls, int error, const std::function<void(const Armed&)>& round) {
  static auto* const passed = static_cast<unsigned long*>(
      mmap(nullptr, sizeof(unsigned long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  unsigned long points = 0;
  const Armed armed = [](const std::function<void()>& act) {
    s_Fault.armed = true;
    try {
      act();
    } catch (const std::bad_alloc&) {
      s_Fault.armed = false;
      return false;
    }
    s_Fault.armed = false;
    return true;
  };
  for (const bool onwards : {false, true}) {
    unsigned long at = 0;
    do {
      *passed = 0;
      s_Fault = {false, calls, error, at, onwards, passed};
      SCOPED_TRACE("fault " + std::to_string(at) + (onwards ? " and all after it, " : ", ") + strerror(error));
      const std::string descriptors = Descriptors();
      const long blocks = LiveBlocks();
      round(armed);
      const long left = LiveBlocks() - blocks;
      EXPECT_TRUE(at == 0 || left == 0) << left << " blocks";  // the first round builds what stays
      EXPECT_EQ(Descriptors(), descriptors);
      points += at > 0 && *passed >= at ? 1 : 0;
    } while (++at <= *passed + 1 && !testing::Test::HasFailure());
  }
  return points;
}

long LiveBlocks() { return s_LiveBlocks; }

void SetForeignJPEG(bool foreign) { s_ForeignJPEG = foreign; }
