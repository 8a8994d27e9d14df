#include "benchmarks/Cover.h"

#include <vips/vips.h>

namespace {

// The library has no reader for RGB565.
void Write(const Cover& cover, const std::string& path) {
  const int side = static_cast<int>(cover.side);
  VipsImage* raw = vips_image_new_from_memory(cover.bytes.data(), cover.bytes.size(), side, side, 4,
                                              VIPS_FORMAT_UCHAR);
  VipsImage* bands[3] = {};
  for (int i = 0; i < 3; ++i) vips_extract_band(raw, &bands[i], 2 - i, nullptr);
  VipsImage* rgb = nullptr;
  vips_bandjoin(bands, &rgb, 3, nullptr);
  VipsImage* picture = nullptr;
  vips_copy(rgb, &picture, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr);
  vips_jpegsave(picture, path.c_str(), "Q", 75, nullptr);
  for (VipsImage* image : {picture, rgb, bands[0], bands[1], bands[2], raw}) g_object_unref(image);
}

struct AddVips : AddEncoder {
  AddVips() : AddEncoder({"libvips", false, &Write}) {
    VIPS_INIT("mediaproxy_benchmarks");
    // The others have one thread; and a cached result would be no work at all.
    vips_concurrency_set(1);
    vips_cache_set_max(0);
  }
};
const AddVips s_Added;

}  // namespace
