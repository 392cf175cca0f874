#pragma once

/// @file
/// The path by which hosts include the path search.

#include <trvfiles/environment/path_search.h>  // IWYU pragma: export
