#include "driver/jpeg_file.h"
#include "driver/media.h"
#include "driver/pixel_rows.h"
#include "host/Base64Encoder.h"
#include "host/LogXMessage.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

// Why the bytes are no picture of that size; empty if they are one. Checked before the file is
// opened, so that a refused picture leaves the previous one in place (docs/choices.md).
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

// The log lines of a raw format's step, each with a place for one text.
struct StepLines {
  const char* noFile;
  const char* failure;
};

// What both steps do.
void WriteRaw(const StepLines& lines, const PixelLayout& layout, const std::string& path,
              const std::string& bytes, long width, long height) {
  const std::string fault = BoundsFault(bytes, width, height, layout.bytesPerPixel);
  if (!fault.empty()) return LogXMessage(3, lines.failure, fault.c_str());

  const RawPicture picture{reinterpret_cast<const unsigned char*>(bytes.data()), layout,
                           static_cast<unsigned>(width), static_cast<unsigned>(height)};
  const JPEGResult result = WriteJPEGFile(path, picture);
  switch (result.outcome) {
    case JPEGResult::Written:
      return;
    case JPEGResult::NotOpened:
      return LogXMessage(3, lines.noFile, path.c_str());
    case JPEGResult::Failed:
      return LogXMessage(3, lines.failure, result.fault.c_str());
  }
}

// The texts of the log lines are fixed, with three oddities: this line has two blanks, the other
// step's has one; the JPEG branch uses this line, too; and outside the steps the lines name
// "OnNtfCoverArt", though the handler is OnNtfNewCoverArt.
constexpr char s_NoFile565[] = "ipod::Write565ToJPEGFile:  failed to create .jpg file %s";

void Write565ToJPEGFile(const std::string& path, const std::string& bytes, long width,
                        long height) {
  WriteRaw({s_NoFile565, "ipod::Write565ToJPEGFile: %s"}, {2, &Unpack565}, path, bytes, width,
           height);
}

void Write888ToJPEGFile(const std::string& path, const std::string& bytes, long width,
                        long height) {
  WriteRaw(
      {"ipod::Write888ToJPEGFile: failed to create .jpg file %s", "ipod::Write888ToJPEGFile: %s"},
      {4, &Unpack888}, path, bytes, width, height);
}

void WriteStream(const std::string& path, const std::string& bytes, long size) {
  if (size < 0 || static_cast<unsigned long>(size) > bytes.size()) {
    const std::string fault = "a JPEG size of " + std::to_string(size) + " is outside 0 to the " +
                              std::to_string(bytes.size()) + " bytes that there are";
    return LogXMessage(3, "ipod::OnNtfCoverArt: %s", fault.c_str());
  }
  const FilePtr file = CreateFile(path);
  if (!file) return LogXMessage(3, s_NoFile565, path.c_str());
  std::fwrite(bytes.data(), 1, static_cast<std::size_t>(size), file.get());
}

void WritePicture(const std::string& format, const std::string& path, const std::string& bytes,
                  long width, long height, long size) {
  if (format == "RGB565") return Write565ToJPEGFile(path, bytes, width, height);
  if (format == "RGB888") return Write888ToJPEGFile(path, bytes, width, height);
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
