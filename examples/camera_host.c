/* A camera host: one handle for the frame size, NV21 frames filtered in place one after another,
 * and an allocator of its own that hands the same few blocks out again and again.
 *
 *   camera_host RESOURCE_DIR/ [FRAMES]
 */
#include <lumora/filters.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

enum { kWidth = 1280, kHeight = 720, kFrameBytes = kWidth * kHeight * 3 / 2 };

/* A camera cannot afford fresh pages for every frame: released blocks wait here for the next call.
 */
typedef struct Block {
  void* address;
  uint32_t size;
  int inUse;
} Block;
static Block blocks[16];

static void* takeBlock(uint32_t size, const char* tag, uint32_t flags) {
  (void)tag;
  (void)flags;
  for (Block* block = blocks; block != blocks + 16; ++block) {
    if (block->inUse || (block->address != NULL && block->size < size)) continue;
    if (block->address == NULL) {
      block->address = malloc(size);
      block->size = size;
      if (block->address == NULL) return NULL;
    }
    block->inUse = 1;
    return block->address;
  }
  return NULL;
}

static void giveBlockBack(void* address, const char* tag, uint32_t flags) {
  (void)tag;
  (void)flags;
  for (Block* block = blocks; block != blocks + 16; ++block) {
    if (block->address == address) block->inUse = 0;
  }
}

/* Stands in for the camera: a bright bar that wanders over a gradient. */
static void captureFrame(uint8_t* frame, int number) {
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const int distance = (x + number * 8) % kWidth;
      frame[y * kWidth + x] = (uint8_t)(distance < 64 ? 235 : 16 + x * 200 / kWidth);
    }
  }
  uint8_t* const chroma = frame + kWidth * kHeight;
  for (int i = 0; i < kFrameBytes - kWidth * kHeight; i += 2) {
    chroma[i] = (uint8_t)(96 + i % kWidth / 20); /* V */
    chroma[i + 1] = 120;                         /* U */
  }
}

static double milliseconds(void) {
  struct timespec now;
  timespec_get(&now, TIME_UTC);
  return (double)now.tv_sec * 1e3 + (double)now.tv_nsec / 1e6;
}

int main(int argc, char** argv) {
  if (argc < 2) {
    fprintf(stderr, "usage: camera_host RESOURCE_DIR/ [FRAMES]\n");
    return 2;
  }
  const int frames = argc > 2 ? atoi(argv[2]) : 30;

  FilterAllocator allocator = {takeBlock, giveBlockBack};
  FilterInitParamApp init = {.eMode = LUMORA_MODE_EARLYBIRD,
                             .width = kWidth,
                             .height = kHeight,
                             .pcResourceDir = argv[1],
                             .pstAllocator = &allocator};
  FilterHandle* handle = NULL;
  uint32_t status = filterInit_APP(&handle, &init);
  uint8_t* const frame = malloc(kFrameBytes);
  double total = 0;
  for (int n = 0; n < frames && status == LUMORA_OK && frame != NULL; ++n) {
    captureFrame(frame, n);
    const FilterImage image = {LUMORA_FORMAT_NV21, frame, kWidth, kHeight, kWidth};
    /* The call rewrites the strength, so every frame gets a fresh record. */
    FilterProcessParam param = {.eMode = LUMORA_MODE_EARLYBIRD, .effectRatio = 12};
    const double start = milliseconds();
    status = filterProcess(handle, &image, &param);
    total += milliseconds() - start;
  }
  if (status == LUMORA_OK) printf("%d frames, %.2f ms each\n", frames, total / frames);
  if (status != LUMORA_OK) fprintf(stderr, "failed with status %u\n", status);

  free(frame);
  filterDestroy(&handle);
  for (Block* block = blocks; block != blocks + 16; ++block) free(block->address);
  return status == LUMORA_OK ? 0 : 1;
}
