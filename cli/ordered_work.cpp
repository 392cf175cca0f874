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
        for (std::size_t item = 0; item < work_.count; ++item) {
            waitFor(item);
            work_.take(item);
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
            const std::lock_guard<std::mutex> lock(mutex_);
            if (thrown != nullptr && thrown_ == nullptr) thrown_ = thrown;
            isDone_[item] = true;
            ++done_;
            changed_.notify_one();
            if (thrown != nullptr) return;
        }
    }

    void waitFor(std::size_t item) {
        constexpr std::chrono::milliseconds interval{100};
        for (;;) {
            std::size_t done = 0;
            bool isReady = false;
            {
                std::unique_lock<std::mutex> lock(mutex_);
                const auto hasNews = [&] { return isDone_[item] || thrown_ != nullptr; };
                isReady = changed_.wait_for(lock, interval, hasNews);
                if (thrown_ != nullptr) std::rethrow_exception(thrown_);
                done = done_;
            }
            work_.wait(done);
            if (isReady) return;
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
