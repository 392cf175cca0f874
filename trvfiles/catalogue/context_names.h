#pragma once

/// @file
/// The names of the files that the catalogue creates.
///
/// Threads: any.

#include <string>
#include <string_view>

namespace trv {

inline constexpr std::wstring_view contextSuffix = L".mctx";

/// The beginning of the name of every default context; its machine position follows.
inline constexpr std::wstring_view defaultContextPrefix = L"[MACHINE_POSITION_";

/// The names of a context that is to be created. File names are bare.
struct ContextNames {
    /// The name in the record.
    std::wstring context;
    std::wstring contextFile;
    /// The axis file that is copied, and the copy's name.
    std::wstring axisFile;
    std::wstring referenceFile;
};

/// The default context of a machine position.
ContextNames defaultContextNames(int position);

/// A context for a machine.
///
/// @param machine      the machine's file name; the last ".mac" in it is removed
/// @param axisFile     empty for the directory's own
/// @param contextFile  empty for "<machine>[<axis>].mctx"
ContextNames createdContextNames(const std::wstring& machine, const std::wstring& axisFile,
                                 const std::wstring& contextFile);

}  // namespace trv
