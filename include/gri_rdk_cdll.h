/**
 * @file
 * The C interface of gri_rdk_cdll, a read-only decoder for very large geo-referenced images.
 *
 * A host opens an image from a file or from a stream of its own, asks for its properties, decodes
 * any rectangle at any supported magnification into buffers of its own, and closes the image:
 *
 *     gric_image image;
 *     void* bands[1];
 *     GR_STATUS status = gric_openNITFImageFile(&image, "scene.ntf");
 *     if (status != 0) fail(getLastStatusString(status));
 *     bands[0] = malloc(256 * 256);    (one band of 8-bit samples)
 *     status = gric_decode(image, 0, 0, 256, 256, 1.0, bands);
 *     gric_closeImage(image);
 *
 * Rules that hold for every function here:
 * - A GR_STATUS of 0 is success; every other value is a failure, which getLastStatusString puts
 *   into words. Status 8 is "out of memory", 52001 "a required pointer was null".
 * - Paths and other texts are zero-terminated 8-bit strings; paths are the host system's bytes.
 * - The library starts no thread. All work, and every callback, runs on the calling thread.
 * - One handle serves one thread at a time; separate handles may be used side by side.
 * - Handles are pointers that nobody registers: one that is used after it was closed, or that was
 *   never opened, is undefined behaviour.
 * - Only memory that runs out inside a constructor can raise a C++ exception through this
 *   interface (it carries status 8). A host in C++ may catch it, by `catch (...)`; the handle stays
 *   closable. In a host that can't, it ends the program.
 *
 * The header is valid C89, C11 and C++17.
 */
#ifndef GRI_RDK_CDLL_H
#define GRI_RDK_CDLL_H

#include <stdint.h>

#if defined(_WIN32)
#define GRI_EXPORT
#elif defined(__GNUC__)
#define GRI_EXPORT __attribute__((visibility("default")))
#else
#define GRI_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* --- Types ------------------------------------------------------------------------------- */

typedef uint8_t gr_uint8;
typedef int8_t gr_int8;
typedef uint16_t gr_uint16;
typedef int16_t gr_int16;
typedef uint32_t gr_uint32;
typedef int32_t gr_int32;
typedef uint64_t gr_uint64;
typedef int64_t gr_int64;

/** The result of an operation: 0 is success, every other value a failure. */
typedef gr_uint32 GR_STATUS;

/** An open image: made by a gric_open* function, given back to gric_closeImage. */
typedef struct gric_image_s* gric_image;

/** A stream: made by gr_ioCallbackStreamCreate, given back to gr_ioCStreamDestroy. */
typedef struct gr_ioCStream_s* gr_ioCStream;

/* --- Numbers ----------------------------------------------------------------------------- */

/* The statuses that these functions return by themselves. */
#define GRIC_STATUS_OK 0
#define GRIC_STATUS_FAILURE 1
#define GRIC_STATUS_OUT_OF_RANGE 3
#define GRIC_STATUS_NO_MEMORY 8
#define GRIC_STATUS_NULL_ARGUMENT 52001

/* Data types of samples (gric_getDataType). One image has one type for all bands, or, where its
 * bands differ, GRIC_DATATYPE_INVALID. Samples are in the byte order of the machine. */
#define GRIC_DATATYPE_INVALID 0
#define GRIC_DATATYPE_UINT8 1
#define GRIC_DATATYPE_SINT8 2
#define GRIC_DATATYPE_UINT16 3
#define GRIC_DATATYPE_SINT16 4
#define GRIC_DATATYPE_UINT32 5
#define GRIC_DATATYPE_SINT32 6
#define GRIC_DATATYPE_FLOAT32 7
#define GRIC_DATATYPE_FLOAT64 8
#define GRIC_DATATYPE_UINT64 9
#define GRIC_DATATYPE_SINT64 10

