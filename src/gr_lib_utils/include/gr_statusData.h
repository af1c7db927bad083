/// @file
/// GRUtilStatusData, the details of the last failure.
#pragma once

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

struct GRUtilStatusFrame;

/// Carries values (a path, a reason) from the place that detects a fault to the message about it.
/// The place pushes one frame right before it returns its status:
///
///     GRUtilStatusData::pushBegin(TESRA_STATUS_CANNOT_OPEN);
///     GRUtilStatusData::pushFileSpec(path);
///     GRUtilStatusData::pushEnd();
///     return TESRA_STATUS_CANNOT_OPEN;
///
/// and getLastStatusString pops it. There is one frame, that of the last failure, for the whole
/// process, and no lock. As long as the host hasn't asked for filled-in messages
/// (initializeStatusStrings) the pushes do nothing.
class GRUtilStatusData {
 public:
  /// @return 0; 3070 when the data exists already, and stays; 8 for memory
  static GR_STATUS create();
  /// Frees the data with every frame in it. @return 0; 3070 when there is none
  static GR_STATUS destroy();
  static bool exists();

  /// Starts a frame. What is left of an earlier one is dropped. This and the other pushes throw
  /// GRUtilException(GR_STATUS_NO_MEMORY) when memory runs out.
  static void pushBegin(GR_STATUS status);
  static void pushUint32(gr_uint32 value);
  static void pushInt32(gr_int32 value);
  static void pushDouble(double value);
  static void pushString(const char* value);  ///< copied; null is kept as null
  static void pushFileSpec(const GRFileSpec& value);
  /// Makes the frame the one that waits to be read.
  static void pushEnd();

  /// Starts to read the frame that waits.
  /// @param status  receives the status that it was pushed for
  /// @return 0; 3070 when there is no frame or no data
  [[nodiscard]] static GR_STATUS popStatus(GR_STATUS& status);
  /// The next value of the frame, in the order of the pushes.
  /// @return 0; 3071 when the next value is of another type, and stays, or there is none; 3070
  ///         when no frame is being read
  [[nodiscard]] static GR_STATUS popUint32(gr_uint32& value);
  [[nodiscard]] static GR_STATUS popInt32(gr_int32& value);
  [[nodiscard]] static GR_STATUS popDouble(double& value);
  /// @param value  receives the string with its zero; nothing at all for a null one
  [[nodiscard]] static GR_STATUS popString(GRArray<char>& value);
  [[nodiscard]] static GR_STATUS popFileSpec(GRFileSpec& value);
  /// Drops the frame with what is left in it. @return 0; 3070 when no frame is being read
  [[nodiscard]] static GR_STATUS popEnd();
};
