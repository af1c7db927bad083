/* A small host, as one would write it against the installed library. */
#include <gri_rdk_cdll.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  gr_uint32 major = 0, minor = 0, tweak = 0, build = 0;
  const char* branch = NULL;
  gric_image image = NULL;

  if (gric_getVersion(&major, &minor, &tweak, &build, &branch) != 0 || major != 7) return 1;
  if (strcmp(getLastStatusString(0), "Success [0]") != 0) return 2;
  if (gric_openNITFImageFile(&image, "no such file") == 0 || image != NULL) return 3;
  printf("gri_rdk_cdll %u.%u.%u.%u.%s\n", (unsigned)major, (unsigned)minor, (unsigned)tweak,
         (unsigned)build, branch);
  return 0;
}
