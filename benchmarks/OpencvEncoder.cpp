#include "benchmarks/Cover.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace {

void Write(const Cover& cover, const std::string& path) {
  const int side = static_cast<int>(cover.side);
  const cv::Mat raw(side, side, cover.is565 ? CV_8UC2 : CV_8UC4,
                    const_cast<unsigned char*>(cover.Pixels()));
  cv::Mat picture;
  cv::cvtColor(raw, picture, cover.is565 ? cv::COLOR_BGR5652BGR : cv::COLOR_BGRA2BGR);
  std::vector<unsigned char> jpeg;
  cv::imencode(".jpg", picture, jpeg, {cv::IMWRITE_JPEG_QUALITY, 75});
  WriteFile(path, jpeg.data(), jpeg.size());
}

const AddEncoder s_Added({"opencv", &Write});

}  // namespace
