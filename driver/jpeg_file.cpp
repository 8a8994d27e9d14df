#include "driver/jpeg_file.h"

#include <boost/filesystem/operations.hpp>
#include <jpeglib.h>

#include <csetjmp>
#include <type_traits>
#include <vector>

namespace fs = boost::filesystem;

namespace {

// A controller has libjpeg's 6.2 interface; in other versions the structures have other layouts.
constexpr int s_Interface = 62;
static_assert(JPEG_LIB_VERSION == s_Interface);
static_assert(JPEG_MAX_DIMENSION == s_MaxJPEGSide);

// All that the steps touch. libjpeg leaves a failing step by longjmp, which runs no destructor:
// plain data only.
struct Compression {
  jpeg_compress_struct compressor;
  jpeg_error_mgr errors;
  std::jmp_buf failed;
  char message[JMSG_LENGTH_MAX];
  RawPicture picture;
  std::FILE* file;
  unsigned char* row;
};
static_assert(std::is_trivial_v<Compression>);

[[noreturn]] void OnError(j_common_ptr info) {
  auto* compression = static_cast<Compression*>(info->client_data);
  info->err->format_message(info, compression->message);
  std::longjmp(compression->failed, 1);
}

void OnOutput(j_common_ptr) {}

void Create(Compression& c) {
  c.compressor.err = jpeg_std_error(&c.errors);
  c.compressor.client_data = &c;
  c.errors.error_exit = &OnError;
  c.errors.output_message = &OnOutput;
  jpeg_CreateCompress(&c.compressor, s_Interface, sizeof c.compressor);
}

void Start(Compression& c) {
  jpeg_stdio_dest(&c.compressor, c.file);
  c.compressor.image_width = c.picture.width;
  c.compressor.image_height = c.picture.height;
  c.compressor.input_components = 3;
  c.compressor.in_color_space = JCS_RGB;
  jpeg_set_defaults(&c.compressor);
  jpeg_set_quality(&c.compressor, 75, TRUE);
  jpeg_start_compress(&c.compressor, TRUE);
}

void WriteRows(Compression& c) {
  const std::size_t rowLength = c.picture.width * c.picture.layout.bytesPerPixel;
  while (c.compressor.next_scanline < c.compressor.image_height) {
    c.picture.layout.unpack(c.picture.pixels + c.compressor.next_scanline * rowLength, c.row,
                            c.picture.width);
    jpeg_write_scanlines(&c.compressor, &c.row, 1);
  }
  jpeg_finish_compress(&c.compressor);
}

// Runs a step. False when libjpeg failed in it.
bool Attempt(Compression& compression, void (*step)(Compression&)) noexcept {
  if (setjmp(compression.failed) != 0) return false;
  step(compression);
  return true;
}

struct Destroyer {
  void operator()(jpeg_compress_struct* compressor) const { jpeg_destroy_compress(compressor); }
};

}  // namespace

FilePtr CreateFile(const std::string& path) {
  boost::system::error_code ignored;
  if (fs::status(path, ignored).type() == fs::fifo_file) return nullptr;
  return FilePtr(std::fopen(path.c_str(), "wb"));
}

JPEGResult WriteJPEGFile(const std::string& path, const RawPicture& picture) {
  std::vector<unsigned char> row;
  Compression compression{};
  compression.picture = picture;
  bool done = Attempt(compression, &Create);
  const std::unique_ptr<jpeg_compress_struct, Destroyer> compressor(&compression.compressor);

  FilePtr file;
  if (done) {
    file = CreateFile(path);
    if (!file) return {JPEGResult::NotOpened, {}};
    compression.file = file.get();
    done = Attempt(compression, &Start);
  }
  if (done) {
    row.resize(std::size_t{3} * picture.width);
    compression.row = row.data();
    done = Attempt(compression, &WriteRows);
  }
  if (!done) return {JPEGResult::Failed, compression.message};
  return {JPEGResult::Written, {}};
}