/* Colour spaces (gric_getColorSpace). Bits 8 to 15 are the number of colour bands, 255 for any
 * number; bits 0 to 7 tell colour spaces of the same band count apart. A colour space with alpha
 * is one of these with GRIC_COLORSPACE_ALPHA set, with or without
 * GRIC_COLORSPACE_ALPHA_SECOND_FLAG; the alpha band is then the last one. */
#define GRIC_COLORSPACE_INVALID 0
#define GRIC_COLORSPACE_GRAYSCALE 0x0101
#define GRIC_COLORSPACE_RGB 0x0301
#define GRIC_COLORSPACE_CMY 0x0302
#define GRIC_COLORSPACE_YCC 0x0303
#define GRIC_COLORSPACE_CMYK 0x0402
#define GRIC_COLORSPACE_YCCK 0x0403
#define GRIC_COLORSPACE_MULTISPECTRAL 0xFF01
#define GRIC_COLORSPACE_ALPHA 0x010000
#define GRIC_COLORSPACE_ALPHA_SECOND_FLAG 0x020000

/* Data types of metadata values (gric_getMetadataRecord). */
#define GRIC_METADATA_DATATYPE_INVALID 0
#define GRIC_METADATA_DATATYPE_UINT8 1
#define GRIC_METADATA_DATATYPE_SINT8 2
#define GRIC_METADATA_DATATYPE_UINT16 3
#define GRIC_METADATA_DATATYPE_SINT16 4
#define GRIC_METADATA_DATATYPE_UINT32 5
#define GRIC_METADATA_DATATYPE_SINT32 6
#define GRIC_METADATA_DATATYPE_UINT64 7
#define GRIC_METADATA_DATATYPE_SINT64 8
#define GRIC_METADATA_DATATYPE_FLOAT32 9
#define GRIC_METADATA_DATATYPE_FLOAT64 10
#define GRIC_METADATA_DATATYPE_ASCII 11 /* each value a pointer to a zero-terminated string */

/* Where a seek counts from. */
#define GRIC_SEEK_BEGIN 2
#define GRIC_SEEK_CURRENT 3
#define GRIC_SEEK_END 4

/* --- Status messages --------------------------------------------------------------------- */

/*
 * The four functions share one message for all threads and have no lock: in a host that decodes
 * on several threads at once messages may lose their details, and their calls must be serialised.
 */

/**
 * Turns on filled-in messages: from here on the library keeps the details of the last failure (a
 * path, a reason) for getLastStatusString. Optional; nothing else depends on it. Call it once,
 * before any other function.
 *
 * @return 0; 3070 when it is on already, which then stays; 8 for memory
 */
GRI_EXPORT gr_uint32 initializeStatusStrings(void);

/**
 * Turns filled-in messages off and frees what they kept. Call it once, last.
 *
 * @return 0; 3070 when it is off
 */
GRI_EXPORT gr_uint32 terminateStatusStrings(void);

/**
 * The message of a status with its number behind it: "scene magnification out of range [50015]".
 * A number that the library doesn't know gives "unknown status [NUMBER]".
 *
 * Where the message has details (a path, a reason) and messages are on, they are filled in and
 * used up: a second call for the same failure gives "error retrieving status string (3070)
 * [NUMBER]". With messages off the placeholders (%F, %s, %d) stay as they are.
 *
 * @return never null; at most 4095 characters, in a buffer of the library's that the next call of
 *         getLastStatusString or getRawStatusString overwrites
 */
GRI_EXPORT const char* getLastStatusString(GR_STATUS status);

/**
 * The message of a status as the table has it: placeholders unfilled, without the number, using
 * up nothing. "unknown status" for a number that the library doesn't know.
 *
 * @return never null; constant text of the library's
 */
GRI_EXPORT const char* getRawStatusString(GR_STATUS status);

/* --- Streams of the host ----------------------------------------------------------------- */

/*
 * The callbacks of a stream. Each gets the `user` pointer of its stream, and is called on the
 * thread that called the library. None may be null, but for `write` where nothing writes (no
 * reader does) and `duplicate` where nothing duplicates (Tesra images do): a null `duplicate`
 * makes duplication fail. A callback must return: it neither throws nor jumps out. It must not use
 * the image or the stream that it works for.
 */

