// The steps around the looks: copy, strength blend, worker threads, texture resampling,
// initialisation.
#include <cstring>

#include "cases.h"
#include "effects/smoothing/gaussian.h"
#include "host.h"
#include "pixels/blend_kernel.h"
#include "platform/stripe_runner.h"
#include "resources/resample.h"
#include "resources/texture_pack.h"

namespace lumora::bench {
namespace {

constexpr int kBlendWeight = 12;  // what strength 8 is adjusted to

// memcpy/format/size: the picture into another buffer, what a call below strength 16 does first.
void addCopyCase(Format format, Size size) {
  const std::string name = std::string("memcpy/") + format.name + "/" + size.name();
  addCase(name, isTargetSize(size) && format.code != LUMORA_FORMAT_NV21, [=] {
    const auto picture = std::make_shared<TestPicture>(format, size);
    const std::shared_ptr<std::uint8_t[]> copy = makeBuffer(picture->bytes);
    return Subject{pictureRound(picture,
                                [=] {
                                  std::memcpy(copy.get(), picture->data(), picture->bytes);
                                  return std::uint32_t{0};
                                }),
                   size.pixels()};
  });
}

// blend/format/size/t1: mixing as the tiles of the film do it, here on a whole picture.
void addBlendCase(Format format, Size size) {
  const std::string name = std::string("blend/") + format.name + "/" + size.name() + "/t1";
  addCase(name, isTargetSize(size) && format.code != LUMORA_FORMAT_NV21, [=] {
    const auto picture = std::make_shared<TestPicture>(format, size);
    return Subject{pictureRound(picture,
                                [=] {
                                  kBlend()(picture->original(), picture->data(), picture->bytes,
                                           kBlendWeight);
                                  return std::uint32_t{0};
                                }),
                   size.pixels()};
  });
}

// What four-threaded steps cost beyond their work.
void addThreadCase() {
  addCase("threads/start-join", true, [] {
    const auto picture = std::make_shared<TestPicture>(kRgba, kTargetSize);
    return Subject{pictureRound(picture, [] {
      return static_cast<std::uint32_t>(StripeRunner::run(Stripes{}, [](const Stripe&, int) {}));
    })};
  });
}

// resize<channels>/size/t1: a texture of the pack to the picture's size, into a part of the
// picture's memory; against the limit of the whole RGBA picture.
void addResizeCase(std::int32_t channels, Size size) {
  const std::string name = "resize" + std::to_string(channels) + "/" + size.name() + "/t1";
  addCase(name, isTargetSize(size), [=] {
    const PackImage& image = kPackImages[channels == kFormatGray ? kSlotShade : kSlotLeak0];
    const auto picture = std::make_shared<TestPicture>(kRgba, size);
    const std::shared_ptr<std::uint8_t[]> texture = makeBuffer(image.bytes());
    std::memcpy(texture.get(), picture->original(), image.bytes());
    return Subject{pictureRound(picture,
                                [=, from = image.size] {
                                  MixImgResizeStripe({.src = texture.get(),
                                                      .dst = picture->data(),
                                                      .srcWidth = from.width,
                                                      .srcHeight = from.height,
                                                      .dstWidth = size.width,
                                                      .dstHeight = size.height,
                                                      .firstRow = 0,
                                                      .endRow = size.height,
                                                      .format = channels});
                                  return std::uint32_t{0};
                                }),
                   size.pixels()};
  });
}

// gauss/size: the recursive Gaussian of blur level 3 alone, on three planes of a quarter of the
// picture's sides.
void addGaussianCase(Size size) {
  addCase("gauss/" + size.name(), isTargetSize(size), [=] {
    const auto picture = std::make_shared<TestPicture>(kRgba, size);
    const PlanarImage in{picture->data(), size.width / 4, size.height / 4};
    const std::shared_ptr<std::uint8_t[]> smoothed =
        makeBuffer(static_cast<std::size_t>(in.bytes()));
    const std::shared_ptr<std::uint8_t[]> work =
        makeBuffer(static_cast<std::size_t>(gaussianWorkBytes(in)));
    return Subject{
        pictureRound(picture,
                     [=] {
                       const PlanarImage out{smoothed.get(), in.widthPixels, in.heightRows};
                       RecursiveGaussianPlanes(in, 4.56f, out, work.get());
                       return std::uint32_t{0};
                     }),
        size.pixels() / 16};
  });
}

// What a sized handle's block takes: 14 planes, 4 kB and change.
std::size_t handleSize(Size size) {
  return 14 * static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

std::uint32_t fillFreshBlock(std::size_t bytes) {
  void* const block = std::malloc(bytes);
  if (block == nullptr) return 1;
  std::memset(block, 0x5A, bytes);
  // The compiler must not see that nobody reads the block.
  asm volatile("" : : "r"(block) : "memory");
  std::free(block);
  return 0;
}

// init/<mode>/size: a handle made and destroyed. The second column compares the default pair, whose
// blocks are fresh, with filling a fresh block of the handle's size.
void addInitCase(const char* what, std::uint32_t mode, Size size) {
  const bool isSized = size.width > 0;
  const std::string name =
      std::string("init/") + what + "/" + (isSized ? size.name() : std::string("unsized"));
  addCase(name, isTargetSize(size) || !isSized, [=] {
    const auto picture = std::make_shared<TestPicture>(kRgba, isSized ? size : kTargetSize);
    const std::size_t bytes = handleSize(isSized ? size : Size{1024, 1024});
    return Subject{
        pictureRound(picture, [=] { return initialiseOnce(mode, size, Memory::kReusing); }),
        size.pixels(),
        {"fill",
         {{},
          [=] { fillFreshBlock(bytes); },
          [=] { return initialiseOnce(mode, size, Memory::kDefault); }}}};
  });
}

}  // namespace

void addStepCases() {
  for (const Format format : kFormats) {
    for (const Size size : kSizes) {
      addCopyCase(format, size);
      addBlendCase(format, size);
    }
  }
  addThreadCase();
  addGaussianCase(kTargetSize);
  for (const Size size : kSizes) {
    addResizeCase(kFormatGray, size);
    addResizeCase(kFormatRGB, size);
  }
  addInitCase("all", LUMORA_MODE_ANY, {0, 0});
  for (const Size size : kSizes) {
    addInitCase("all", LUMORA_MODE_ANY, size);
    addInitCase("LIANGHONG", LUMORA_MODE_LIANGHONG, size);
    addInitCase("EARLYBIRD", LUMORA_MODE_EARLYBIRD, size);
  }
}

}  // namespace lumora::bench
