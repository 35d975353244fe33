// Colour fix against its formulas in plain single precision.
#include "effects/colour_fix/colour_fix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>

#include "effects/colour_fix/reciprocal_estimate.h"
#include "pipeline/dispatch.h"
#include "platform/stripe_runner.h"
#include "support/captured_log.h"
#include "support/everywhere.h"
#include "support/test_handle.h"

#if defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace lumora::test {
namespace {

constexpr int kColourStep = kReduced ? 13 : 1;
constexpr int kWidthStep = kReduced ? 5 : 1;

struct Pixel {
  int r, g, b;
  int highest() const { return std::max({r, g, b}); }
  int range() const { return highest() - std::min({r, g, b}); }
};

// The estimate as its description gives it, in real numbers: the reciprocal of the middle of the
// 1/512 that x lies in, rounded to 1/256.
float estimatedReciprocal(float x) {
  int exponent = 0;
  const double fraction = std::frexp(static_cast<double>(x), &exponent);  // 0.5 <= fraction < 1
  const double middle = (std::floor(fraction * 512.0) + 0.5) / 512.0;
  const double estimate = std::floor(256.0 / middle + 0.5) / 256.0;
  return static_cast<float>(std::ldexp(estimate, -exponent));
}

// Half of the 255 places of a full turn for three sectors.
struct Sector {
  int base, difference;
};

Sector sectorOf(const Pixel& p) {
  if (p.r == p.highest()) return {p.g < p.b ? 255 : 0, p.g - p.b};
  if (p.g == p.highest()) return {85, p.b - p.r};
  return {170, p.r - p.g};
}

int hueInEights(const Pixel& p) {
  static const std::vector<float> estimates = [] {
    std::vector<float> all(256);
    for (int d = 1; d < 256; ++d) {
      all[static_cast<std::size_t>(d)] = estimatedReciprocal(static_cast<float>(d));
    }
    return all;
  }();
  if (p.range() == 0) return 0;
  const Sector s = sectorOf(p);
  const float scale = 42.5f * estimates[static_cast<std::size_t>(p.range())];
  return std::clamp(s.base + static_cast<int>(static_cast<float>(s.difference) * scale), 0, 255);
}

int hueByTable(const Pixel& p) {
  const int d = p.range();
  if (d == 0) return 0;
  const Sector s = sectorOf(p);
  const int scaled = (8192 / d * ((d >> 1) + 256 * s.difference)) >> 13;
  return std::clamp(s.base + ((scaled * 85 + 256) >> 9), 0, 255);
}

struct Settings {
  int red, green, blue, tolerance;
};

class Reference {
 public:
  explicit Reference(const Settings& s) : tolerance_(s.tolerance) {
    const Pixel p{s.red, s.green, s.blue};
    hue_ = hueByTable(p);
    const int reciprocal = p.highest() == 0 ? 0 : 8192 / p.highest();
    pale_ = (((reciprocal * p.range() * 255) >> 13) & 255) < 21;
  }

  void apply(std::uint8_t* pixel, bool inEights, bool masked) const {
    const Pixel p{pixel[0], pixel[1], pixel[2]};
    const int grey = (19 * p.r + 38 * p.g + 7 * p.b + (inEights ? 0 : 32)) >> 6;
    const int hue = inEights ? hueInEights(p) : hueByTable(p);
    const int distance = std::min({std::abs(hue_ - hue), hue_ + 255 - hue, hue - hue_ + 255});
    if (!pale_ && !masked && distance <= tolerance_) return;
    int k = 8192;
    if (!pale_ && !masked && distance < 2 * tolerance_) {
      k = (distance - tolerance_) * static_cast<int>(8192.0f / static_cast<float>(tolerance_));
    }
    for (int c = 0; c < 3; ++c) {
      pixel[c] = toByte(std::min((pixel[c] * (8192 - k) + grey * k) >> 13, 255));
    }
  }

