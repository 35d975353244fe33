#include "effects/pyramid_reference.h"

#include <algorithm>
#include <cmath>

#include "effects/smoothing/gaussian.h"

namespace lumora::test {
namespace {

int half(int extent) { return (extent + 1) / 2; }

template <class Sample>
Planes makePlanes(int width, int height, Sample sample) {
  Planes out(width, height);
  for (int c = 0; c < kChannelCount; ++c) {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) out.at(c, x, y) = toByte(sample(c, x, y));
    }
  }
  return out;
}

int meanOfMeans(int a, int b, int c, int d) {
  const int top = (a + b + 1) >> 1, bottom = (c + d + 1) >> 1;
  return (top + bottom + 1) >> 1;
}

Planes firstLevelOfRgba(const Picture& p) {
  return makePlanes(half(p.widthPixels), half(p.heightRows), [&](int c, int x, int y) {
    const int right = std::min(2 * x + 1, p.widthPixels - 1);
    const auto pixel = [&](int column, int row) { return int{p.row(row)[4 * column + c]}; };
    if (2 * y + 1 < p.heightRows) return pixel(right, 2 * y);
    const int sum = pixel(right - 1, 2 * y - 1) + pixel(right, 2 * y - 1) +
                    pixel(right - 1, 2 * y) + pixel(right, 2 * y);
    return (sum + 2) >> 2;
  });
}

Planes firstLevelOfNv(const Picture& p) {
  return makePlanes(p.widthPixels / 2, p.heightRows / 2, [&](int c, int x, int y) {
    if (c > 0) return int{p.chroma()[y * p.strideBytes + 2 * x + c - 1]};
    const std::uint8_t *const top = p.row(2 * y) + 2 * x, *const bottom = p.row(2 * y + 1) + 2 * x;
    return meanOfMeans(top[0], top[1], bottom[0], bottom[1]);
  });
}

Planes nextLevel(const Planes& in) {
  return makePlanes(half(in.width), half(in.height), [&](int c, int x, int y) {
    const bool inside = 2 * x + 1 < in.width && 2 * y + 1 < in.height;
    const int right = std::min(2 * x + 1, in.width - 1);
    const int bottom = std::min(2 * y + 1, in.height - 1);
    const int a = in.at(c, right - 1, bottom - 1), b = in.at(c, right, bottom - 1);
    const int d = in.at(c, right - 1, bottom), e = in.at(c, right, bottom);
    return inside ? meanOfMeans(a, b, d, e) : (a + b + d + e + 2) >> 2;
  });
}

// Sample (x, y) of the level that is twice as fine as `in`.
int grownSample(const Planes& in, int c, int x, int y) {
  const auto far = [](int at, int last) {
    return std::clamp(at % 2 != 0 ? at / 2 + 1 : at / 2 - 1, 0, last);
  };
  const int nearX = x / 2, farX = far(x, in.width - 1);
  const int nearY = y / 2, farY = far(y, in.height - 1);
  const int a = in.at(c, nearX, nearY), b = in.at(c, farX, nearY);
  const int d = in.at(c, nearX, farY), e = in.at(c, farX, farY);
  if (x == 0 && y == 0) return a;
  if (y == 0) return (3 * a + b + 2) >> 2;
  if (x == 0) return (3 * a + d + 2) >> 2;
  return (9 * a + 3 * b + 3 * d + e + 8) >> 4;
}

int mixed(int picture, int grown, const Bytes& mask, std::size_t at, int weight) {
  if (mask.empty()) return (picture * (32 - weight) + grown * weight + 16) >> 5;
  const int m = mask[at];
  if (m == 0) return picture;
  if (m == 255) return grown;
  return (picture * (255 - m) + grown * m + 128) >> 8;
}

int doubledSample(const Planes& levelOne, int c, int x, int y) {
  const int right = std::min(x / 2 + x % 2, levelOne.width - 1);
  const int below = std::min(y / 2 + y % 2, levelOne.height - 1);
  const auto column = [&](int at) {
    return (levelOne.at(c, at, y / 2) + levelOne.at(c, at, below) + 1) >> 1;
  };
  return (column(x / 2) + column(right) + 1) >> 1;
}

