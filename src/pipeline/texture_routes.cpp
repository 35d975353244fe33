#include "looks/texture/aged_film.h"
#include "pipeline/routes.h"
#include "pixels/blend_kernel.h"
#include "platform/host_block.h"
#include "platform/log.h"
#include "platform/stripe_runner.h"
#include "resources/resample.h"
#include "resources/stretched_texture.h"

namespace lumora {
namespace {

PixelSize sizeOf(const Picture& picture) { return {picture.widthPixels, picture.heightRows}; }

bool sameSize(PixelSize a, PixelSize b) { return a.width == b.width && a.height == b.height; }

int rowsAtOnce(const Picture& picture) { return picture.isRgba() ? 1 : 2; }

// Runs the look on a texture that is stretched for this call alone.
Status runStretched(const Call& call, const ModeRow& row, std::int32_t format, PixelSize from,
                    const std::uint8_t* texels) {
  const PixelSize to = sizeOf(call.picture);
  const HostBlock block(call.handle.allocator(), static_cast<std::uint64_t>(format * to.pixels()));
  if (!block) return outOfMemory(call, to.pixels());
  StretchedTexture texture(format, from, texels, to, rowsAtOnce(call.picture), block.data());
  return runModeLook(call, row, texture.source());
}

// The image for the call's direction among four of half the texture size, or the one image that was
// prepared at another picture's size.
struct LeakSource {
  PixelSize size;
  const std::uint8_t* pixels;
};

LeakSource leakSource(const Call& call, int plane) {
  const PixelSize size = call.handle.textureSize();
  const std::uint8_t* const first = call.handle.plane(plane);
  if (call.handle.header().prepared() == 1) return {size, first};
  const PixelSize half{size.width / 2, size.height / 2};
  return {half, first + kFormatRGB * half.pixels() * call.direction};
}

// Textures of the aged film beside the shade, behind one another.
MarkBuffer layOutMarks(std::uint8_t* grain, PixelSize picture, SmallTextureSizes small) {
  std::uint8_t* const blotch = grain + picture.pixels();
  return {grain,
          {blotch, small.blotch.width, small.blotch.height},
          {blotch + small.blotch.pixels(), small.speck.width, small.speck.height}};
}

void resampleNearest(PixelSize from, const std::uint8_t* source, PixelSize to,
                     std::uint8_t* destination) {
  ImResizeNearest(from.width, from.height, to.width, to.height, source, destination);
}

// From whatever sizes the handle holds.
void fillMarks(const Call& call, const MarkBuffer& marks, std::uint8_t* grain,
               SmallTextureSizes small) {
  const FilterHandleView& handle = call.handle;
  const SmallTextureSizes held = handle.smallTextures();
  resampleNearest(handle.textureSize(), handle.plane(kGrainPlane), sizeOf(call.picture), grain);
  resampleNearest(held.blotch, handle.blotch(), small.blotch, marks.blotch.texels);
  resampleNearest(held.speck, handle.speck(), small.speck, marks.speck.texels);
}

// On the calling thread the picture as it was is mixed in on the way, on four by a step of their
// own.
Status runFilm(const Call& call, const ModeRow& row, const TextureSource& shade,
               const MarkBuffer& marks) {
  const Picture& picture = call.picture;
  const LookInputs inputs{shade, tuningBlock(call), call.ratio};
  const Status filtered =
      reported(call, row, runAgedFilm(picture, inputs, marks, call.copy, call.threads));
  if (call.copy == nullptr || call.threads == Threads::kCaller) return filtered;

  const Status mixed = StripeRunner::run(splitBytes(static_cast<std::int64_t>(picture.bytes())),
                                         [&](const Stripe& s, int) {
                                           kBlend()(call.copy + s.first, picture.data + s.first,
                                                    static_cast<std::size_t>(s.count), call.ratio);
                                         });
  return filtered != Status::kOk ? filtered : mixed;
}

}  // namespace

Status outOfMemory(const Call& call, std::int64_t bytes) {
  if (call.threads == Threads::kCaller) {
    return fail(Status::kNoMemory, "[%s] can't malloc enough memory!\n");
  }
  // At most 3 x 20000 x 20000, which the message's %d holds.
  return fail(Status::kNoMemory, "[%s] can't malloc enough memory [size=%d]!\n",
              static_cast<int>(bytes));
}

Status routeTextureLook(const Call& call, const ModeRow& row) {
  const PixelSize held = call.handle.textureSize();
  const std::uint8_t* const plane = call.handle.plane(row.texture().plane);
  if (sameSize(held, sizeOf(call.picture))) return runModeLook(call, row, {.plane = plane});
  return runStretched(call, row, kFormatGray, held, plane);
}

Status routeLianghong(const Call& call, const ModeRow& row) {
  const bool isPrepared = call.handle.header().prepared() == 1 &&
                          sameSize(call.handle.textureSize(), sizeOf(call.picture));
  if (isPrepared) return runModeLook(call, row, {.plane = call.handle.plane(row.texture().plane)});
  const LeakSource source = leakSource(call, row.texture().plane);
  return runStretched(call, row, kFormatRGB, source.size, source.pixels);
}

Status routeLaodianying(const Call& call, const ModeRow& row) {
  const FilterHandleView& handle = call.handle;
  const PixelSize size = sizeOf(call.picture);
  const SmallTextureSizes small = smallTextureSizes(size.width, size.height);
  const std::uint8_t* const shade = handle.plane(row.texture().plane);
  if (handle.header().prepared() == 1 && sameSize(handle.textureSize(), size)) {
    // The marks are rewritten where they lie: they grow whiter from call to call.
    return runFilm(call, row, {.plane = shade},
                   {handle.plane(kGrainPlane),
                    {handle.blotch(), small.blotch.width, small.blotch.height},
                    {handle.speck(), small.speck.width, small.speck.height}});
  }
  const auto bytes = static_cast<std::uint64_t>(2 * size.pixels() + small.bytes());
  const HostBlock block(handle.allocator(), bytes);
  if (!block) return outOfMemory(call, size.pixels());
  std::uint8_t* const grain = block.data() + size.pixels();
  const MarkBuffer marks = layOutMarks(grain, size, small);
  fillMarks(call, marks, grain, small);
  StretchedTexture stretched(kFormatGray, handle.textureSize(), shade, size,
                             rowsAtOnce(call.picture), block.data());
  return runFilm(call, row, stretched.source(), marks);
}

}  // namespace lumora
