#include <trvfiles/assembly/invalid_data_policy.h>

#include <QDomImplementation>
#include <gtest/gtest.h>

namespace {

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
