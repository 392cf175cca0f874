#pragma once

/// @file
/// Qt's process-wide policy for invalid XML data.

namespace trv {

/// Makes QDomImplementation::ReturnNullNode the policy, as reading and writing assembly files needs
/// it. Call it before each of them: a host may have set another policy since the last one.
///
/// Threads: any. It writes only when the policy is another one, so that calls at the same time do
/// not race. Setting the policy elsewhere at the same time is a race of the one who does.
void setInvalidDataPolicy();

}  // namespace trv
