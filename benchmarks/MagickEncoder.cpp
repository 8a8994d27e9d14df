#include "benchmarks/Cover.h"

#include <wand/MagickWand.h>

namespace {

// The library has no reader for RGB565.
void Write(const Cover& cover, const std::string& path) {
  MagickWand* wand = NewMagickWand();
  MagickConstituteImage(wand, cover.side, cover.side, "BGRP", CharPixel, cover.bytes.data());
  MagickSetImageCompressionQuality(wand, 75);
  MagickSetOption(wand, "jpeg:optimize-coding", "false");
  MagickWriteImage(wand, path.c_str());
  DestroyMagickWand(wand);
}

struct AddMagick : AddEncoder {
  AddMagick() : AddEncoder({"imagemagick", false, &Write}) {
    MagickWandGenesis();
    MagickSetResourceLimit(ThreadResource, 1);
  }
};
const AddMagick s_Added;

}  // namespace
