// Which texture, at which size and from where, a call hands to its look.
#include <gtest/gtest.h>

#include "looks/looks.h"
#include "looks/texture/film_ageing.h"
#include "resources/resample.h"
#include "support/mode_calls.h"

namespace lumora::test {
namespace {

// Large enough for the film's marks.
constexpr PixelSize kPicture{1200, 520};

struct TextureLook {
  std::uint32_t mode;
  const Look& (*look)();
  int plane;
};
constexpr TextureLook kLooks[] = {{LUMORA_MODE_LAODIANYING, kLaodianying, 0},
                                  {LUMORA_MODE_LIANGHONG, kLianghong, 1},
                                  {LUMORA_MODE_YUNDUAN, kYunduan, 4},
                                  {LUMORA_MODE_EARLYBIRD, kEarlybird, 5},
                                  {LUMORA_MODE_XPRO2, kXpro2, 6},
                                  {LUMORA_MODE_HUDSON, kHudson, 7},
                                  {LUMORA_MODE_MYFAIR, kMyfair, 8},
                                  {LUMORA_MODE_LOFI, kLofi, 9}};

struct Image {
  PixelSize size;
  const std::uint8_t* pixels;
};

Bytes stretched(const Image& image, int format) {
  Bytes out(static_cast<std::size_t>(format * kPicture.pixels()));
  MixImgResizeStripe({image.pixels, out.data(), image.size.width, image.size.height, kPicture.width,
                      kPicture.height, 0, kPicture.height, format});
  return out;
}

Bytes stretchedNearest(const Image& image, PixelSize to) {
  Bytes out(static_cast<std::size_t>(to.pixels()));
  ImResizeNearest(image.size.width, image.size.height, to.width, to.height, image.pixels,
                  out.data());
  return out;
}

class TextureRoutes : public testing::TestWithParam<TexturePath> {
 protected:
  TextureRoutes() { setFilmSeed(5150); }
  ~TextureRoutes() override { setFilmSeed({}); }

  // Handles that hold the picture's own textures give them as they are; others stretch theirs, the
  // light leak one of four of half the size while nothing is prepared.
  Bytes textureOf(const TextureLook& look, int direction) const {
    const FilterHandleView view = handle_.view();
    const PixelSize held = view.textureSize();
    const int format = look.mode == LUMORA_MODE_LIANGHONG ? 3 : 1;
    Image image{held, view.plane(look.plane)};
    if (format == 3 && GetParam() == TexturePath::kUnsized) {
      const PixelSize half{held.width / 2, held.height / 2};
      image = {half, image.pixels + 3 * half.pixels() * direction};
    }
    if (GetParam() != TexturePath::kPrepared) return stretched(image, format);
    return {image.pixels, image.pixels + format * held.pixels()};
  }

  void age(const Picture& picture) const {
    const FilterHandleView view = handle_.view();
    const SmallTextureSizes held = view.smallTextures();
    const SmallTextureSizes wanted = smallTextureSizes(kPicture.width, kPicture.height);
    const Bytes grain = stretchedNearest({view.textureSize(), view.plane(13)}, kPicture);
    Bytes blotch = stretchedNearest({held.blotch, view.blotch()}, wanted.blotch);
    Bytes speck = stretchedNearest({held.speck, view.speck()}, wanted.speck);
    const FilmAge age(picture, {grain.data(),
                                {blotch.data(), wanted.blotch.width, wanted.blotch.height},
                                {speck.data(), wanted.speck.width, wanted.speck.height}});
    age(picture, {0, picture.heightRows});
  }

  TestAllocator allocator_;
  TestHandle handle_{allocator_, handleLayout(GetParam(), kPicture)};
};

std::string nameOf(const testing::TestParamInfo<TexturePath>& path) {
  constexpr const char* kNames[] = {"Prepared", "Unsized", "OfAnotherSize"};
  return kNames[static_cast<int>(path.param)];
}
INSTANTIATE_TEST_SUITE_P(Handles, TextureRoutes, testing::ValuesIn(kTexturePaths), nameOf);

TEST_P(TextureRoutes, EveryLookGetsItsTextureAtThePicturesSize) {
  const SavedMarks marks(handle_.view());
  for (const TextureLook& look : kLooks) {
    for (const PixelFormat format : kFormats) {
      for (const bool onCaller : {true, false}) {
        const ModeCall call{
            .mode = look.mode, .format = format, .path = GetParam(), .onCaller = onCaller};
        const FilterAlbumParam param = paramFor(call, kPicture);
        const TestPicture picture(format, kPicture.width, kPicture.height, 20), expected(picture);
        marks.restore();
        if (look.mode == LUMORA_MODE_LAODIANYING) age(expected.view());
        const Bytes texture = textureOf(look, static_cast<int>(param.stProcess.eDirection));
        ASSERT_EQ(runLook(look.look(), expected.view(), {{texture.data()}, nullptr, 16},
                          Threads::kCaller),
                  Status::kOk);

        ASSERT_EQ(run(call, handle_.get(), picture.image()), LUMORA_OK) << describe(call);
        EXPECT_EQ(picture.difference(expected), kNone) << describe(call);
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
