#pragma once

/// @file
/// The path by which hosts include the catalogue of machine contexts.

#include <trvfiles/catalogue/CMachineContextUtils.h>  // IWYU pragma: export
