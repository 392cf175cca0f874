#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/support/platform.h>

#include <QDomImplementation>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>

namespace {

// Qt's recursion over 5,000 levels needs some 450 KB.
constexpr int levels = 5000;
constexpr std::size_t smallStack = std::size_t{64} << 10;

// A document of nested elements, each with some siblings.
QDomDocument nested() {
    QDomDocument document;
    document.setContent(QByteArray("<a/>"));
    QDomElement parent = document.documentElement();
    for (int level = 1; level < levels; ++level) {
        QDomElement element = document.createElement(QStringLiteral("a"));
        parent.appendChild(element);
        parent.appendChild(document.createElement(QStringLiteral("b")));
        parent.appendChild(document.createElement(QStringLiteral("c")));
        parent = element;
    }
    return document;
}

int depthOf(const QDomDocument& document) {
    int depth = 0;
    for (QDomNode node = document.documentElement(); !node.isNull(); node = node.firstChild())
        ++depth;
    return depth;
}

TEST(DomTree, FreesADeepDocumentOnLittleStack) {
    auto tree = std::make_unique<trv::DomTree>();
    tree->isDeep = true;
    tree->document = nested();
    ASSERT_EQ(depthOf(tree->document), levels);
    trv::platform::call_on_stack(smallStack, [&] { tree.reset(); });
}

TEST(DomTree, FreesAnEmptyDocument) {
    trv::DomTree tree;
    tree.isDeep = true;
    EXPECT_TRUE(tree.document.isNull());
}

TEST(InvalidDataPolicy, IsSetWhateverItWas) {
    for (const auto policy :
         {QDomImplementation::AcceptInvalidChars, QDomImplementation::DropInvalidChars,
          QDomImplementation::ReturnNullNode}) {
        QDomImplementation::setInvalidDataPolicy(policy);
        trv::setInvalidDataPolicy();
        EXPECT_EQ(QDomImplementation::invalidDataPolicy(), QDomImplementation::ReturnNullNode);
    }
}

}  // namespace
