#pragma once

/// @file
/// Observers of the runtime that a command adds to the current one.

#include <trvfiles/environment/runtime_observer.h>

namespace trv::cli {

/// Observes the runtime while it lives, and passes each event on to the observer before it. So with
/// TRV_TRVFILES_VERBOSE the lines of the default observer are still written. Observers end in the
/// reverse order in which they began.
class ChainedObserver : public runtime_observer {
public:
    ChainedObserver(const ChainedObserver&) = delete;
    ChainedObserver& operator=(const ChainedObserver&) = delete;
    virtual ~ChainedObserver();

    void looked_up(const lookup_event& event) override;
    void reference_replaced(const reference_event& event) override;
    void search_began(const search_event& event) override;
    void candidate_tried(const candidate_event& event) override;
    void fault_found(const fault_event& event) override;

protected:
    ChainedObserver();

private:
    runtime_observer& earlier_;
};

}  // namespace trv::cli
