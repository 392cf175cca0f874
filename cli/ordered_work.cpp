#include <cli/ordered_work.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace trv::cli {
namespace {

class Crew {
public:
    explicit Crew(const OrderedWork& work) : work_(work), isDone_(work.count, false) {}

    ~Crew() {
        next_ = work_.count;
        for (std::thread& thread : threads_)
            thread.join();
    }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    void start(unsigned threads) {
        try {
            for (unsigned i = 0; i < threads; ++i)
                threads_.emplace_back([this] { workOn(); });
        } catch (const std::system_error&) {
            // One thread is enough.
            if (threads_.empty()) throw;
        }
    }

    void takeAll() {
        for (std::size_t taken = 0; taken < work_.count;) {
            const std::size_t ready = waitForMore(taken);
            for (; taken < ready; ++taken)
                work_.take(taken);
        }
    }

private:
    void workOn() {
        for (std::size_t item = next_++; item < work_.count; item = next_++) {
            std::exception_ptr thrown;
            try {
                work_.work(item);
            } catch (...) {
                thrown = std::current_exception();
            }
            if (!finish(item, thrown)) return;
        }
    }

    // Takes the result of an item. The caller's thread is woken at the end only: waking it for each
    // item would cost more than a small file takes.
    //
    // @return whether the thread works on
    bool finish(std::size_t item, const std::exception_ptr& thrown) {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (thrown != nullptr && thrown_ == nullptr) thrown_ = thrown;
        isDone_[item] = true;
        ++done_;
        if (isOver()) changed_.notify_one();
        return thrown == nullptr;
    }

    // The mutex is held.
    bool isOver() const { return done_ == work_.count || thrown_ != nullptr; }

    // Waits until the first item that is not taken is done.
    //
    // @return the number of items from the first one that are done
    std::size_t waitForMore(std::size_t taken) {
        constexpr std::chrono::milliseconds interval{5};
        for (;;) {
            std::size_t ready = taken;
            std::size_t done = 0;
            {
                std::unique_lock<std::mutex> lock(mutex_);
                if (!isDone_[taken]) changed_.wait_for(lock, interval, [&] { return isOver(); });
                if (thrown_ != nullptr) std::rethrow_exception(thrown_);
                while (ready < work_.count && isDone_[ready])
                    ++ready;
                done = done_;
            }
            work_.wait(done);
            if (ready > taken) return ready;
        }
    }

    const OrderedWork& work_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;
    std::condition_variable changed_;
    // Guarded by the mutex.
    std::vector<bool> isDone_;
    std::size_t done_ = 0;
    std::exception_ptr thrown_;
    std::vector<std::thread> threads_;
};

}  // namespace

void runInOrder(const OrderedWork& work, unsigned threads) {
    if (threads <= 1 || work.count <= 1) {
        for (std::size_t item = 0; item < work.count; ++item) {
            work.work(item);
            work.wait(item + 1);
            work.take(item);
        }
        return;
    }
    Crew crew(work);
    crew.start(static_cast<unsigned>(std::min<std::size_t>(threads, work.count)));
    crew.takeAll();
}

}  // namespace trv::cli
