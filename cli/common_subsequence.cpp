#include <cli/common_subsequence.h>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace trv::cli {
namespace {

using Keys = std::vector<std::uint64_t>;

// The part of both lists between their common beginning and their common end.
struct Middle {
    std::size_t begin = 0;
    std::size_t firstEnd;
    std::size_t secondEnd;
};

Middle middleOf(const Keys& first, const Keys& second) {
    Middle middle{0, first.size(), second.size()};
    const std::size_t shorter = std::min(first.size(), second.size());
    while (middle.begin < shorter && first[middle.begin] == second[middle.begin])
        ++middle.begin;
    while (middle.firstEnd > middle.begin && middle.secondEnd > middle.begin &&
           first[middle.firstEnd - 1] == second[middle.secondEnd - 1]) {
        --middle.firstEnd;
        --middle.secondEnd;
    }
    return middle;
}

// Indices in ascending order.
struct Indices {
    const std::size_t* begin = nullptr;
    const std::size_t* end = nullptr;

    std::size_t size() const { return static_cast<std::size_t>(end - begin); }
};

// The indices of a part of a list, ordered by key.
class IndexByKey {
public:
    IndexByKey(const Keys& keys, std::size_t begin, std::size_t end)
        : keys_(keys), indices_(end - begin) {
        std::iota(indices_.begin(), indices_.end(), begin);
        std::sort(indices_.begin(), indices_.end(), [&](std::size_t one, std::size_t other) {
            return keys[one] != keys[other] ? keys[one] < keys[other] : one < other;
        });
        advance();
    }

    bool atEnd() const { return equal_.begin == equal_.end; }
    std::uint64_t key() const { return keys_[*equal_.begin]; }

    /// The elements that have the current key; valid while the object lives.
    Indices equal() const { return equal_; }

    /// Goes to the next key.
    void advance() {
        const std::size_t* const end = indices_.data() + indices_.size();
        equal_.begin = equal_.end == nullptr ? indices_.data() : equal_.end;
        equal_.end = equal_.begin;
        while (equal_.end != end && keys_[*equal_.end] == keys_[*equal_.begin])
            ++equal_.end;
    }

private:
    const Keys& keys_;
    std::vector<std::size_t> indices_;
    Indices equal_;
};

// Calls `visit(one, other)` with the elements of both lists, for each key that both have.
template <class Visit>
void forEachCommonKey(IndexByKey& first, IndexByKey& second, Visit visit) {
    while (!first.atEnd() && !second.atEnd()) {
        const std::uint64_t key = first.key();
        const std::uint64_t other = second.key();
        if (key == other) visit(first.equal(), second.equal());
        if (key <= other) first.advance();
        if (other <= key) second.advance();
    }
}

// Hunt and Szymanski: the element at place L of `ends_` ends a common subsequence of length L + 1,
// and no other one of this length that was found ends before it in the second list.
class LongestSubsequence {
public:
    /// Adds a pair of equal elements. Pairs are added by ascending first index; those of the same
    /// first index by descending second index, so a subsequence has at most one of them.
    void add(IndexPair pair) {
        const auto end = std::lower_bound(ends_.begin(), ends_.end(), pair.second,
                                          [this](std::size_t link, std::size_t index) {
                                              return links_[link].pair.second < index;
                                          });
        if (end != ends_.end() && links_[*end].pair.second == pair.second) return;
        links_.push_back({pair, end == ends_.begin() ? none : *std::prev(end)});
        if (end == ends_.end()) {
            ends_.push_back(links_.size() - 1);
        } else {
            *end = links_.size() - 1;
        }
    }

    void appendTo(std::vector<IndexPair>& pairs) const {
        const auto oldSize = static_cast<std::ptrdiff_t>(pairs.size());
        std::size_t link = ends_.empty() ? none : ends_.back();
        for (; link != none; link = links_[link].previous)
            pairs.push_back(links_[link].pair);
        std::reverse(pairs.begin() + oldSize, pairs.end());
    }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    // A pair, and the one before it in the subsequence.
    struct Link {
        IndexPair pair;
        std::size_t previous;
    };

    std::vector<Link> links_;
    std::vector<std::size_t> ends_;
};

// Of `others`, the elements with which the element of this rank may be paired.
Indices candidatesFor(std::size_t rank, Indices others) {
    constexpr std::size_t maxCandidates = 8;
    if (others.size() <= maxCandidates) return others;
    const std::size_t before = std::min(rank, maxCandidates / 2);
    const std::size_t begin = std::min(rank - before, others.size() - maxCandidates);
    return {others.begin + begin, others.begin + begin + maxCandidates};
}

void appendMiddle(const Keys& first, const Keys& second, const Middle& middle,
                  std::vector<IndexPair>& pairs) {
    if (middle.firstEnd == middle.begin || middle.secondEnd == middle.begin) return;
    IndexByKey ones(first, middle.begin, middle.firstEnd);
    IndexByKey others(second, middle.begin, middle.secondEnd);
    std::vector<Indices> candidates(middle.firstEnd - middle.begin);
    forEachCommonKey(ones, others, [&](Indices one, Indices other) {
        for (std::size_t rank = 0; rank < one.size(); ++rank)
            candidates[one.begin[rank] - middle.begin] = candidatesFor(rank, other);
    });
    LongestSubsequence longest;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        for (const std::size_t* other = candidates[i].end; other != candidates[i].begin;)
            longest.add({middle.begin + i, *--other});
    }
    longest.appendTo(pairs);
}

}  // namespace

std::vector<IndexPair> commonSubsequence(const std::vector<std::uint64_t>& first,
                                         const std::vector<std::uint64_t>& second) {
    const Middle middle = middleOf(first, second);
    std::vector<IndexPair> pairs;
    for (std::size_t i = 0; i < middle.begin; ++i)
        pairs.push_back({i, i});
    appendMiddle(first, second, middle, pairs);
    for (std::size_t i = middle.firstEnd; i < first.size(); ++i)
        pairs.push_back({i, middle.secondEnd + (i - middle.firstEnd)});
    return pairs;
}

std::vector<IndexPair> equalElements(const std::vector<std::uint64_t>& first,
                                     const std::vector<std::uint64_t>& second) {
    IndexByKey ones(first, 0, first.size());
    IndexByKey others(second, 0, second.size());
    std::vector<IndexPair> pairs;
    forEachCommonKey(ones, others, [&](Indices one, Indices other) {
        for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i)
            pairs.push_back({one.begin[i], other.begin[i]});
    });
    return pairs;
}

}  // namespace trv::cli
