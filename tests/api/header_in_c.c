/* The public header is a C11 header, and the library can be called from C. */
#include <lumora/filters.h>
#include <stdio.h>

int main(void) {
  FilterHandle* handle = 0;
  FilterImage image = {LUMORA_FORMAT_RGBA, 0, 88, 88, 352};
  FilterProcessParam param = {.eMode = LUMORA_MODE_HEIBAI, .effectRatio = 16};
  int failures = 0;
  failures += getFilterVersion() != 81010;
  failures += filterInit(&handle, 0) != LUMORA_BAD_ARGUMENT;
  failures += filterProcess(handle, &image, &param) != LUMORA_BAD_STATE;
  failures += filterDestroy(&handle) != LUMORA_OK;
  printf("%d failures\n", failures);
  return failures;
}
