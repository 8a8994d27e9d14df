#include "players/mpd/Picture.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace mpdplayer {

namespace {

constexpr std::int64_t s_MostPixels = 32'000'000;
constexpr std::chrono::seconds s_LongestDecoding{3};
constexpr int s_LargestIcon = 32;  // pixels, as tags of music have icons
constexpr char s_Jpeg[] = "jpeg";

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
using PixbufPtr = std::unique_ptr<GdkPixbuf, Unref>;

struct Fault {
  GError* error = nullptr;
  Fault() = default;
  Fault(const Fault&) = delete;
  Fault& operator=(const Fault&) = delete;
  ~Fault() { g_clear_error(&error); }
  [[noreturn]] void Throw() const { throw PictureError(error ? error->message : "it is empty"); }
};

const char* TypeOf(std::string_view file) {
  static constexpr struct {
    std::string_view start;
    const char* type;
  } rows[] = {
      {"\xFF\xD8\xFF", s_Jpeg}, {"\x89PNG", "png"},     {"GIF8", "gif"},       {"BM", "bmp"},
      {"RIFF", "webp"},         {{"II*\0", 4}, "tiff"}, {{"MM\0*", 4}, "tiff"}};
  for (const auto& row : rows) {
    if (file.substr(0, row.start.size()) == row.start) return row.type;
  }
  throw PictureError("it is of an unknown kind");
}

class Decoder {
 public:
  Decoder(const std::string& file, int longestSide) : m_File(file), m_LongestSide(longestSide) {
    Fault fault;
    m_Loader.reset(gdk_pixbuf_loader_new_with_type(TypeOf(file), &fault.error));
    if (!m_Loader) fault.Throw();
    g_signal_connect(m_Loader.get(), "size-prepared", G_CALLBACK(&OnSize), this);
  }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() {
    if (m_Open) gdk_pixbuf_loader_close(m_Loader.get(), nullptr);
  }

  // False when the file does not say its size.
  bool DecodeSize() {
    Feed([this] { return m_Width > 0; });
    return m_Width > 0;
  }

  PixbufPtr Decode() {
    Feed([] { return false; });
    Fault fault;
    m_Open = false;
    if (gdk_pixbuf_loader_close(m_Loader.get(), &fault.error) != TRUE) fault.Throw();
    GdkPixbuf* const pixels = gdk_pixbuf_loader_get_pixbuf(m_Loader.get());
    if (!pixels) fault.Throw();
    return PixbufPtr(GDK_PIXBUF(g_object_ref(pixels)));
  }

  int Width() const { return m_Width; }
  int Height() const { return m_Height; }
  bool IsIcon() const { return std::max(m_Width, m_Height) <= s_LargestIcon; }
  bool Fits() const { return std::max(m_Width, m_Height) <= m_LongestSide; }

 private:
  static void OnSize(GdkPixbufLoader* loader, int width, int height, gpointer self) {
    auto& decoder = *static_cast<Decoder*>(self);
    decoder.m_Width = width;
    decoder.m_Height = height;
    if (decoder.TooLarge()) {
      gdk_pixbuf_loader_set_size(loader, 0, 0);  // stops the decoder
    } else if (!decoder.Fits()) {
      gdk_pixbuf_loader_set_size(loader, decoder.Scaled(width), decoder.Scaled(height));
    }
  }

  bool TooLarge() const { return std::int64_t{m_Width} * m_Height > s_MostPixels; }

  int Scaled(int side) const {
    const std::int64_t scaled = std::int64_t{side} * m_LongestSide / std::max(m_Width, m_Height);
    return std::max(1, static_cast<int>(scaled));
  }

  // The pieces are small, so that a file whose few bytes ask for much work is stopped in time.
  template <typename Enough>
  void Feed(Enough enough) {
    constexpr std::size_t piece = 4096;
    const auto end = std::chrono::steady_clock::now() + s_LongestDecoding;
    while (m_Fed < m_File.size() && !enough()) {
      const auto* const bytes = reinterpret_cast<const guchar*>(m_File.data()) + m_Fed;
      const std::size_t size = std::min(piece, m_File.size() - m_Fed);
      Fault fault;
      const bool taken = gdk_pixbuf_loader_write(m_Loader.get(), bytes, size, &fault.error) == TRUE;
      if (TooLarge()) throw PictureError("it has too many pixels");
      if (!taken) fault.Throw();
      if (std::chrono::steady_clock::now() > end) throw PictureError("it takes too long to decode");
      m_Fed += size;
    }
  }

