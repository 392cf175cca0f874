#pragma once

/// @file
/// The start-up of the environment: which configuration files a process reads, and in what order.
///
/// 1. config\environ.cfg under the installation root: the home file.
/// 2. WINDOWS = 1 and PC = 1, in the home file's section `var`.
/// 3. The last directory of the list "?ENV" whose environ.cfg is another file: the second file.
/// 4. "?ENV" again, which the second file may have changed: the environ.cfg of every directory, in
///    reverse order, from the last directory with another file than these two. If there is no such
///    directory, no further file is loaded.
///
/// Threads: one at a time; the first lookup has to be made before threads share the runtime.

namespace trv {

/// Fills the environment store, once in a process. A call does nothing while another one runs, and
/// after the store has been filled.
///
/// Failures are reported through the fatal channel. If a handler returns and the home file could
/// not be loaded, the store stays nullptr, and the next call tries again.
void load_environment();

}  // namespace trv