 private:
  int hue_;
  int tolerance_;
  bool pale_;
};

// A mask with exactly the bytes that its description has, right before an inaccessible page.
class Mask {
 public:
  Mask(int width, int height, int padding)
      : width_(width),
        height_(height),
        stride_(width + padding),
        buffer_(static_cast<std::size_t>(stride_ * (height - 1) + width)) {
    Noise noise(static_cast<std::uint32_t>(width * 31 + height));
    std::generate_n(buffer_.data(), buffer_.size(), [&] { return toByte(noise.byte() % 3); });
  }
  void clear() { std::fill_n(buffer_.data(), buffer_.size(), std::uint8_t{0}); }
  int height() const { return height_; }

  void describe(FixColorParam& param) const {
    param.mask = buffer_.data();
    param.maskWidth = width_;
    param.maskHeight = height_;
    param.maskStride = stride_;
  }

  // The sample that stands for pixel (x, y) of a stripe: `rows` picture rows are laid over `count`
  // mask rows from `first` on.
  int at(int x, int y, int width, int rows, int first, int count) const {
    const auto columnStep =
        static_cast<std::int64_t>(static_cast<float>(width_) * 4096.0f / static_cast<float>(width));
    const auto rowStep =
        static_cast<std::int64_t>(static_cast<float>(count) * 4096.0f / static_cast<float>(rows));
    const auto row = count == 0
                         ? height_ - 1
                         : std::min<std::int64_t>(first + ((y * rowStep) >> 12), height_ - 1);
    return buffer_.data()[row * stride_ + ((x * columnStep) >> 12)];
  }

 private:
  int width_, height_, stride_;
  GuardedBuffer buffer_;
};

// The rows of a stripe, the row pairs that its part of the mask is laid over, and that part.
struct Share {
  int firstRow, rows, pairRows, firstMaskRow, maskRows;
};

std::vector<Share> sharesOf(int height, int maskHeight, Threads threads) {
  if (threads == Threads::kCaller) return {{0, height, height, 0, maskHeight}};
  std::vector<Share> shares;
  for (int k = 0; k < kStripeCount; ++k) {
    const Stripe rows = splitRowPairs(height)[k], mask = splitRowPairs(maskHeight)[k];
    shares.push_back({static_cast<int>(rows.first), static_cast<int>(rows.count),
                      static_cast<int>(rows.count), static_cast<int>(mask.first),
                      static_cast<int>(mask.count)});
  }
  shares.back().rows += height % 2;
  return shares;
}

void referenceFix(const Picture& picture, const Settings& settings, const Mask* mask,
                  Threads threads) {
  const Reference reference(settings);
  const int inEights = picture.widthPixels / 8 * 8;
  for (const Share& s :
       sharesOf(picture.heightRows, mask != nullptr ? mask->height() : 0, threads)) {
    for (int y = 0; y < s.rows; ++y) {
      for (int x = 0; x < picture.widthPixels; ++x) {
        const bool masked = mask != nullptr && mask->at(x, y, picture.widthPixels, s.pairRows,
                                                        s.firstMaskRow, s.maskRows) == 0;
        reference.apply(picture.row(s.firstRow + y) + 4 * x, x < inEights, masked);
      }
    }
  }
}

FixColorParam paramOf(const Settings& s, const Mask* mask = nullptr) {
  FixColorParam param{
      toByte(s.red), toByte(s.green), toByte(s.blue), toByte(s.tolerance), nullptr, 0, 0, 0};
  if (mask != nullptr) mask->describe(param);
  return param;
}

Status runFix(const Picture& picture, const FixColorParam& param, Threads threads) {
  GuardedBuffer work(static_cast<std::size_t>(colourFixBytes(picture, param)));
  return FilterFixColor(picture, param, work.data(), threads);
}

// The two forms differ: each of the four stripes stretches its own share of the mask.
void expectFixed(const TestPicture& picture, const Settings& settings, const Mask* mask = nullptr) {
  for (const Threads threads : kBothThreads) {
    const TestPicture expected(picture);
    referenceFix(expected.view(), settings, mask, threads);
    for (const int level : supportedLevels()) {
      const ForcedLevel forced(level);
      const TestPicture result(picture);
      ASSERT_EQ(runFix(result.view(), paramOf(settings, mask), threads), Status::kOk);
      ASSERT_EQ(result.difference(expected), kNone)
          << result.description() << " on " << vectorLevelName(level);
    }
  }
}

void expectFixed(int width, int height, const Settings& settings, const Mask* mask = nullptr) {
  expectFixed(TestPicture(PixelFormat::kRgba, width, height, 3), settings, mask);
}

TEST(ReciprocalEstimate, IsThatOfTheProcessor) {
  for (int d = 1; d < 256; ++d) {
    const auto x = static_cast<float>(d);
    EXPECT_EQ(reciprocalEstimateOf(d), estimatedReciprocal(x)) << d;
#if defined(__ARM_NEON)
    const float processors = vget_lane_f32(vrecpe_f32(vdup_n_f32(x)), 0);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(reciprocalEstimateOf(d)),
              std::bit_cast<std::uint32_t>(processors))
        << d;
#endif
  }
}

