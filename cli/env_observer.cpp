#include <cli/env_observer.h>

namespace trv::cli {

// No event arrives while the objects derived from this one are being built or destroyed: the
// runtime does not run then.
ChainedObserver::ChainedObserver() : earlier_(*set_runtime_observer(this)) {}

ChainedObserver::~ChainedObserver() {
    set_runtime_observer(&earlier_);
}

void ChainedObserver::looked_up(const lookup_event& event) {
    earlier_.looked_up(event);
}

void ChainedObserver::reference_replaced(const reference_event& event) {
    earlier_.reference_replaced(event);
}

void ChainedObserver::search_began(const search_event& event) {
    earlier_.search_began(event);
}

void ChainedObserver::candidate_tried(const candidate_event& event) {
    earlier_.candidate_tried(event);
}

void ChainedObserver::fault_found(const fault_event& event) {
    earlier_.fault_found(event);
}

}  // namespace trv::cli
