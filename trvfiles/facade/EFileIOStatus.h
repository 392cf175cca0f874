#pragma once

/// @file
/// The path by which hosts include the statuses of reads and writes.

#include <trvfiles/support/EFileIOStatus.h>  // IWYU pragma: export