// What becomes of one colour, among the eights of a row.
void expectColour(const Pixel& colour, const Settings& settings, const Pixel& expected,
                  const Mask* mask = nullptr) {
  const auto filled = [](const Pixel& p) {
    TestPicture picture(PixelFormat::kRgba, 88, 88);
    picture.fill(p.r, p.g, p.b, 77);
    return picture;
  };
  expectEverywhere(filled(colour), filled(expected), [&](const Picture& copy, Threads threads) {
    return runFix(copy, paramOf(settings, mask), threads);
  });
}

TEST(ColourFix, GivesTheWorkedValues) {
  const Settings red{255, 0, 0, 20};
  expectColour({255, 0, 0}, red, {255, 0, 0});
  expectColour({0, 255, 0}, red, {151, 151, 151});
  // Just below red, the other way round the circle: hue 250.
  expectColour({255, 0, 31}, red, {255, 0, 31});
  // A grey reference keeps nothing, nor does a mask of zeros.
  expectColour({255, 0, 0}, {128, 128, 128, 20}, {75, 75, 75});
  Mask zeros(10, 10, 0);
  zeros.clear();
  expectColour({255, 0, 0}, red, {75, 75, 75}, &zeros);
  // Hue 30, at distance 20 + 10: halfway to its grey of 183, rounded down.
  expectColour({255, 181, 0}, red, {219, 181, 91});
  // No tolerance at all keeps exactly the hue; the greatest keeps everything.
  expectColour({200, 0, 0}, {255, 0, 0, 0}, {200, 0, 0});
  expectColour({255, 9, 0}, {255, 0, 0, 0}, {81, 81, 81});
  expectColour({0, 128, 255}, {255, 0, 0, 255}, {0, 128, 255});
}

// Every colour, where every hue is visible: the fade reaches all of them.
TEST(ColourFix, MeasuresTheHueOfEveryColour) {
  constexpr int kWidth = 4096, kRows = 16;
  TestPicture picture(PixelFormat::kRgba, kWidth, kRows);
  for (int first = 0; first < 1 << 24; first += kColourStep * kWidth * kRows) {
    for (int i = 0; i < kWidth * kRows; ++i) {
      const int colour = first + i;
      const std::uint8_t pixel[] = {toByte(colour >> 16), toByte(colour >> 8), toByte(colour)};
      std::copy_n(pixel, 3, picture.data() + 4 * i);
    }
    for (const Settings& settings :
         {Settings{255, 0, 3, 64}, Settings{0, 255, 0, 43}, Settings{40, 30, 90, 1}}) {
      SCOPED_TRACE(first);
      expectFixed(picture, settings);
    }
  }
}

TEST(ColourFix, AgreesAtEverySizeAndTolerance) {
  for (int width = 88; width < 88 + 140; width += kWidthStep) {
    expectFixed(width, 13, {10, 200, 90, 30});
  }
  // Below a vector and below eight; whole pairs and an odd last row.
  for (int width = 1; width < 20; width += 3) expectFixed(width, 9, {10, 20, 90, 40});
  for (int height = 88; height < 96; ++height) expectFixed(92, height, {200, 10, 20, 50});
  for (int tolerance = 0; tolerance < 256; tolerance += kWidthStep) {
    expectFixed(91, 8, {200, 90, 20, tolerance});
  }
  expectFixed(91, 8, {100, 95, 95, 30});
}

