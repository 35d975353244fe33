/* Picture filters for a camera and gallery stack.
 *
 * A host creates a handle (filterInit or filterInit_APP), hands it pictures one at a time
 * (filterProcess or filterProcess_for_album), gets each picture back rewritten in place, and
 * destroys the handle (filterDestroy). Every call returns a status.
 *
 * Threads: the functions may be called from any thread. Calls that use one handle must not overlap;
 * different handles are independent. A process call starts four POSIX threads per step and joins
 * them before it returns, unless the call record asks for the calling thread alone. A thread that
 * is cancelled (pthread_cancel) in a call ends when the call has returned.
 *
 * Stack: a call takes at most 24 kB on its own thread and on each of its workers, which start with
 * the process's default attributes; the host's allocator and log come on top.
 *
 * Memory: the handle and every working buffer come from the host's FilterAllocator; working buffers
 * are released before the call returns. Records are borrowed for the call and never kept.
 *
 * Log: every failure is logged once with __android_log_print (tag "filter", priority 6; the version
 * line of an initialisation has priority 4). On Android that is the system's function. Elsewhere
 * the library carries a weak one that writes a line to standard error; a host replaces it by
 * defining its own (a host that opens the library at run time must export it, for example by
 * linking with -rdynamic). The four-threaded NV12 step also writes two lines to standard output;
 * where that is a pipe that nobody reads any more, SIGPIPE ends a host that does not ignore it.
 *
 * On 32-bit builds every field is 32 bits wide and the records have the offsets that hosts of the
 * 32-bit ARM library know. On 64-bit builds pointers have their native size, in the same order.
 */
#ifndef LUMORA_FILTERS_H
#define LUMORA_FILTERS_H

#include <stdint.h>

#if defined(__GNUC__)
#define LUMORA_FILTERS_API __attribute__((visibility("default")))
#else
#define LUMORA_FILTERS_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Status of every call. */
enum {
  LUMORA_OK = 0,
  LUMORA_BAD_ARGUMENT = 256,  /* record field, mode, format, size or stride */
  LUMORA_BAD_STATE = 512,     /* bad handle, bad picture region, or memory exhausted */
  LUMORA_BAD_RESOURCE = 1024, /* a resource file is missing, unreadable or malformed */
  LUMORA_THREAD_FAILED = 4096 /* a worker could not be started; some stripes may be done */
};

/* FilterImage::eFormat */
enum {
  LUMORA_FORMAT_RGBA = 1, /* four bytes a pixel: R, G, B, A; alpha is changed by mode 17 alone,
                             which copies that of a block's first row to its other rows */
  LUMORA_FORMAT_NV21 = 2, /* luma plane, then interleaved chroma pairs V, U at half resolution */
  LUMORA_FORMAT_NV12 = 3  /* luma plane, then interleaved chroma pairs U, V at half resolution */
};

/* FilterProcessParam::eMode and FilterInitParam::eMode */
enum {
  LUMORA_MODE_ANY = 0, /* initialisation only: a handle for every mode */
  LUMORA_MODE_MORAN = 1,
  LUMORA_MODE_RIXI = 2,
  LUMORA_MODE_FUGU = 3,
  LUMORA_MODE_VALENCIA = 4,
  LUMORA_MODE_LAODIANYING = 5,
  LUMORA_MODE_LIANGHONG = 6,
  LUMORA_MODE_YUNDUAN = 7,
  LUMORA_MODE_EARLYBIRD = 8,
  LUMORA_MODE_NUANYANGYANG = 9,
  LUMORA_MODE_TIANMEIKEREN = 10,
  LUMORA_MODE_MEISHIMENGHUAN = 11,
  LUMORA_MODE_HEIBAI = 12,
  LUMORA_MODE_XPRO2 = 13,
  LUMORA_MODE_HUDSON = 14,
  LUMORA_MODE_MYFAIR = 15,
  LUMORA_MODE_LOFI = 16,
  LUMORA_MODE_MOSAIC = 17,
  LUMORA_MODE_COLOUR_FIX = 18, /* filterProcess_for_album, RGBA only */
  LUMORA_MODE_BLUR = 19,       /* filterProcess_for_album only */
  LUMORA_MODE_TILT_SHIFT = 20  /* filterProcess_for_album only */
};

/* Limits of the records. */
enum {
  LUMORA_SHORTEST_SIDE = 88,       /* of a picture, pixels */
  LUMORA_LONGEST_SIDE = 20000,     /* of a picture, pixels */
  LUMORA_FULL_STRENGTH = 16,       /* effectRatio: the look as it is */
  LUMORA_STRONGEST = 32,           /* effectRatio, blur level and TiltShiftParam::core at most */
  LUMORA_SHORTEST_MOSAIC_SIDE = 8, /* of the rectangle, and of a block, pixels */
  LUMORA_LONGEST_MOSAIC_SIDE = 2000,
  LUMORA_LONGEST_RESOURCE_DIR = 245 /* bytes of pcResourceDir */
};

