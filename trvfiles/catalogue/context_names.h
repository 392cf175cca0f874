#pragma once

/// @file
/// How the catalogue names the files of the contexts that it creates.
///
/// Threads: any.

#include <string>
#include <string_view>

namespace trv {

inline constexpr std::wstring_view contextSuffix = L".mctx";

/// What the name of every default context begins with; its machine position follows.
inline constexpr std::wstring_view defaultContextPrefix = L"[MACHINE_POSITION_";

/// A context in the making. File names are bare.
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
/// @param machine      the machine's file name; the last ".mac" in it does not count
/// @param axisFile     empty for the directory's own
/// @param contextFile  empty for "<machine>[<axis>].mctx"
ContextNames createdContextNames(const std::wstring& machine, const std::wstring& axisFile,
                                 const std::wstring& contextFile);

}  // namespace trv
