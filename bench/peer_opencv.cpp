#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "peers.h"

namespace lumora::bench {
namespace {

using Work = std::function<void()>;

// The picture's own bytes, not a copy.
cv::Mat pictureMat(const TestPicture& p) {
  return cv::Mat(p.size.height, p.size.width, CV_8UC4, p.data(),
                 static_cast<std::size_t>(p.stride));
}

cv::Mat tableMat(int channels) {
  const ChannelTables& tables = channelTables();
  cv::Mat table(1, 256, CV_8UC(channels));
  for (int i = 0; i < 256; ++i) {
    std::uint8_t* const entry = table.ptr(0) + channels * i;
    entry[0] = tables.r[i];
    entry[1] = tables.g[i];
    entry[2] = tables.b[i];
    if (channels == 4) entry[3] = static_cast<std::uint8_t>(i);
  }
  return table;
}

Work grey(const TestPicture& p) {
  return [picture = pictureMat(p), grey = cv::Mat()]() mutable {
    cv::cvtColor(picture, grey, cv::COLOR_RGBA2GRAY);
    cv::cvtColor(grey, picture, cv::COLOR_GRAY2RGBA);
  };
}

Work curves(const TestPicture& p) {
  return [picture = pictureMat(p), table = tableMat(4)]() mutable {
    cv::LUT(picture, table, picture);
  };
}

Work mixAndCurves(const TestPicture& p) {
  cv::Mat mix = cv::Mat::eye(4, 4, CV_32F);
  for (int i = 0; i < 9; ++i) {
    mix.at<float>(i / 3, i % 3) = static_cast<float>(kChannelMix[i / 3][i % 3]) / 128;
  }
  return [picture = pictureMat(p), mix, table = tableMat(4)]() mutable {
    cv::transform(picture, picture, mix);
    cv::LUT(picture, table, picture);
  };
}

Work textureAndCurves(const TestPicture& p) {
  return [picture = pictureMat(p), texture = pictureMat(p).clone(), table = tableMat(4)]() mutable {
    cv::multiply(picture, texture, picture, 1.0 / 255);
    cv::LUT(picture, table, picture);
  };
}

Work blend(const TestPicture& p) {
  return [picture = pictureMat(p), copy = pictureMat(p).clone()]() mutable {
    cv::addWeighted(picture, kBlendShare, copy, 1 - kBlendShare, 0, picture);
  };
}

Work resizeOneChannel(const TestPicture& p) {
  const cv::Size size(p.size.width, p.size.height);
  return [texture = cv::Mat(kTextureSize.height, kTextureSize.width, CV_8UC1, cv::Scalar(1)),
          out = cv::Mat(size, CV_8UC1, p.data()),
          size]() mutable { cv::resize(texture, out, size, 0, 0, cv::INTER_NEAREST); };
}

Work resizeFourChannels(const TestPicture& p) {
  return [texture = cv::Mat(kTextureSize.height, kTextureSize.width, CV_8UC4, cv::Scalar::all(1)),
          out = pictureMat(p)]() mutable {
    cv::resize(texture, out, out.size(), 0, 0, cv::INTER_NEAREST);
  };
}

// The small picture's sigma on the full one.
Work gauss(const TestPicture& p) {
  return [picture = pictureMat(p)]() mutable {
    cv::GaussianBlur(picture, picture, cv::Size(), kBlurSigma);
  };
}

Work shrinkBlurGrow(const TestPicture& p) {
  return [picture = pictureMat(p), small = cv::Mat(), blurred = cv::Mat()]() mutable {
    constexpr double kScale = 1.0 / kShrink;
    cv::resize(picture, small, cv::Size(), kScale, kScale, cv::INTER_NEAREST);
    cv::GaussianBlur(small, blurred, cv::Size(), kBlurSigma);
    cv::resize(blurred, picture, picture.size(), 0, 0, cv::INTER_LINEAR);
  };
}

Work pixelize(const TestPicture& p) {
  const Size rect = mosaicRect(p.size);
  cv::Mat region = pictureMat(p)(cv::Rect(0, 0, rect.width, rect.height));
  const cv::Size blocks(rect.width / kMosaicBlock, rect.height / kMosaicBlock);
  return [region, blocks, small = cv::Mat()]() mutable {
    cv::resize(region, small, blocks, 0, 0, cv::INTER_AREA);
    cv::resize(small, region, region.size(), 0, 0, cv::INTER_NEAREST);
  };
}

// Back to planar chroma: there is no way back to pairs.
Work curvesNv(const TestPicture& p) {
  const cv::Mat luma(p.size.height, p.size.width, CV_8UC1, p.data());
  const cv::Mat chroma(p.size.height / 2, p.size.width / 2, CV_8UC2, p.chroma());
  return [luma, chroma, rgb = cv::Mat(), yuv = cv::Mat(), table = tableMat(3)]() mutable {
    cv::cvtColorTwoPlane(luma, chroma, rgb, cv::COLOR_YUV2RGB_NV12);
    cv::LUT(rgb, table, rgb);
    cv::cvtColor(rgb, yuv, cv::COLOR_RGB2YUV_I420);
  };
}

Work blendNv(const TestPicture& p) {
  const cv::Mat frame(p.size.height * 3 / 2, p.size.width, CV_8UC1, p.data());
  return [frame, copy = frame.clone()]() mutable {
    cv::addWeighted(frame, kBlendShare, copy, 1 - kBlendShare, 0, frame);
  };
}

}  // namespace

void addOpenCvCases() {
  cv::setNumThreads(1);
  addPeerCase("opencv", "grey", kRgba, grey);
  addPeerCase("opencv", "curves", kRgba, curves);
  addPeerCase("opencv", "mix-curves", kRgba, mixAndCurves);
  addPeerCase("opencv", "texture-curves", kRgba, textureAndCurves);
  addPeerCase("opencv", "blend", kRgba, blend);
  addPeerCase("opencv", "resize1", kRgba, resizeOneChannel);
  addPeerCase("opencv", "resize4", kRgba, resizeFourChannels);
  addPeerCase("opencv", "gauss", kRgba, gauss);
  addPeerCase("opencv", "shrink-blur-grow", kRgba, shrinkBlurGrow);
  addPeerCase("opencv", "pixelize", kRgba, pixelize);
  addPeerCase("opencv", "curves", kNv12, curvesNv);
  addPeerCase("opencv", "blend", kNv12, blendNv);
}

}  // namespace lumora::bench