/** Makes the stream ready; called on a closed stream. @return a status, 0 for success */
typedef gr_int32 (*gr_ioCOpenFunction)(void* user);
/** Ends its use; the stream may be opened again. @return a status, 0 for success */
typedef gr_int32 (*gr_ioCCloseFunction)(void* user);
/** Reads up to `length` bytes at the position, and moves it.
 *  @return how many; fewer than `length` at the end of the data or on failure. A result above
 *          `length` counts as 0. */
typedef gr_uint32 (*gr_ioCReadFunction)(void* user, gr_uint8* buffer, gr_uint32 length);
/** Writes up to `length` bytes at the position, and moves it.
 *  @return how many; a result above `length` counts as 0 */
typedef gr_uint32 (*gr_ioCWriteFunction)(void* user, const gr_uint8* buffer, gr_uint32 length);
/** Moves the position by `offset` bytes from `origin` (GRIC_SEEK_*).
 *  @return a status, 0 for success */
typedef gr_int32 (*gr_ioCSeekFunction)(void* user, gr_int64 offset, gr_int32 origin);
/** @return the position in bytes from the beginning; negative on failure */
typedef gr_int64 (*gr_ioCTellFunction)(void* user);
/** @return 1 when the last read ran past the end of the data; every other value means no */
typedef gr_uint8 (*gr_ioCIsEOFFunction)(void* user);
/** @return 1 when the stream is open; every other value means no */
typedef gr_uint8 (*gr_ioCIsOpenFunction)(void* user);
/**
 * Makes the user pointer of a second stream over the same data, which is closed and has a position
 * of its own; the same callbacks serve it.
 *
 * The library never frees a user pointer, neither this one nor the first: what belongs to it is
 * the host's to free. What is dear (a file, a connection) is best taken in `open` and given back in
 * `close`, which the library calls on every stream that it opened. The pointer itself must outlive
 * that: a stream may be opened and closed many times, and the last that it is asked is `isOpen`. It
 * may go after gric_closeImage of the image that duplicated the stream, or for a duplicate of
 * gr_ioCStreamDuplicate after its gr_ioCStreamDestroy.
 * A null result is no failure to the library: it becomes the `user` of the new stream, whose
 * callbacks must then refuse.
 */
typedef void* (*gr_ioCDuplicateFunction)(void* user);

/**
 * Makes a stream of the host's callbacks. It is not opened: a reader opens it when it needs it.
 *
 * @param user  handed to each callback; stays the host's and is never freed by the library
 * @return the stream, for gr_ioCStreamDestroy; null when memory runs out
 */
GRI_EXPORT gr_ioCStream gr_ioCallbackStreamCreate(
    gr_ioCOpenFunction open, gr_ioCCloseFunction close, gr_ioCReadFunction read,
    gr_ioCWriteFunction write, gr_ioCSeekFunction seek, gr_ioCTellFunction tell,
    gr_ioCIsEOFFunction isEOF, gr_ioCIsOpenFunction isOpen, gr_ioCDuplicateFunction duplicate,
    void* user);

/**
 * Destroys a stream, after closing it if it is open. A stream that an image was opened on may go
 * only after gric_closeImage of that image.
 *
 * @param stream  null does nothing
 * @return 0
 */
GRI_EXPORT gr_int32 gr_ioCStreamDestroy(gr_ioCStream stream);

/*
 * Direct use of a stream. `stream` must not be null in any of these: they don't test it. A stream
 * has no lock and one position.
 */

/** Opens the stream. @return 0, also when it is open already; else the callback's status */
GRI_EXPORT gr_int32 gr_ioCStreamOpen(gr_ioCStream stream);

/** Closes the stream. @return 0, also when it is closed already; else the callback's status */
GRI_EXPORT gr_int32 gr_ioCStreamClose(gr_ioCStream stream);

