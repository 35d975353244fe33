#include "looks/texture/film_ageing.h"
#include "pipeline/routes.h"
#include "platform/host_block.h"
#include "platform/log.h"
#include "resources/resample.h"

namespace lumora {
namespace {

PixelSize sizeOf(const Picture& picture) { return {picture.widthPixels, picture.heightRows}; }

bool sameSize(PixelSize a, PixelSize b) { return a.width == b.width && a.height == b.height; }

// Stretches a texture to the picture's size.
Status resample(const Call& call, std::int32_t format, PixelSize from, const std::uint8_t* source,
                std::uint8_t* destination) {
  const PixelSize to = sizeOf(call.picture);
  if (call.threads == Threads::kCaller) {
    (format == kFormatRGB ? MixImgResizeRGB : MixImgResizeGray)(from.width, from.height, to.width,
                                                                to.height, source, destination);
    return Status::kOk;
  }
  const Status status =
      MixImgResize(format, from.width, from.height, to.width, to.height, source, destination);
  return status == Status::kOk ? status : fail(status, "[%s] MixImgResize failed!\n");
}

// Runs the look on a texture stretched for this call alone.
Status runResampled(const Call& call, const ModeRow& row, std::int32_t format, PixelSize from,
                    const std::uint8_t* source) {
  const std::int64_t pixels = sizeOf(call.picture).pixels();
  const HostBlock texture(call.handle.allocator(), static_cast<std::uint64_t>(format * pixels));
  if (!texture) return outOfMemory(call, pixels);
  const Status resampled = resample(call, format, from, source, texture.data());
  if (resampled != Status::kOk) return resampled;
  return runModeLook(call, row, texture.data());
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

// Textures of the aged film at the picture's size, behind one another in a block of their own.
struct FilmTextures {
  std::uint8_t* shade;
  MarkBuffer marks;
};

FilmTextures layOutFilm(std::uint8_t* base, PixelSize picture, SmallTextureSizes small) {
  std::uint8_t* const grain = base + picture.pixels();
  std::uint8_t* const blotch = grain + picture.pixels();
  std::uint8_t* const speck = blotch + small.blotch.pixels();
  return {base,
          {grain,
           {blotch, small.blotch.width, small.blotch.height},
           {speck, small.speck.width, small.speck.height}}};
}

void resampleNearest(PixelSize from, const std::uint8_t* source, PixelSize to,
                     std::uint8_t* destination) {
  ImResizeNearest(from.width, from.height, to.width, to.height, source, destination);
}

// From whatever sizes the handle holds.
Status fillFilm(const Call& call, int shadePlane, const FilmTextures& film, std::uint8_t* grain,
                SmallTextureSizes small) {
  const FilterHandleView& handle = call.handle;
  const SmallTextureSizes held = handle.smallTextures();
  resampleNearest(handle.textureSize(), handle.plane(kGrainPlane), sizeOf(call.picture), grain);
  resampleNearest(held.blotch, handle.blotch(), small.blotch, film.marks.blotch.texels);
  resampleNearest(held.speck, handle.speck(), small.speck, film.marks.speck.texels);
  return resample(call, kFormatGray, handle.textureSize(), handle.plane(shadePlane), film.shade);
}

Status runAgedFilm(const Call& call, const ModeRow& row, const FilmTextures& film) {
  AgeFilm(call.picture, film.marks);
  return runModeLook(call, row, film.shade);
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
  const std::uint8_t* const plane = call.handle.plane(row.texturePlane);
  if (sameSize(held, sizeOf(call.picture))) return runModeLook(call, row, plane);
  return runResampled(call, row, kFormatGray, held, plane);
}

Status routeLianghong(const Call& call, const ModeRow& row) {
  const bool isPrepared = call.handle.header().prepared() == 1 &&
                          sameSize(call.handle.textureSize(), sizeOf(call.picture));
  if (isPrepared) return runModeLook(call, row, call.handle.plane(row.texturePlane));
  const LeakSource source = leakSource(call, row.texturePlane);
  return runResampled(call, row, kFormatRGB, source.size, source.pixels);
}

Status routeLaodianying(const Call& call, const ModeRow& row) {
  const FilterHandleView& handle = call.handle;
  const PixelSize size = sizeOf(call.picture);
  const SmallTextureSizes small = smallTextureSizes(size.width, size.height);
  if (handle.header().prepared() == 1 && sameSize(handle.textureSize(), size)) {
    // The marks are rewritten where they lie: they grow whiter from call to call.
    return runAgedFilm(call, row,
                       {handle.plane(row.texturePlane),
                        {handle.plane(kGrainPlane),
                         {handle.blotch(), small.blotch.width, small.blotch.height},
                         {handle.speck(), small.speck.width, small.speck.height}}});
  }
  const auto bytes = static_cast<std::uint64_t>(2 * size.pixels() + small.bytes());
  const HostBlock block(handle.allocator(), bytes);
  if (!block) return outOfMemory(call, size.pixels());
  const FilmTextures film = layOutFilm(block.data(), size, small);
  const Status filled = fillFilm(call, row.texturePlane, film, block.data() + size.pixels(), small);
  if (filled != Status::kOk) return filled;
  return runAgedFilm(call, row, film);
}

}  // namespace lumora
