#include "looks/reference_run.h"

namespace lumora::test {
namespace {

struct Block {
  Colour colour[4];  // upper left, upper right, lower left, lower right
};

Colour toRgb(int y, int u, int v, int neutral) {
  u -= neutral;
  v -= neutral;
  return {clampByte((64 * y + 90 * v + 32) >> 6), clampByte((64 * y - 46 * v - 22 * u + 32) >> 6),
          clampByte((64 * y + 114 * u + 32) >> 6)};
}

int halfAdd(int a, int b) { return (a + b + 1) >> 1; }

struct Means {
  int red, blue, luma;
};

Means meansOf(const Block& block, bool halfAdds) {
  const Colour(&c)[4] = block.colour;
  if (halfAdds) {
    return {halfAdd(halfAdd(c[0].r, c[1].r), halfAdd(c[2].r, c[3].r)),
            halfAdd(halfAdd(c[0].b, c[1].b), halfAdd(c[2].b, c[3].b)),
            halfAdd(halfAdd(greyOf(c[0]), greyOf(c[2])), halfAdd(greyOf(c[1]), greyOf(c[3])))};
  }
  const Colour mean{(c[0].r + c[1].r + c[2].r + c[3].r + 2) >> 2,
                    (c[0].g + c[1].g + c[2].g + c[3].g + 2) >> 2,
                    (c[0].b + c[1].b + c[2].b + c[3].b + 2) >> 2};
  return {mean.r, mean.b, greyOf(mean)};
}

std::uint8_t chromaOf(int channel, int luma, int weight, int neutral) {
  return toByte(clampByte((weight * (channel - luma) + 64 * neutral + 32) >> 6));
}

void runRgba(const Picture& picture, const PixelFunction& function, const std::uint8_t* texture,
             int texelBytes) {
  for (int y = 0; y < picture.heightRows; ++y) {
    for (int x = 0; x < picture.widthPixels; ++x) {
      std::uint8_t* const p = picture.row(y) + 4 * x;
      const Colour in{p[0], p[1], p[2]};
      const std::uint8_t* const texel =
          texture + (std::ptrdiff_t{y} * picture.widthPixels + x) * texelBytes;
      const Colour out = function({in, greyOf(in), texel, false});
      p[0] = toByte(out.r);
      p[1] = toByte(out.g);
      p[2] = toByte(out.b);
    }
  }
}

}  // namespace

void referenceRun(const Picture& picture, const PixelFunction& function,
                  const ReferenceConversion& conversion, const std::uint8_t* texture,
                  int texelBytes) {
  if (picture.isRgba()) return runRgba(picture, function, texture, texelBytes);
  const int vIndex = picture.format == PixelFormat::kNv21 ? 0 : 1;
  for (int y = 0; y < picture.heightRows; y += 2) {
    for (int x = 0; x < picture.widthPixels; x += 2) {
      std::uint8_t* const pair = picture.chroma() + y / 2 * picture.strideBytes + x;
      Block block;
      for (int k = 0; k < 4; ++k) {
        const int px = x + k % 2, py = y + k / 2;
        const int luma = picture.row(py)[px];
        const std::uint8_t* const texel =
            texture + (std::ptrdiff_t{py} * picture.widthPixels + px) * texelBytes;
        const Colour in = toRgb(luma, pair[1 - vIndex], pair[vIndex], conversion.neutralIn);
        block.colour[k] = function({in, luma, texel, true});
      }
      for (int k = 0; k < 4; ++k) {
        picture.row(y + k / 2)[x + k % 2] = toByte(greyOf(block.colour[k]));
      }
      const Means means = meansOf(block, conversion.halfAdds);
      pair[vIndex] = chromaOf(means.red, means.luma, 46, conversion.neutralOut);
      pair[1 - vIndex] = chromaOf(means.blue, means.luma, 36, conversion.neutralOut);
    }
  }
}

}  // namespace lumora::test
