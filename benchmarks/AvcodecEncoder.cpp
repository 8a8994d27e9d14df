#include <memory>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libswscale/swscale.h>
}

#include "benchmarks/Cover.h"

namespace {

struct Free {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

std::unique_ptr<AVCodecContext, Free> OpenEncoder(int side) {
  const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MJPEG);
  std::unique_ptr<AVCodecContext, Free> encoder(avcodec_alloc_context3(codec));
  encoder->width = side;
  encoder->height = side;
  encoder->pix_fmt = AV_PIX_FMT_YUVJ420P;
  encoder->time_base = {1, 25};
  encoder->thread_count = 1;
  // About the size of a JPEG of quality 75.
  encoder->flags |= AV_CODEC_FLAG_QSCALE;
  encoder->global_quality = 5 * FF_QP2LAMBDA;
  if (avcodec_open2(encoder.get(), codec, nullptr) < 0) throw std::runtime_error("no encoder");
  return encoder;
}

void Write(const Cover& cover, const std::string& path) {
  const int side = static_cast<int>(cover.side);
  const auto encoder = OpenEncoder(side);
  const std::unique_ptr<AVFrame, Free> frame(av_frame_alloc());
  frame->format = encoder->pix_fmt;
  frame->width = side;
  frame->height = side;
  frame->quality = encoder->global_quality;
  av_frame_get_buffer(frame.get(), 0);

  const AVPixelFormat format = cover.is565 ? AV_PIX_FMT_RGB565LE : AV_PIX_FMT_BGR0;
  const std::unique_ptr<SwsContext, Free> scaler(sws_getContext(side, side, format, side, side,
                                                                encoder->pix_fmt, SWS_FAST_BILINEAR,
                                                                nullptr, nullptr, nullptr));
  const std::uint8_t* rows[] = {cover.Pixels()};
  const int rowLengths[] = {side * (cover.is565 ? 2 : 4)};
  sws_scale(scaler.get(), rows, rowLengths, 0, side, frame->data, frame->linesize);

  const std::unique_ptr<AVPacket, Free> packet(av_packet_alloc());
  avcodec_send_frame(encoder.get(), frame.get());
  if (avcodec_receive_packet(encoder.get(), packet.get()) < 0) throw std::runtime_error("no JPEG");
  WriteFile(path, packet->data, static_cast<std::size_t>(packet->size));
}

struct AddAvcodec : AddEncoder {
  AddAvcodec() : AddEncoder({"libavcodec", true, &Write}) { av_log_set_level(AV_LOG_ERROR); }
};
const AddAvcodec s_Added;

}  // namespace