/**
 * Reads at the position, and moves it.
 *
 * @param buffer  room for `length` bytes; the caller's
 * @return how many bytes were read; fewer than `length` at the end or on failure
 */
GRI_EXPORT gr_uint32 gr_ioCStreamRead(gr_ioCStream stream, gr_uint8* buffer, gr_uint32 length);

/** Writes `length` bytes at the position, and moves it. @return how many bytes were written */
GRI_EXPORT gr_uint32 gr_ioCStreamWrite(gr_ioCStream stream, const gr_uint8* buffer,
                                       gr_uint32 length);

/**
 * Moves the position.
 *
 * @param offset  bytes, may be negative
 * @param origin  GRIC_SEEK_BEGIN, GRIC_SEEK_CURRENT or GRIC_SEEK_END
 * @return the callback's status, 0 for success
 */
GRI_EXPORT gr_int32 gr_ioCStreamSeek(gr_ioCStream stream, gr_int64 offset, gr_int32 origin);

/** @return the position in bytes from the beginning; negative on failure */
GRI_EXPORT gr_int64 gr_ioCStreamTell(gr_ioCStream stream);

/** @return 1 when the last read ran past the end, else 0 */
GRI_EXPORT gr_uint8 gr_ioCStreamIsEOF(gr_ioCStream stream);

/** @return 1 when the stream is open, else 0 */
GRI_EXPORT gr_uint8 gr_ioCStreamIsOpen(gr_ioCStream stream);

/**
 * A second, closed stream over the same data with a position of its own, whose `user` pointer
 * comes from the `duplicate` callback.
 *
 * @return the stream, for gr_ioCStreamDestroy; null on failure
 */
GRI_EXPORT gr_ioCStream gr_ioCStreamDuplicate(gr_ioCStream stream);

/* --- Version ----------------------------------------------------------------------------- */

/**
 * The version of the library.
 *
 * @param major, minor, tweak, build  receive the four numbers. `minor`, `tweak` and `build` are
 *                                    not tested: a null one crashes
 * @param branch                      receives constant text of the library's
 * @return 0; 52001 when `major` or `branch` is null
 */
GRI_EXPORT GR_STATUS gric_getVersion(gr_uint32* major, gr_uint32* minor, gr_uint32* tweak,
                                     gr_uint32* build, const char** branch);

/* --- Opening and closing ----------------------------------------------------------------- */

/*
 * Each open function stores a handle in `*image` when it succeeds and null when it fails (but for
 * 52001 it leaves `*image` alone). The handle is the host's until gric_closeImage.
 */

/**
 * Opens a Tesra image (either generation) from a file. Several images in one file show as one
 * mosaic. A world file is not looked for.
 *
 * @return 0; 52001 for a null argument; 8 for memory; 50613 when the file can't be opened; 50607
 *         when it is no Tesra file; 50002 where the library was built without a Tesra reader; else
 *         the reader's status (2001 to 2012, 8101 to 8118, 50200 to 50299, 50505, 50507, 50601 to
 *         50612, 3 for a file without an image)
 */
GRI_EXPORT GR_STATUS gric_openTesraImageFile(gric_image* image, const char* fileName);

/**
 * The same from a stream of the host's, which must support duplication, stays the host's, and must
 * live until gric_closeImage has returned. A stream that is closed is opened for each use and
 * closed again; one that is open stays open. Images on one stream count as one handle for the rule
 * of one thread at a time.
 *
 * @return as above; 50613 when the stream doesn't open. Here and in a decode a status that a
 * callback gives may come back as it is
 */
GRI_EXPORT GR_STATUS gric_openTesraImageStream(gric_image* image, gr_ioCStream stream);

