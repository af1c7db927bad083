/* Uses every declaration of the public header; compiled as C89, as C11 and (header_use.cpp) as
 * C++17, each with warnings as errors. */
#include "gri_rdk_cdll.h"

typedef void (*AnyFunction)(void);

static gr_uint8 noByte(void* user) {
  (void)user;
  return 2;
}

int main(void) {
  AnyFunction functions[41];
  gr_ioCStream stream;
  gr_uint32 major = 0, minor = 0, tweak = 0, build = 0, i = 0, count = 0;
  const char* branch = 0;

  functions[count++] = (AnyFunction)initializeStatusStrings;
  functions[count++] = (AnyFunction)terminateStatusStrings;
  functions[count++] = (AnyFunction)getLastStatusString;
  functions[count++] = (AnyFunction)getRawStatusString;
  functions[count++] = (AnyFunction)gr_ioCallbackStreamCreate;
  functions[count++] = (AnyFunction)gr_ioCStreamDestroy;
  functions[count++] = (AnyFunction)gr_ioCStreamOpen;
  functions[count++] = (AnyFunction)gr_ioCStreamClose;
  functions[count++] = (AnyFunction)gr_ioCStreamRead;
  functions[count++] = (AnyFunction)gr_ioCStreamWrite;
  functions[count++] = (AnyFunction)gr_ioCStreamSeek;
  functions[count++] = (AnyFunction)gr_ioCStreamTell;
  functions[count++] = (AnyFunction)gr_ioCStreamIsEOF;
  functions[count++] = (AnyFunction)gr_ioCStreamIsOpen;
  functions[count++] = (AnyFunction)gr_ioCStreamDuplicate;
  functions[count++] = (AnyFunction)gric_getVersion;
  functions[count++] = (AnyFunction)gric_openTesraImageFile;
  functions[count++] = (AnyFunction)gric_openTesraImageStream;
  functions[count++] = (AnyFunction)gric_openJP2ImageFile;
  functions[count++] = (AnyFunction)gric_openJP2ImageStream;
  functions[count++] = (AnyFunction)gric_openNITFImageFile;
  functions[count++] = (AnyFunction)gric_closeImage;
  functions[count++] = (AnyFunction)gric_getWidth;
  functions[count++] = (AnyFunction)gric_getHeight;
  functions[count++] = (AnyFunction)gric_getNumBands;
  functions[count++] = (AnyFunction)gric_getColorSpace;
  functions[count++] = (AnyFunction)gric_getDataType;
  functions[count++] = (AnyFunction)gric_getMinMagnification;
  functions[count++] = (AnyFunction)gric_getMaxMagnification;
  functions[count++] = (AnyFunction)gric_getGeoXOrigin;
  functions[count++] = (AnyFunction)gric_getGeoYOrigin;
  functions[count++] = (AnyFunction)gric_getGeoXResolution;
  functions[count++] = (AnyFunction)gric_getGeoYResolution;
  functions[count++] = (AnyFunction)gric_getGeoXRotation;
  functions[count++] = (AnyFunction)gric_getGeoYRotation;
  functions[count++] = (AnyFunction)gric_getNumMetadataRecords;
  functions[count++] = (AnyFunction)gric_getDimsAtMag;
  functions[count++] = (AnyFunction)gric_isTesraLocked;
  functions[count++] = (AnyFunction)gric_setTesraPassword;
  functions[count++] = (AnyFunction)gric_decode;
  functions[count++] = (AnyFunction)gric_getMetadataRecord;
  for (i = 0; i < count; ++i) {
    if (functions[i] == 0) return 1;
  }
  if (count != 41) return 2;

  if (sizeof(gr_uint8) != 1 || sizeof(gr_int8) != 1 || sizeof(gr_uint16) != 2 ||
      sizeof(gr_int16) != 2 || sizeof(gr_uint32) != 4 || sizeof(gr_int32) != 4 ||
      sizeof(gr_uint64) != 8 || sizeof(gr_int64) != 8 || sizeof(GR_STATUS) != 4) {
    return 3;
  }
  if (gric_getVersion(&major, &minor, &tweak, &build, &branch) != GRIC_STATUS_OK) return 4;
  stream = gr_ioCallbackStreamCreate(0, 0, 0, 0, 0, 0, noByte, noByte, 0, 0);
  if (stream == 0 || gr_ioCStreamIsOpen(stream) != 0) return 5;
  if (gr_ioCStreamDestroy(stream) != 0) return 6;
  return gric_closeImage(0) == GRIC_STATUS_NULL_ARGUMENT ? 0 : 7;
}
