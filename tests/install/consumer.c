/* A program of somebody who has the library installed. */
#include <lumora/filters.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
  static uint8_t pixels[4 * 96 * 96];
  FilterHandle* handle = NULL;
  FilterInitParamApp init = {.pcResourceDir = argc > 1 ? argv[1] : NULL};
  const FilterImage image = {LUMORA_FORMAT_RGBA, pixels, 96, 96, 4 * 96};
  FilterProcessParam param = {.eMode = LUMORA_MODE_EARLYBIRD, .effectRatio = 16};
  memset(pixels, 200, sizeof pixels);
  uint32_t status = filterInit_APP(&handle, &init);
  if (status == LUMORA_OK) status = filterProcess(handle, &image, &param);
  filterDestroy(&handle);
  printf("status %u, first pixel %u %u %u\n", status, pixels[0], pixels[1], pixels[2]);
  return status == LUMORA_OK && pixels[0] != 200 ? 0 : 1;
}