/**
 * Opens a JPEG 2000 image (raw codestream, JP2 or JPX; its first codestream) from a file. A world
 * file beside it gives its position.
 *
 * @return 0; 52001 for a null argument; 8 for memory; 50950 when there is no such file; 50951 when
 *         it can't be opened; 50952 when it is no JPEG 2000 file; 50006 for a malformed world file;
 *         50002 where the library was built without a JPEG 2000 reader; else the reader's status
 *         (3, 50902, 50903, 50905, 50920, 50926)
 */
GRI_EXPORT GR_STATUS gric_openJP2ImageFile(gric_image* image, const char* fileName);

/**
 * The same from a stream of the host's, without a world file. The stream stays the host's and must
 * live until gric_closeImage has returned.
 */
GRI_EXPORT GR_STATUS gric_openJP2ImageStream(gric_image* image, gr_ioCStream stream);

/**
 * Opens the first image segment of a NITF 2.0, NITF 2.1 or NSIF 1.0 file. A world file beside it
 * gives its position.
 *
 * @return 0; 52001 for a null argument; 8 for memory; 51203 when the file can't be opened; 51204
 *         when it ends early; 51210 when it is no valid NITF file; 51211 to 51225 for contents that
 *         are not supported; 50006 for a malformed world file; else the status of the segment's
 *         reader (50025, 50504, 51201, 51202, 51205 to 51207, 51230, 51300 to 51312, 7250 to 7252,
 *         and those of gric_openJP2ImageFile)
 */
GRI_EXPORT GR_STATUS gric_openNITFImageFile(gric_image* image, const char* fileName);

/**
 * Closes an image and frees all that belongs to it. A stream that it was opened on stays.
 *
 * @return 0; 52001 for null
 */
GRI_EXPORT GR_STATUS gric_closeImage(gric_image image);

/* --- Properties -------------------------------------------------------------------------- */

/*
 * The result is returned directly. A null handle gives 0. They read what the open has stored, but
 * count as uses of the handle for the rule of one thread at a time.
 */

/** @return columns at magnification 1 */
GRI_EXPORT gr_uint32 gric_getWidth(gric_image image);
/** @return rows at magnification 1 */
GRI_EXPORT gr_uint32 gric_getHeight(gric_image image);
/** @return the number of bands, an alpha band counted */
GRI_EXPORT gr_uint16 gric_getNumBands(gric_image image);
/** @return GRIC_COLORSPACE_*, with its alpha flags */
GRI_EXPORT gr_int32 gric_getColorSpace(gric_image image);
/** @return GRIC_DATATYPE_*, the type of each sample that gric_decode writes */
GRI_EXPORT gr_int32 gric_getDataType(gric_image image);
/** @return the least magnification that can be decoded; 0.125 is an eighth of the full size */
GRI_EXPORT double gric_getMinMagnification(gric_image image);
/** @return the greatest magnification that can be decoded */
GRI_EXPORT double gric_getMaxMagnification(gric_image image);

/*
 * The geographic position, in the units of the image's coordinate system. An image without one
 * answers with origin (0, height - 1), resolution (1, -1) and rotation (0, 0).
 */

/** @return x of the upper left pixel */
GRI_EXPORT double gric_getGeoXOrigin(gric_image image);
/** @return y of the upper left pixel */
GRI_EXPORT double gric_getGeoYOrigin(gric_image image);
/** @return x resolution, units for each column */
GRI_EXPORT double gric_getGeoXResolution(gric_image image);
/** @return y resolution, units for each row; negative where y falls from row to row */
GRI_EXPORT double gric_getGeoYResolution(gric_image image);
/** @return x rotation, the second line of a world file */
GRI_EXPORT double gric_getGeoXRotation(gric_image image);
/** @return y rotation, the third line of a world file */
GRI_EXPORT double gric_getGeoYRotation(gric_image image);

/** @return the number of metadata records, for gric_getMetadataRecord */
GRI_EXPORT gr_uint32 gric_getNumMetadataRecords(gric_image image);

/**
 * The size of the image at a magnification.
 *
 * @param width, height  receive columns and rows; left alone on failure
 * @return 0; 52001 when `image`, `width` or `height` is null; 3 when the magnification is outside
 *         of what gric_getMinMagnification and gric_getMaxMagnification give
 */
