/// @file
/// The lock of images of generation 2: one password opens all of the image.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

class Encryption;
class GRIMetadataDatabase;
class KeyProviderRegistry;

/// Whether an image is locked, as its records say.
bool tesraIsLocked(const GRIMetadataDatabase& database);

/// Gives a cipher the content key of a locked image, unless it has it already. Asks for the
/// password, and proves that the key is the right one. After a failure the cipher has no key.
/// @param database    the records of the image
/// @param encryption  of the image's reader, from one scene to the next
/// @param providers   who is asked
/// @return 0; 4011 when nobody gives keys of the image's type; 4005 without a password; 4009 for a
///         password or a content key that isn't 1 to 72 bytes long; 4006 for a wrong password;
///         50503 or 50507 when a record of the lock is missing or misshapen; 8 for memory
[[nodiscard]] GR_STATUS tesraUnlock(const GRIMetadataDatabase& database, Encryption& encryption,
                                    const KeyProviderRegistry& providers);