void mixRgba(const Planes& levelOne, const Picture& p, const Bytes& mask, int weight) {
  for (int y = 0; y < p.heightRows; ++y) {
    for (int x = 0; x < p.widthPixels; ++x) {
      for (int c = 0; c < kChannelCount; ++c) {
        std::uint8_t& sample = p.row(y)[4 * x + c];
        sample = toByte(mixed(sample, doubledSample(levelOne, c, x, y), mask,
                              static_cast<std::size_t>(y * p.widthPixels + x), weight));
      }
    }
  }
}

void mixNv(const Planes& levelOne, const Picture& p, const Bytes& mask, int weight) {
  for (int y = 0; y < p.heightRows; ++y) {
    for (int x = 0; x < p.widthPixels; ++x) {
      const auto block = static_cast<std::size_t>((y & ~1) * p.widthPixels + (x & ~1));
      std::uint8_t& luma = p.row(y)[x];
      luma = toByte(mixed(luma, levelOne.at(0, x / 2, y / 2), mask, block, weight));
      if (y % 2 != 0) continue;
      std::uint8_t& chroma = p.chroma()[y / 2 * p.strideBytes + x];
      chroma = toByte(mixed(chroma, levelOne.at(1 + x % 2, x / 2, y / 2), mask, block, weight));
    }
  }
}

// One run over `count` floats that lie `step` apart.
void runGaussian(float* first, int step, int count, const GaussianCoefficients& k) {
  float y1 = *first, y2 = *first, y3 = *first;
  for (int n = 0; n < count; ++n) {
    float* const at = first + n * step;
    const float y = k.input * *at + k.back1 * y1 + k.back2 * y2 + k.back3 * y3;
    y3 = y2;
    y2 = y1;
    y1 = *at = y;
  }
}

std::uint8_t bandValue(double place, double core, double ramp) {
  const float step = ramp > 0 ? 255.0f / static_cast<float>(ramp) : 255.0f;
  if (place < 0 || place >= 2 * ramp + core) return 255;
  if (place < ramp) return toByte(255 - static_cast<float>(place) * step);
  if (place < ramp + core) return 0;
  return toByte(static_cast<float>(place - ramp - core) * step);
}

}  // namespace

Planes noisePlanes(int width, int height, std::uint32_t seed) {
  Planes planes(width, height);
  planes.bytes = noiseBytes(planes.bytes.size(), seed);
  return planes;
}

Planes referenceReduce(const Picture& picture, int levels) {
  Planes level = picture.isRgba() ? firstLevelOfRgba(picture) : firstLevelOfNv(picture);
  for (int j = 2; j <= levels; ++j) level = nextLevel(level);
  return level;
}

Planes referenceBlur3x3(const Planes& in) {
  const auto mirrored = [](int at, int extent) {
    return at < 0 ? 1 : at == extent ? extent - 2 : at;
  };
  return makePlanes(in.width, in.height, [&](int c, int x, int y) {
    int sum = 0;
    for (int dy = -1; dy <= 1; ++dy) {
      for (int dx = -1; dx <= 1; ++dx) {
        sum += (2 - std::abs(dx)) * (2 - std::abs(dy)) *
               in.at(c, mirrored(x + dx, in.width), mirrored(y + dy, in.height));
      }
    }
    return sum >> 4;
  });
}

Planes referenceGaussian(const Planes& in, int row) {
  const GaussianCoefficients k = gaussianCoefficients(row);
  const int w = in.width, h = in.height;
  std::vector<float> samples(in.bytes.begin(), in.bytes.end());
  for (int c = 0; c < kChannelCount; ++c) {
    float* const plane = samples.data() + c * w * h;
    for (int y = 0; y < h; ++y) {
      runGaussian(plane + y * w, 1, w, k);
      runGaussian(plane + y * w + w - 1, -1, w, k);
    }
    for (int x = 0; x < w; ++x) {
      runGaussian(plane + x, w, h, k);
      runGaussian(plane + (h - 1) * w + x, -w, h, k);
    }
  }
  Planes out(w, h);
  std::transform(samples.begin(), samples.end(), out.bytes.begin(),
                 [](float v) { return toByte(std::clamp(v, 0.0f, 255.0f) + 0.5f); });
  return out;
}