GRI_EXPORT GR_STATUS gric_getDimsAtMag(gric_image image, double magnification, gr_uint32* width,
                                       gr_uint32* height);

/* --- Locked images ----------------------------------------------------------------------- */

/** @return 1 when a Tesra image needs a password; 0 otherwise, for other images and for null */
GRI_EXPORT gr_int32 gric_isTesraLocked(gric_image image);

/**
 * Gives the password of a locked Tesra image, which replaces an earlier one. Call it after the
 * open and before a decode; a wrong password is noticed only by the decode, which then answers 2011
 * (for the older generation 4005 without a password, 4006 for a wrong one and 4009 for one that is
 * too long). What isn't locked decodes without one.
 *
 * @param password  copied
 * @return 0; 52001 for a null argument; 8 for memory; 50002 when the image is no Tesra image
 */
GRI_EXPORT GR_STATUS gric_setTesraPassword(gric_image image, const char* password);

/* --- Decoding ---------------------------------------------------------------------------- */

/**
 * Decodes a rectangle of the image into buffers of the caller.
 *
 * The edges of the rectangle are rounded to whole pixels, as round(v) = floor(v + 0.5): it has
 * round(xUpperLeft + width) - round(xUpperLeft) columns, and rows likewise, so that neighbours meet
 * without a gap. The rounded rectangle must lie inside the image at that magnification.
 *
 * @param xUpperLeft, yUpperLeft  corner of the rectangle, in pixels at `magnification`
 * @param width, height           its size, in pixels at `magnification`
 * @param magnification           1.0 is full size, 0.5 half of it; see gric_getMinMagnification
 * @param bandData  one pointer per band (gric_getNumBands), each to rows x columns samples of
 *                  gric_getDataType, row after row without padding; the caller's before and after.
 *                  Bands are not interleaved
 * @return 0; 52001 when `image`, `bandData` or one of its pointers is null; 50012 when the
 *         rectangle rounds to no column, reaches past column or row 2^31 - 1, or is so wide that
 *         the samples of a strip are a multiple of 2^32; 50013 when it is empty or wholly outside
 *         of the image, 50014 when it reaches out of it, 50015 when the magnification is out of
 *         range; 8 for memory; else the status of the stage that failed, and then the buffers may
 *         be partly written
 *
 * Works in strips: the memory used doesn't grow with the height of the rectangle. Runs on the
 * calling thread. One image serves one thread at a time.
 */
GRI_EXPORT GR_STATUS gric_decode(gric_image image, double xUpperLeft, double yUpperLeft,
                                 double width, double height, double magnification,
                                 void** bandData);

/* --- Metadata ---------------------------------------------------------------------------- */

/**
 * One record of the image's metadata: a named array of values. A scalar has one dimension of
 * extent 1. What the pointers point to belongs to the image and lives as long as the handle.
 *
 * @param index     from 0 to gric_getNumMetadataRecords - 1
 * @param tag       receives the name, e.g. "IMAGE::INPUT_NAME"
 * @param dataType  receives GRIC_METADATA_DATATYPE_*
 * @param numDims   receives the number of dimensions
 * @param dims      receives their extents, `*numDims` numbers
 * @param data      receives the values, as many as the product of the extents, the last dimension
 *                  running fastest; never null, also where there is no value. For
 *                  GRIC_METADATA_DATATYPE_ASCII an array of `const char*`, one for each value,
 *                  also for a scalar
 * @return 0; 52001 for a null pointer; 50503 when there is no such record. On failure nothing is
 *         written
 */
GRI_EXPORT GR_STATUS gric_getMetadataRecord(gric_image image, gr_uint32 index, const char** tag,
                                            gr_int32* dataType, gr_uint32* numDims,
                                            const gr_uint32** dims, const void** data);

#ifdef __cplusplus
}
#endif

#endif /* GRI_RDK_CDLL_H */
