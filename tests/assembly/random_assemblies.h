#pragma once

#include <tests/assembly/sample_components.h>

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace trv::testing {

/// Trees with every kind of text and number that a file can hold. They are the same in every run.
class RandomAssemblies {
public:
    explicit RandomAssemblies(unsigned seed) : random_(seed) {}

    CTrvAssemblyData next() { return assemblyOf(component(0), {number(), number(), number()}); }

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    double number() {
        static constexpr double special[] = {0.0,
                                             -0.0,
                                             1.0,
                                             -1.0,
                                             0.1,
                                             1e15,
                                             1e20,
                                             1e-5,
                                             1.7976931348623157e308,
                                             2.2250738585072014e-308,
                                             4.9406564584124654e-324,
                                             123456789.123456789};
        if (below(3) == 0) return special[below(std::size(special))];
        return std::uniform_real_distribution<double>(-1e4, 1e4)(random_);
    }

    std::string text() {
        static const char* const pieces[] = {
            "a",  "Z9",  " ",    "<",      ">",      "&",      "\"",         "'",
            "]]", "]]>", "\t",   "\n",     "\r",     "\x01",   "\x1f",       "\x7f",
            "é",  "€",   "漢字", "\u00a0", "\u2028", "\ufeff", "\U0001F600", "\U0010FFFF",
            "&#", "-->", "?>",   "&amp;",  "\ue000", "\ufffd", "\xc3",       "\\n"};
        std::string result;
        for (std::size_t left = below(6); left > 0; --left) {
            result += pieces[below(std::size(pieces))];
        }
        return result;
    }

    CTrvAssemblyComponentData component(int depth) {
        CTrvAssemblyComponentData result;
        result.setName(text());
        result.setComment(text());
        result.setEnabled(below(4) != 0);
        const Vector3 vectors[] = {vector(), vector(), vector(), vector()};
        result.setTranslation(vectors[0].data());
        result.setOrientation(vectors[1].data(), vectors[2].data(), vectors[3].data());
        if (depth == 5 || below(3) == 0) {
            result.setGeometryFileName(text() + ".stl");
            return result;
        }
        std::vector<CTrvAssemblyComponentData> children;
        for (std::size_t left = 1 + below(4); left > 0; --left) {
            children.push_back(component(depth + 1));
        }
        result.setComponents(std::move(children));
        return result;
    }

    Vector3 vector() { return {number(), number(), number()}; }

    std::mt19937 random_;
};

}  // namespace trv::testing
