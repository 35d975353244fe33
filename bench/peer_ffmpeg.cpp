#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

// Its headers know nothing of C++ and want the constants of <cstdint>.
extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}

#include "lut/cube_file.h"
#include "lut_table.h"
#include "peers.h"

namespace lumora::bench {
namespace {

constexpr int kEntries = 33;

void require(bool good) {
  if (!good) throw std::runtime_error("libavfilter refuses the filter");
}

// A chain of filters on one thread, fed with the picture's memory: lut3d rewrites a frame that
// belongs to it where it lies.
class Chain {
 public:
  Chain(Size size, const std::string& filters) : graph_(avfilter_graph_alloc()) {
    graph_->nb_threads = 1;
    const std::string source = "buffer=video_size=" + size.name() +
                               ":pix_fmt=rgba:time_base=1/25 [in]; [in] " + filters +
                               " [out]; [out] buffersink";
    AVFilterInOut *inputs = nullptr, *outputs = nullptr;
    require(avfilter_graph_parse2(graph_, source.c_str(), &inputs, &outputs) >= 0);
    require(avfilter_graph_config(graph_, nullptr) >= 0);
    source_ = graph_->filters[0];
    sink_ = graph_->filters[graph_->nb_filters - 1];
  }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain() { avfilter_graph_free(&graph_); }

  void run(const TestPicture& picture) {
    AVFrame* frame = av_frame_alloc();
    frame->format = AV_PIX_FMT_RGBA;
    frame->width = picture.size.width;
    frame->height = picture.size.height;
    frame->data[0] = picture.data();
    frame->linesize[0] = picture.stride;
    frame->buf[0] = av_buffer_create(
        picture.data(), picture.bytes, [](void*, std::uint8_t*) {}, nullptr, 0);
    require(av_buffersrc_add_frame(source_, frame) >= 0);
    require(av_buffersink_get_frame(sink_, frame) >= 0 && frame->data[0] == picture.data());
    av_frame_free(&frame);
  }

 private:
  AVFilterGraph* graph_;
  AVFilterContext* source_;
  AVFilterContext* sink_;
};

std::function<void()> lut3d(const TestPicture& picture) {
  const std::string name = "lumora-bench-" + std::to_string(getpid()) + ".cube";
  const std::string path = std::filesystem::temp_directory_path() / name;
  std::ofstream(path) << lut::writeCube(warmTable(kEntries), "warm", {});
  const auto chain = std::make_shared<Chain>(picture.size, "lut3d=interp=tetrahedral:file=" + path);
  std::filesystem::remove(path);
  return [chain, &picture] { chain->run(picture); };
}

}  // namespace

void addFfmpegCases() { addPeerCase("ffmpeg", "lut33", kRgba, lut3d); }

}  // namespace lumora::bench
