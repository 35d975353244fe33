#include <cstdint>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include <memory>
#include <stdexcept>
#include <string>

#include "peers.h"

namespace lumora::bench {
namespace {

using Work = std::function<void()>;

void check(int result, const char* what) {
  if (result < 0) throw std::runtime_error(std::string("libavfilter: ") + what);
}

struct FreeFrame {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using Frame = std::unique_ptr<AVFrame, FreeFrame>;

// A chain of filters on frames of one format and size, with one or two inputs.
class Graph {
 public:
  Graph(AVPixelFormat format, Size size, const char* filters, int inputs = 1)
      : format_(format), size_(size), graph_(avfilter_graph_alloc()) {
    graph_->nb_threads = 1;
    std::string description;
    for (int i = 0; i < inputs; ++i) {
      const std::string label = "in" + std::to_string(i);
      description += "buffer@" + label + "=video_size=" + size.name() +
                     ":pix_fmt=" + av_get_pix_fmt_name(format) + ":time_base=1/25[" + label + "];";
    }
    for (int i = 0; i < inputs; ++i) description += "[in" + std::to_string(i) + "]";
    description +=
        std::string(filters) + ",format=" + av_get_pix_fmt_name(format) + ",buffersink@out";
    AVFilterInOut* open = nullptr;
    AVFilterInOut* ends = nullptr;
    check(avfilter_graph_parse2(graph_.get(), description.c_str(), &open, &ends), filters);
    check(avfilter_graph_config(graph_.get(), nullptr), filters);
    sink_ = avfilter_graph_get_filter(graph_.get(), "buffersink@out");
    for (int i = 0; i < inputs; ++i) {
      const std::string name = "buffer@in" + std::to_string(i);
      sources_[i] = avfilter_graph_get_filter(graph_.get(), name.c_str());
    }
  }

  // Borrows the pixels: planes one behind the other, or one plane of packed pixels. The filters may
  // not write to them.
  void push(int input, std::uint8_t* pixels) {
    Frame frame(av_frame_alloc());
    frame->format = format_;
    frame->width = size_.width;
    frame->height = size_.height;
    frame->pts = next_;
    const int planes = av_pix_fmt_count_planes(format_);
    const int stride = size_.width * (format_ == AV_PIX_FMT_RGBA ? 4 : 1);
    const std::size_t bytes = static_cast<std::size_t>(stride) * size_.height;
    for (int i = 0; i < planes; ++i) {
      frame->data[i] = pixels + static_cast<std::size_t>(i) * bytes;
      frame->linesize[i] = stride;
    }
    frame->buf[0] = av_buffer_create(
        pixels, bytes * static_cast<std::size_t>(planes), [](void*, std::uint8_t*) {}, nullptr,
        AV_BUFFER_FLAG_READONLY);
    check(av_buffersrc_add_frame(sources_[input], frame.get()), "frame refused");
  }

  void pull() {
    const Frame frame(av_frame_alloc());
    check(av_buffersink_get_frame(sink_, frame.get()), "no frame");
    ++next_;
  }

 private:
  struct FreeGraph {
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
  };
  AVPixelFormat format_;
  Size size_;
  std::unique_ptr<AVFilterGraph, FreeGraph> graph_;
  AVFilterContext* sources_[2] = {};
  AVFilterContext* sink_ = nullptr;
  std::int64_t next_ = 0;
};

// The picture's bytes stand for four planes where a filter wants planes: no conversion is timed.
template <AVPixelFormat kFormat, const char* kFilters>
Work filterPicture(const TestPicture& p) {
  const auto graph = std::make_shared<Graph>(kFormat, p.size, kFilters);
  return [&p, graph] {
    graph->push(0, p.data());
    graph->pull();
  };
}

constexpr char kCurves[] = "lutrgb=r=255*pow(val/255\\,0.8):g=255*pow(val/255\\,0.85)";
constexpr char kMixCurves[] =
    "colorchannelmixer=1.156:-0.094:0.008:0:0.289:0.898:-0.102:0:0.367:0.141:0.547,"
    "lutrgb=r=255*pow(val/255\\,0.8):g=255*pow(val/255\\,0.85)";
constexpr char kGrey[] = "colorchannelmixer=.3:.59:.11:0:.3:.59:.11:0:.3:.59:.11";
constexpr char kGauss[] = "gblur=sigma=4.56";
constexpr char kPixelize[] = "crop=min(iw\\,2000):min(ih\\,2000):0:0,pixelize=w=16:h=16";

Work twoPictures(const TestPicture& p, const char* filters) {
  const auto graph = std::make_shared<Graph>(AV_PIX_FMT_GBRAP, p.size, filters, 2);
  const std::shared_ptr<std::uint8_t[]> other = makeBuffer(p.bytes);
  std::copy_n(p.original(), p.bytes, other.get());
  return [&p, graph, other] {
    graph->push(0, p.data());
    graph->push(1, other.get());
    graph->pull();
  };
}

Work blend(const TestPicture& p) {
  return twoPictures(p, "blend=all_mode=normal:all_opacity=0.75");
}

Work textureAndCurves(const TestPicture& p) {
  return twoPictures(p,
                     "blend=all_mode=softlight,"
                     "lutrgb=r=255*pow(val/255\\,0.8):g=255*pow(val/255\\,0.85)");
}

Work resizeOneChannel(const TestPicture& p) {
  const std::string filters = "scale=" + std::to_string(p.size.width) + ":" +
                              std::to_string(p.size.height) + ":flags=neighbor";
  const auto graph = std::make_shared<Graph>(AV_PIX_FMT_GRAY8, kTextureSize, filters.c_str());
  return [&p, graph] {
    graph->push(0, p.data());
    graph->pull();
  };
}

}  // namespace

void addAvfilterCases() {
  addPeerCase("avfilter", "grey", kRgba, filterPicture<AV_PIX_FMT_RGBA, kGrey>);
  addPeerCase("avfilter", "curves", kRgba, filterPicture<AV_PIX_FMT_RGBA, kCurves>);
  addPeerCase("avfilter", "mix-curves", kRgba, filterPicture<AV_PIX_FMT_RGBA, kMixCurves>);
  addPeerCase("avfilter", "texture-curves", kRgba, textureAndCurves);
  addPeerCase("avfilter", "blend", kRgba, blend);
  addPeerCase("avfilter", "resize1", kRgba, resizeOneChannel);
  addPeerCase("avfilter", "gauss", kRgba, filterPicture<AV_PIX_FMT_GBRAP, kGauss>);
  addPeerCase("avfilter", "pixelize", kRgba, filterPicture<AV_PIX_FMT_GBRAP, kPixelize>);
}

}  // namespace lumora::bench