TEST(ColourFix, StretchesEveryMask) {
  const Settings settings{255, 60, 0, 60};
  const struct {
    int width, height, padding;
  } masks[] = {{1, 1, 0},     {1, 3, 4},    {15, 7, 1},   {16, 8, 0},     {17, 9, 0},
               {44, 45, 3},   {100, 90, 0}, {101, 91, 0}, {99, 89, 7},    {102, 91, 2},
               {203, 180, 0}, {202, 5, 0},  {207, 2, 9},  {1000, 400, 1}, {64, 1000, 0}};
  for (const auto& m : masks) {
    const Mask mask(m.width, m.height, m.padding);
    for (const int height : {88, 90, 91}) expectFixed(101, height, settings, &mask);
    expectFixed(104, 89, settings, &mask);
  }
  // A pale reference is grey under any mask.
  const Mask mask(30, 30, 0);
  expectFixed(91, 89, {7, 7, 7, 60}, &mask);
}

// The whole call with its buffer.
class ColourFixCall : public testing::Test {
 protected:
  ColourFixCall() {
    album_.stProcess.eMode = LUMORA_MODE_COLOUR_FIX;
    album_.stFixColor = paramOf({255, 0, 0, 30});
  }
  std::uint32_t process() {
    const FilterImage image = picture_.image();
    return filterProcess_for_album(handle_.get(), &image, &album_);
  }

  TestAllocator allocator_;
  TestHandle handle_{allocator_, {}};
  TestPicture picture_{PixelFormat::kRgba, 96, 89};
  FilterAlbumParam album_{};
};

TEST_F(ColourFixCall, RefusesMasksWithoutRowsBeforeThePictureIsTouched) {
  const struct {
    int width, height, stride;
  } faults[] = {{0, 10, 10},  {10, 0, 10},         {10, 10, 9},
                {-1, 10, 10}, {10, INT32_MIN, 10}, {10, 10, INT32_MIN}};
  const TestPicture before(picture_);
  const std::uint8_t sample = 1;
  for (const auto& fault : faults) {
    for (const int singleThread : {0, 1}) {
      album_.stProcess.singleThread = singleThread;
      album_.stFixColor.mask = &sample;
      album_.stFixColor.maskWidth = fault.width;
      album_.stFixColor.maskHeight = fault.height;
      album_.stFixColor.maskStride = fault.stride;
      const CapturedLog log;
      EXPECT_EQ(process(), 256u);
      EXPECT_EQ(log.errors(), (std::vector<std::string>{"[%s] FilterFixColor_RGBA failed!\n",
                                                        "[%s] process failed!\n"}));
      EXPECT_EQ(picture_.difference(before), kNone);
    }
  }
  // Without a mask the three words are not looked at.
  album_.stFixColor.mask = nullptr;
  EXPECT_EQ(process(), 0u);
  EXPECT_EQ(allocator_.liveBlocks(), 1);
}

// The entry refuses these; the dispatcher by itself does too.
TEST_F(ColourFixCall, NeedsRgbaAndItsRecord) {
  const std::pair<PixelFormat, const FixColorParam*> cases[] = {
      {PixelFormat::kNv21, &album_.stFixColor},
      {PixelFormat::kNv12, &album_.stFixColor},
      {PixelFormat::kRgba, nullptr}};
  for (const auto& [format, param] : cases) {
    for (const Threads threads : kBothThreads) {
      const TestPicture picture(format, 96, 88), before(picture);
      const Call call{picture.view(),
                      handle_.view(),
                      LUMORA_MODE_COLOUR_FIX,
                      0,
                      16,
                      {},
                      0,
                      threads,
                      nullptr,
                      nullptr,
                      nullptr,
                      param};
      const CapturedLog log;
      EXPECT_EQ(dispatch(call), Status::kBadArgument);
      EXPECT_EQ(log.errors(),
                std::vector<std::string>{format == PixelFormat::kRgba
                                             ? "[%s] FilterFixColor_RGBA failed!\n"
                                             : "[%s] FilterFixColor_multiThread failed!\n"});
      EXPECT_EQ(picture.difference(before), kNone);
    }
  }
}

}  // namespace
}  // namespace lumora::test