/* The host's memory. Copied into the handle at initialisation; the record itself is not kept, but
 * both functions must stay callable until the handle is destroyed. No alignment is required. */
typedef struct FilterAllocator {
  /* Returns size bytes, or null when there are none. tag is "Lumora_Filters", flags is 0. */
  void* (*allocate)(uint32_t size, const char* tag, uint32_t flags);
  /* Takes back what allocate returned, with the same tag and flags. */
  void (*release)(void* address, const char* tag, uint32_t flags);
} FilterAllocator;

/* Opaque. One block of the host's memory; only its address has a meaning for the host. */
typedef struct FilterHandle FilterHandle;

/* Argument of filterInit. */
typedef struct FilterInitParam {
  uint32_t eMode;      /* mode the handle is for; 0 for any. 1..4 and 9..12 are refused: those looks
                          need no textures and run on every handle */
  uint32_t eDirection; /* 0..3, orientation of the sensor picture in quarter turns; selects the
                          orientation of the LIANGHONG texture */
  uint32_t reserved[4]; /* not read */
  uint32_t width;  /* pixels, 88..20000: textures are prepared at this size; or 0 with height 0 */
  uint32_t height; /* rows, 88..20000, or 0 */
  FilterAllocator* pstAllocator; /* null: malloc and free; the call then stores the address of the
                                    library's own pair here */
} FilterInitParam;

/* Argument of filterInit_APP: as FilterInitParam, with a directory of its own. */
typedef struct FilterInitParamApp {
  uint32_t eMode;
  uint32_t eDirection;
  uint32_t reserved[4];
  uint32_t width;
  uint32_t height;
  const char* pcResourceDir; /* prefix of the two resource files, at most 245 bytes, ending in "/";
                                null: the built-in directory /system/etc/camera/filter/ */
  FilterAllocator* pstAllocator;
} FilterInitParamApp;

/* A picture, owned by the host and rewritten in place.
 * RGBA: height rows of stride bytes. NV21, NV12: height rows of stride bytes of luma, directly
 * followed by height / 2 rows of stride bytes of chroma pairs; width and height are even. The whole
 * stride x height (NV: x 3 / 2) bytes must be readable and writable; bytes between a row's pixels
 * and the stride are never changed by a look. */
typedef struct FilterImage {
  uint32_t eFormat; /* LUMORA_FORMAT_... */
  uint8_t* picData; /* first byte of the picture; no alignment is required */
  uint32_t width;   /* pixels, 88..20000 */
  uint32_t height;  /* rows, 88..20000 */
  int32_t stride;   /* bytes from row to row: at least 4 x width (RGBA) or width (NV21, NV12) */
} FilterImage;

/* Settings of one call. */
typedef struct FilterProcessParam {
  uint32_t reserved[2]; /* not read */
  int32_t rectX;        /* mode 17: left edge of the rectangle, pixels, even */
  int32_t rectY;        /* mode 17: top edge, rows, even */
  int32_t rectWidth;    /* mode 17: even, 8..2000, inside the picture */
  int32_t rectHeight;   /* mode 17: even, 8..2000, inside the picture */
  uint32_t eMode;       /* 1..17; 1..20 in filterProcess_for_album */
  uint32_t eDirection;  /* 0..3, used where textures are resampled for the call */
  int32_t effectRatio;  /* strength 0..32: 0 half effect, 16 full, 17..32 stronger; for modes 19 and
                           20 the blur level. Below 16 the call rewrites it to 8 + half of it (not
                           for modes 19 and 20): use a fresh record for every picture */
  int32_t mosaicSize;   /* mode 17: edge of one block, pixels, 8..shorter side of the rectangle; odd
                           ones leave gaps between the blocks of NV chroma */
  int32_t singleThread; /* 0: four worker threads a step; otherwise the calling thread alone */
} FilterProcessParam;

/* Mode 19: sharp inside the inner circle, blurred outside the outer one. Any values are safe. */
typedef struct BlurParam {
  int32_t centreX;     /* pixels */
  int32_t centreY;     /* rows */
  int32_t innerRadius; /* pixels */
  int32_t outerRadius; /* pixels; not above innerRadius: a hard edge */
} BlurParam;

/* Mode 20: sharp between the two lines through (x1, y1) and (x2, y2) that stand at right angles on
 * the segment between them. Any points are safe. */
typedef struct TiltShiftParam {
  int32_t x1;
  int32_t y1;
  int32_t x2;
  int32_t y2;
  int32_t core; /* 0..32: share of the band that is entirely sharp, in 1/32 */
} TiltShiftParam;

