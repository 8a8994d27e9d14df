#include "driver/jpeg_file.h"
#include "driver/media.h"
#include "driver/pixel_rows.h"
#include "host/Base64Encoder.h"
#include "host/LogXMessage.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr char s_NoFile565[] = "ipod::Write565ToJPEGFile:  failed to create .jpg file %s";

// The raw formats, with the step that writes each.
struct RawFormat {
  const char* name;
  const char* failure;
  const char* noFile;
  PixelLayout layout;
};
constexpr RawFormat s_RawFormats[] = {
    {"RGB565", "ipod::Write565ToJPEGFile: %s", s_NoFile565, {2, &Unpack565}},
    {"RGB888",
     "ipod::Write888ToJPEGFile: %s",
     "ipod::Write888ToJPEGFile: failed to create .jpg file %s",
     {4, &Unpack888}},
};

// What keeps the bytes from being a picture of that size; empty when nothing does.
std::string BoundsFault(const std::string& bytes, long width, long height,
                        std::size_t bytesPerPixel) {
  const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
  if (width < 1 || width > s_MaxJPEGSide || height < 1 || height > s_MaxJPEGSide) {
    return size + " are outside 1 to " + std::to_string(s_MaxJPEGSide);
  }
  const std::uint64_t needed = std::uint64_t{bytesPerPixel} * static_cast<std::uint64_t>(width) *
                               static_cast<std::uint64_t>(height);
  if (needed <= bytes.size()) return {};
  return size + " need " + std::to_string(needed) + " bytes, there are " +
         std::to_string(bytes.size());
}

void WriteRaw(const RawFormat& format, const std::string& path, const std::string& bytes,
              long width, long height) {
  std::string fault = BoundsFault(bytes, width, height, format.layout.bytesPerPixel);
  if (fault.empty()) {
    const RawPicture picture{reinterpret_cast<const unsigned char*>(bytes.data()), format.layout,
                             static_cast<unsigned>(width), static_cast<unsigned>(height)};
    if (!WriteJPEGFile(path, picture, fault)) {
      LogXMessage(3, format.noFile, path.c_str());
      return;
    }
  }
  if (!fault.empty()) LogXMessage(3, format.failure, fault.c_str());
}

void WriteStream(const std::string& path, const std::string& bytes, long size) {
  if (size < 0 || static_cast<unsigned long>(size) > bytes.size()) {
    LogXMessage(3, "ipod::OnNtfCoverArt: %s",
                ("a JPEG size of " + std::to_string(size) + " is outside 0 to the " +
                 std::to_string(bytes.size()) + " bytes that there are")
                    .c_str());
    return;
  }
  const FilePtr file(std::fopen(path.c_str(), "wb"));
  if (!file) {
    LogXMessage(3, s_NoFile565, path.c_str());
    return;
  }
  std::fwrite(bytes.data(), 1, static_cast<std::size_t>(size), file.get());
}

void WritePicture(const std::string& format, const std::string& path, const std::string& bytes,
                  long width, long height, long size) {
  for (const RawFormat& raw : s_RawFormats) {
    if (format == raw.name) return WriteRaw(raw, path, bytes, width, height);
  }
  if (format == "JPEG") return WriteStream(path, bytes, size);
  LogXMessage(3, "ipod::OnNtfCoverArt: invalid format %s", format.c_str());
}

long ToLong(const std::string& text) { return std::strtol(text.c_str(), nullptr, 10); }

}  // namespace

void media::OnNtfNewCoverArt(const IBindMessage& msg) {
  const std::string coverArt = msg.GetParamValue("cover_art");
  const std::string width = msg.GetParamValue("width");
  const std::string height = msg.GetParamValue("height");
  const std::string format = msg.GetParamValue("format");
  const std::string size = msg.GetParamText("size");

  m_CoverArtWidth = ToLong(width);
  m_CoverArtHeight = ToLong(height);
  WritePicture(format, m_CoverArtFile, Base64Encoder().Base64Decode(coverArt), m_CoverArtWidth,
               m_CoverArtHeight, ToLong(size));
  SendToUI("NEW_COVER_ART",
           {{"image_path", m_CoverArtImagePath}, {"width", width}, {"height", height}});
}

void media::OnNtfCoverArtChanged(const IBindMessage& msg) {
  SendToUI("NEW_COVER_ART", {{"image_path", msg.GetParamValue("image_path")},
                             {"width", msg.GetParamText("width")},
                             {"height", msg.GetParamText("height")}});
}
