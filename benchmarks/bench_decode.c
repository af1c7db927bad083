/*
 * Decodes a window of an image through the C interface and writes its samples raw, band after
 * band: what a benchmark compares, as a whole process, with the decoders of other formats.
 *
 *     bench_decode IMAGE OUT [MAGNIFICATION [X Y WIDTH HEIGHT [X Y]...]]
 *
 * OUT "-" writes nothing. Without a window it decodes the whole image at the magnification. With
 * several places it decodes a window at each of them and writes the last.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "gri_rdk_cdll.h"

static size_t sampleBytes(gr_int32 dataType) {
  switch (dataType) {
    case GRIC_DATATYPE_UINT8:
    case GRIC_DATATYPE_SINT8:
      return 1;
    case GRIC_DATATYPE_UINT16:
    case GRIC_DATATYPE_SINT16:
      return 2;
    case GRIC_DATATYPE_FLOAT64:
    case GRIC_DATATYPE_UINT64:
    case GRIC_DATATYPE_SINT64:
      return 8;
    default:
      return 4;
  }
}

static int fail(const char* what, GR_STATUS status) {
  fprintf(stderr, "bench_decode: %s: %s\n", what, getLastStatusString(status));
  return 1;
}

static GR_STATUS openImage(gric_image* image, const char* path) {
  unsigned char magic[4] = {0, 0, 0, 0};
  FILE* file = fopen(path, "rb");
  if (file != NULL) {
    if (fread(magic, 1, sizeof magic, file) != sizeof magic) magic[0] = 0;
    fclose(file);
  }
  if (memcmp(magic, "tsra", 4) == 0) return gric_openTesraImageFile(image, path);
  if (memcmp(magic, "NITF", 4) == 0 || memcmp(magic, "NSIF", 4) == 0) {
    return gric_openNITFImageFile(image, path);
  }
  return gric_openJP2ImageFile(image, path);
}

int main(int argc, char** argv) {
  if (argc != 3 && argc != 4 && (argc < 8 || argc % 2 != 0)) {
    fprintf(stderr, "usage: bench_decode IMAGE OUT [MAGNIFICATION [X Y WIDTH HEIGHT [X Y]...]]\n");
    return 2;
  }
  gric_image image = NULL;
  GR_STATUS status = openImage(&image, argv[1]);
  if (status != 0) return fail(argv[1], status);

  const double magnification = argc > 3 ? atof(argv[3]) : 1.0;
  double window[4] = {0, 0, 0, 0};
  if (argc >= 8) {
    for (int i = 0; i < 4; ++i) window[i] = atof(argv[4 + i]);
  } else {
    gr_uint32 width = 0;
    gr_uint32 height = 0;
    status = gric_getDimsAtMag(image, magnification, &width, &height);
    if (status != 0) return fail("size", status);
    window[2] = width;
    window[3] = height;
  }

  const gr_uint16 numBands = gric_getNumBands(image);
  const size_t bandBytes =
      (size_t)window[2] * (size_t)window[3] * sampleBytes(gric_getDataType(image));
  void** bands = (void**)calloc(numBands, sizeof(void*));
  if (bands == NULL) return fail("buffers", GRIC_STATUS_NO_MEMORY);
  for (gr_uint16 band = 0; band < numBands; ++band) {
    bands[band] = malloc(bandBytes);
    if (bands[band] == NULL) status = GRIC_STATUS_NO_MEMORY;
  }

  if (status == 0) {
    status = gric_decode(image, window[0], window[1], window[2], window[3], magnification, bands);
  }
  for (int i = 8; i + 1 < argc && status == 0; i += 2) {
    status = gric_decode(image, atof(argv[i]), atof(argv[i + 1]), window[2], window[3],
                         magnification, bands);
  }
  int result = 0;
  if (status != 0) {
    result = fail("decode", status);
  } else if (strcmp(argv[2], "-") != 0) {
    FILE* out = fopen(argv[2], "wb");
    for (gr_uint16 band = 0; out != NULL && band < numBands; ++band) {
      if (fwrite(bands[band], 1, bandBytes, out) != bandBytes) result = 1;
    }
    if (out == NULL || fclose(out) != 0) result = 1;
    if (result != 0) fprintf(stderr, "bench_decode: can't write %s\n", argv[2]);
  }
  for (gr_uint16 band = 0; band < numBands; ++band) free(bands[band]);
  free(bands);
  gric_closeImage(image);
  return result;
}