/* Mode 18: the colour that stays. */
typedef struct FixColorParam {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
  uint8_t tolerance;   /* hue distance (of 255) that keeps its colour; it fades up to twice that */
  const uint8_t* mask; /* borrowed, may be null; nonzero where colour may stay; stretched to the
                          picture's size */
  int32_t maskWidth;   /* samples a row, at least 1 */
  int32_t maskHeight;  /* rows, at least 1 */
  int32_t maskStride;  /* bytes from row to row, at least maskWidth */
} FixColorParam;

/* Settings of one filterProcess_for_album call. */
typedef struct FilterAlbumParam {
  FilterProcessParam stProcess;
  BlurParam stBlur;
  TiltShiftParam stTiltShift;
  FixColorParam stFixColor;
} FilterAlbumParam;

/* Returns 81010. */
LUMORA_FILTERS_API uint32_t getFilterVersion(void);

/* Creates a handle from the built-in directory's mixIm.dat (textures) and filter.xml (tuning; may
 * be missing, short or malformed, every look then has its built-in values).
 *
 * phHandle: receives the handle; the host destroys it with filterDestroy.
 * pstParamInit: borrowed; only a null pstAllocator is written to.
 *
 * With a width and height, textures are prepared at that size once and calls on pictures of that
 * size need no resampling: the handle then takes 14 bytes a pixel. With 0 x 0 it takes 14 MB and
 * any other size costs one buffer and one resampling a call.
 *
 * Checked in this order, nothing is allocated before the checks have passed:
 *   256  phHandle null; pstParamInit null; allocate or release null; eDirection above 3; eMode
 *        refused; width or height out of range
 *   512  the processor lacks the vector instructions the library is built for
 *   1024 mixIm.dat missing, unreadable, of another size or malformed
 *   512  memory exhausted; *phHandle becomes null when it is the handle's own block
 *   4096 a worker could not be started
 *
 * A failure after the handle's block was obtained (no C heap for filter.xml, 1024; a worker that
 * could not be started) leaves the handle in *phHandle; filterDestroy releases it. A failure before
 * that leaves *phHandle untouched. */
LUMORA_FILTERS_API uint32_t filterInit(FilterHandle** phHandle, FilterInitParam* pstParamInit);

/* As filterInit, with the resource files of pcResourceDir; 1024 also for one that is too long. */
LUMORA_FILTERS_API uint32_t filterInit_APP(FilterHandle** phHandle,
                                           FilterInitParamApp* pstParamInit);

/* Releases a handle with the release function it was created with and sets *phHandle to null.
 * phHandle or *phHandle null: nothing happens. Always returns 0. */
LUMORA_FILTERS_API uint32_t filterDestroy(FilterHandle** phHandle);

/* Applies modes 1 to 17 to a picture, in place. pstImage and pstParam are borrowed for the call.
 *
 * Checked in this order; up to the dispatch the picture is untouched:
 *   256  pstImage or pstParam null; eDirection above 3; width or height outside 88..20000
 *   512  handle null; picData null
 *   256  the handle was made for another texture mode; effectRatio outside 0..32
 *        (from here on effectRatio below 16 has been rewritten)
 *   256  modes 18 to 20
 *   256, 512  mode 17: the rectangle or the block size
 *   256  odd width or height (NV21, NV12); stride too small; unknown format
 *   512  no memory of the picture's size, which strengths below 16 ask for
 *   256  unknown mode
 *   512, 4096  no memory for a working buffer; a worker could not be started (the picture may be
 *        partly filtered)
 *
 * A mosaic (mode 17) is never left out. Where its memory is refused or one of its workers does not
 * start, that is logged, the calling thread makes the mosaic all the same, with the same bytes, and
 * the status is 0. Below strength 16 the memory of the picture's size may still be refused, as
 * above.
 *
 * Memory: below strength 16 as much as the picture, of which most modes touch nothing; where the
 * handle has no texture of the picture's size, one byte a pixel (LIANGHONG and MEISHIMENGHUAN
 * three, LAODIANYING two); mode 17 up to 15 bytes a pixel of the rectangle. */
LUMORA_FILTERS_API uint32_t filterProcess(FilterHandle* handle, const FilterImage* pstImage,
                                          FilterProcessParam* pstParam);

/* As filterProcess, with modes 18 (colour fix), 19 (blur) and 20 (tilt-shift) in addition.
 *   256  mode 20: core above 32; mode 18: a format other than RGBA, or a mask whose width, height
 *        or stride cannot hold its rows
 *
 * Memory: mode 18 two bytes a pixel (three with a mask); modes 19 and 20 four bytes a pixel and,
 * for a moment, 8 bytes a pixel of the reduced picture. Modes 11, 18, 19 and 20 are not blended. */
LUMORA_FILTERS_API uint32_t filterProcess_for_album(FilterHandle* handle,
                                                    const FilterImage* pstImage,
                                                    FilterAlbumParam* pstParam);

#ifdef __cplusplus
}
#endif

#endif /* LUMORA_FILTERS_H */
