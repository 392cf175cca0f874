#include <trvfiles/c/fatal_watch.h>
#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/support/file_fault.h>

#include <exception>
#include <new>
#include <string_view>

namespace trv::c {
namespace {

// Short enough for a std::string without an allocation, as is the reason of a fault that has none.
constexpr const char* outOfMemory = "out of memory";

std::int32_t runWatched(CallBody run, void* body, CFileFault* fault) {
    FatalWatch watch;
    std::int32_t status = TRVFILES_INTERNAL_ERROR;
    try {
        status = run(body, fault);
    } catch (const Refusal& refusal) {
        // A fatal report may be what made the body give up.
        if (!watch.hasReport()) throw;
        status = refusal.status;
    }
    if (!watch.hasReport()) return status;
    throw Refusal{TRVFILES_FATAL_REPORT, watch.message()};
}

// The status says the cause.
void setReason(CFileFault* fault, std::string_view reason) {
    set_fault(fault, CFileFault::Cause::none, reason);
}

std::int32_t runCaught(bool watches, CallBody run, void* body, CFileFault* fault) {
    try {
        return watches ? runWatched(run, body, fault) : run(body, fault);
    } catch (const Refusal& refusal) {
        setReason(fault, refusal.reason);
        return refusal.status;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& problem) {
        setReason(fault, problem.what());
    } catch (...) {
        setReason(fault, "an unknown exception");
    }
    return TRVFILES_INTERNAL_ERROR;
}

std::int32_t runWithReason(bool watches, CallBody run, void* body, CFileFault* fault) {
    clear_fault(fault);
    const std::int32_t status = runCaught(watches, run, body, fault);
    if (status != TRVFILES_SUCCESS && fault != nullptr && fault->reason.empty()) {
        fault->reason = trvfiles_status_text(status);
    }
    return status;
}

}  // namespace

std::int32_t runGuarded(trvfiles_fault fault, bool watches, CallBody run, void* body) noexcept {
    std::shared_ptr<FaultObject> object;
    try {
        if (fault != 0) object = objectOf<FaultObject>(fault);
        return runWithReason(watches, run, body, object == nullptr ? nullptr : &object->values);
    } catch (const Refusal& refusal) {
        return refusal.status;
    } catch (const std::bad_alloc&) {
        if (object != nullptr) setReason(&object->values, outOfMemory);
        return TRVFILES_OUT_OF_MEMORY;
    } catch (...) {
        return TRVFILES_INTERNAL_ERROR;
    }
}

}  // namespace trv::c
