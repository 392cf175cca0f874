#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/file_system.h>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

bool matches_one(char pattern, char c, bool case_sensitive) {
    if (pattern == '?' || pattern == c) return true;
    return !case_sensitive && fold_case(pattern) == fold_case(c);
}

}  // namespace

// Only the last "*" met is ever given more characters: what an earlier one could take instead, the
// last one can take as well. So a match costs at most the product of both lengths.
int wildcard_match(const char* pattern, const char* name, bool case_sensitive) {
    if (pattern == nullptr || name == nullptr) return 1;
    const char* behind_star = nullptr;
    const char* star_took_up_to = nullptr;
    while (*name != '\0') {
        if (*pattern == '*') {
            behind_star = ++pattern;
            star_took_up_to = name;
        } else if (*pattern != '\0' && matches_one(*pattern, *name, case_sensitive)) {
            ++pattern;
            ++name;
        } else if (behind_star != nullptr) {
            pattern = behind_star;
            name = ++star_took_up_to;
        } else {
            return 0;
        }
    }
    while (*pattern == '*')
        ++pattern;
    return *pattern == '\0' ? 1 : 0;
}

}  // namespace trv
