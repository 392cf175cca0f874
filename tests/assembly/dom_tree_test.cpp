#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <cstddef>

namespace {

// A chain of elements, each with some siblings beside it on its own level.
void fill(QDomDocument& document, int levels) {
    QDomNode parent = document;
    for (int level = 0; level < levels; ++level) {
        QDomElement element = document.createElement(QStringLiteral("a"));
        parent.appendChild(element);
        element.appendChild(document.createElement(QStringLiteral("b")));
        element.appendChild(document.createElement(QStringLiteral("c")));
        parent = element;
    }
}

TEST(DomTree, FreesADeepDocumentOnLittleStack) {
    constexpr std::size_t stack = std::size_t{64} << 10;
    trv::platform::call_on_stack(stack, [] {
        trv::DomTree tree;
        tree.isDeep = true;
        fill(tree.document, 50000);
    });
}

TEST(DomTree, FreesAnEmptyDocument) {
    trv::DomTree tree;
    tree.isDeep = true;
    EXPECT_TRUE(tree.document.isNull());
}

}  // namespace
