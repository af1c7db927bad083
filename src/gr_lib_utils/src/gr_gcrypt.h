/// @file
/// Brings libgcrypt up, for the files that use it.
#pragma once

/// To be called in front of every use of libgcrypt. A host may use it as well: what it has set up
/// stays as it is.
void gr_initGcrypt();