  const std::string& m_File;
  int m_LongestSide;
  std::unique_ptr<GdkPixbufLoader, Unref> m_Loader;
  bool m_Open = true;
  std::size_t m_Fed = 0;
  int m_Width = 0;
  int m_Height = 0;
};

// What a JPEG says of itself before its picture begins.
struct JpegHeader {
  int components = 0;
  bool exif = false;
};

JpegHeader ReadJpegHeader(std::string_view file) {
  const auto byte = [file](std::size_t at) { return static_cast<unsigned char>(file[at]); };
  JpegHeader header;
  for (std::size_t at = 2; at + 10 <= file.size() && byte(at) == 0xFF;) {
    const unsigned marker = byte(at + 1);
    const bool tables = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
    if (marker >= 0xC0 && marker <= 0xCF && !tables) {
      header.components = byte(at + 9);
      break;
    }
    if (marker == 0xE1 && file.substr(at + 4, 4) == "Exif") header.exif = true;
    at += marker == 0xFF ? 1 : 2U + byte(at + 2) * 256U + byte(at + 3);
  }
  return header;
}

// Whether user interfaces show the file as it is: not all know the colours of print.
bool IsPlain(const JpegHeader& header) { return header.components == 1 || header.components == 3; }

bool IsTurned(GdkPixbuf* pixels) {
  const char* const orientation = gdk_pixbuf_get_option(pixels, "orientation");
  return orientation && std::string_view(orientation) != "1";
}

PixbufPtr Upright(PixbufPtr pixels) {
  if (!IsTurned(pixels.get())) return pixels;
  PixbufPtr upright(gdk_pixbuf_apply_embedded_orientation(pixels.get()));
  if (!upright) throw PictureError("there is no memory for it");
  return upright;
}

// Transparent parts become white.
PixbufPtr Opaque(PixbufPtr pixels) {
  if (gdk_pixbuf_get_has_alpha(pixels.get()) != TRUE) return pixels;
  constexpr int opaque = 255;
  constexpr int checkSize = 8;
  constexpr guint32 white = 0xFFFFFF;
  PixbufPtr flat(gdk_pixbuf_composite_color_simple(
      pixels.get(), gdk_pixbuf_get_width(pixels.get()), gdk_pixbuf_get_height(pixels.get()),
      GDK_INTERP_NEAREST, opaque, checkSize, white, white));
  if (!flat) throw PictureError("there is no memory for it");
  return flat;
}

std::string EncodeJpeg(GdkPixbuf* pixels) {
  gchar* buffer = nullptr;
  gsize size = 0;
  Fault fault;
  if (gdk_pixbuf_save_to_buffer(pixels, &buffer, &size, s_Jpeg, &fault.error, "quality", "90",
                                nullptr) != TRUE) {
    fault.Throw();
  }
  const std::unique_ptr<gchar, void (*)(void*)> owner(buffer, &g_free);
  return {buffer, size};
}

void Append565(std::string& bytes, const guchar* rgb) {
  const unsigned red = rgb[0];
  const unsigned green = rgb[1];
  const unsigned blue = rgb[2];
  const unsigned value = (red >> 3U) << 11U | (green >> 2U) << 5U | blue >> 3U;
  bytes += static_cast<char>(value & 0xFFU);
  bytes += static_cast<char>(value >> 8U);
}

void Append888(std::string& bytes, const guchar* rgb) {
  for (const int channel : {2, 1, 0}) bytes += static_cast<char>(rgb[channel]);
  bytes += '\xFF';
}

std::string RawPixels(GdkPixbuf* pixels, void (*append)(std::string&, const guchar*)) {
  const auto width = static_cast<std::size_t>(gdk_pixbuf_get_width(pixels));
  const auto height = static_cast<std::size_t>(gdk_pixbuf_get_height(pixels));
  const auto channels = static_cast<std::size_t>(gdk_pixbuf_get_n_channels(pixels));
  const auto rowLength = static_cast<std::size_t>(gdk_pixbuf_get_rowstride(pixels));
  const guchar* const first = gdk_pixbuf_read_pixels(pixels);
  std::string bytes;
  bytes.reserve(4 * width * height);
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) append(bytes, first + y * rowLength + x * channels);
  }
  return bytes;
}

}  // namespace

Picture MakePicture(const std::string& file, ArtFormat format, int longestSide) {
  Decoder decoder(file, longestSide);
  const bool jpeg = format == ArtFormat::Jpeg && TypeOf(file) == s_Jpeg;
  const JpegHeader header = jpeg ? ReadJpegHeader(file) : JpegHeader();
  const bool asItIs = jpeg && IsPlain(header) && decoder.DecodeSize() && decoder.Fits();
  if (asItIs && !header.exif) return {decoder.Width(), decoder.Height(), file, decoder.IsIcon()};

  PixbufPtr pixels = decoder.Decode();
  if (asItIs && !IsTurned(pixels.get())) {
    return {decoder.Width(), decoder.Height(), file, decoder.IsIcon()};
  }
  pixels = Opaque(Upright(std::move(pixels)));
  Picture picture;
  picture.width = gdk_pixbuf_get_width(pixels.get());
  picture.height = gdk_pixbuf_get_height(pixels.get());
  picture.icon = decoder.IsIcon();
  if (format == ArtFormat::Jpeg) {
    picture.bytes = EncodeJpeg(pixels.get());
  } else {
    picture.bytes = RawPixels(pixels.get(), format == ArtFormat::Rgb565 ? &Append565 : &Append888);
  }
  return picture;
}

}  // namespace mpdplayer