void referenceGrow(const Planes& small, int levels, const Picture& picture, const Bytes& mask,
                   int weight) {
  Planes level = small;
  for (int j = levels - 1; j >= 1; --j) {
    level = makePlanes(levelExtent(picture.widthPixels, j), levelExtent(picture.heightRows, j),
                       [&](int c, int x, int y) { return grownSample(level, c, x, y); });
  }
  (picture.isRgba() ? mixRgba : mixNv)(level, picture, mask, weight);
}

Bytes referenceMask(int width, int height, const BlurParam& circle) {
  Bytes mask(static_cast<std::size_t>(width * height), 255);
  const std::int64_t outer = circle.outerRadius, inner = circle.innerRadius;
  const std::int64_t k = outer > inner ? 522240 / (outer - inner) : 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::int64_t dx = std::int64_t{x} - circle.centreX;
      const std::int64_t dy = std::int64_t{y} - circle.centreY;
      if (std::abs(dx) > outer || std::abs(dy) > outer) continue;
      const auto sum = static_cast<std::uint64_t>(dx * dx) + static_cast<std::uint64_t>(dy * dy);
      const float d = std::sqrt(static_cast<float>(sum));
      const auto whole = static_cast<std::int64_t>(d);
      if (whole > outer) continue;
      mask[static_cast<std::size_t>(y * width + x)] =
          toByte(d > static_cast<double>(inner) ? 255 - (((outer - whole) * k) >> 11) : 0);
    }
  }
  return mask;
}

Bytes referenceMask(int width, int height, const TiltShiftParam& t) {
  Bytes mask(static_cast<std::size_t>(width * height), 255);
  const double dx = std::abs(double{1} * t.x1 - t.x2), dy = std::abs(double{1} * t.y1 - t.y2);
  const bool beside = std::max(t.x1, t.x2) < 0 || std::min(t.x1, t.x2) >= width - 1;
  if (dx != 0 && dy == 0 && beside) return mask;
  const float slope = -static_cast<float>(std::int64_t{t.x1} - t.x2) /
                      static_cast<float>(std::int64_t{t.y1} - t.y2);
  const float c1 = static_cast<float>(t.y1) - slope * static_cast<float>(t.x1);
  const float c2 = static_cast<float>(t.y2) - slope * static_cast<float>(t.x2);
  const float slanted = static_cast<float>(dx) + 0.5f +
                        std::fabs(static_cast<float>(std::int64_t{t.y1} - t.y2) / slope);
  const double band = dx == 0 ? dy : dy == 0 ? dx : std::trunc(slanted);
  const double core = std::floor(t.core * band / 32), ramp = std::floor((band - core) / 2);
  for (int y = 0; y < height; ++y) {
    const double start = std::min(std::trunc((static_cast<float>(y) - c1) / slope),
                                  std::trunc((static_cast<float>(y) - c2) / slope));
    for (int x = 0; x < width; ++x) {
      const double place = dx == 0   ? y - double{1} * std::min(t.y1, t.y2)
                           : dy == 0 ? x - double{1} * std::min(t.x1, t.x2)
                                     : x - start;
      mask[static_cast<std::size_t>(y * width + x)] = bandValue(place, core, ramp);
    }
  }
  return mask;
}

void referenceFocus(const Picture& picture, const Bytes& mask, int blurLevel) {
  const int levels = blurLevel < 3 ? 1 : 2;
  const int level = blurLevel == 2 ? 7 : blurLevel;
  const int side = std::min(picture.widthPixels, picture.heightRows);
  const Planes reduced = referenceReduce(picture, levels);
  const auto n = static_cast<float>(level - 1);
  const float sigma =
      0.030518f + n * 0.055f + static_cast<float>(side - 400) * 0.01f * (0.14803f + n * 0.011f);
  const Planes smoothed = side > 255
                              ? referenceGaussian(reduced, gaussianRow(std::max(sigma, 0.0f)))
                              : referenceBlur3x3(reduced);
  referenceGrow(smoothed, levels, picture, mask, 0);
}

}  // namespace lumora::test
