// Every small case and many larger ones of the functions that copy, append, check and format,
// against a model.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "bounded_family.h"
#include "differential.h"

namespace {

struct Case {
    std::size_t size;
    std::size_t sourceLength;
    std::size_t filling; // `size` when the destination has no terminator there
    std::size_t count;
};

std::ostream& operator<<(std::ostream& stream, const Case& it)
{
    return stream << "size " << it.size << ", source of " << it.sourceLength << ", destination of "
                  << it.filling << ", count " << it.count;
}

std::vector<Case> everySmallCase()
{
    std::vector<Case> cases;
    for (std::size_t size = 0; size <= 9; ++size) {
        for (std::size_t sourceLength = 0; sourceLength <= 11; ++sourceLength) {
            for (std::size_t filling = 0; filling <= size; ++filling) {
                for (std::size_t count = 0; count <= 12; ++count)
                    cases.push_back({size, sourceLength, filling, count});
                cases.push_back({size, sourceLength, filling, SIZE_MAX});
            }
        }
    }
    return cases;
}

std::vector<Case> manyLargerCases()
{
    // NOLINTNEXTLINE(cert-msc51-cpp): the same cases in every run
    std::mt19937 random(20261121);
    const auto upTo = [&random](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    std::vector<Case> cases;
    for (int i = 0; i < 5000; ++i) {
        const std::size_t size = upTo(600);
        const std::size_t count = upTo(9) == 0 ? SIZE_MAX - upTo(600) : upTo(600);
        cases.push_back({size, upTo(600), upTo(size), count});
    }
    return cases;
}

template <class Family>
class BoundedStrings : public testing::Test {
protected:
    using Char = typename Family::Char;
    using Text = std::vector<Char>;

    /// Neighbours differ, and no byte alone tells a character of several bytes from a terminator.
    static Text source(const Case& it)
    {
        Text text;
        for (std::size_t i = 0; i < it.sourceLength; ++i)
            text.push_back(static_cast<Char>((1 + i % 15) << (8 * sizeof(Char) - 4)));
        text.push_back(Char());
        return text;
    }

    static Text destination(const Case& it)
    {
        Text text(it.size, Char('d'));
        if (it.filling < it.size)
            text[it.filling] = Char();
        return text;
    }

    /// Returns the operations that do not do as the model does.
    std::string disagreement(const Case& it)
    {
        const Text src = source(it);
        const Text dst = destination(it);
        std::string names;
        names += m_functions.copy(dst, src, it.size) ? "" : "copy ";
        names += m_functions.append(dst, src, it.size) ? "" : "append ";
        names += m_functions.copyPadded(dst, src, it.count, it.size) ? "" : "copyPadded ";
        names += m_functions.appendCounted(dst, src, it.count, it.size) ? "" : "appendCounted ";
        names += m_functions.verify(dst, it.size) ? "" : "verify ";
        names += m_functions.format(dst, src, it.size) ? "" : "format ";
        return names;
    }

    void checkAll(const std::vector<Case>& cases)
    {
        for (const Case& it : cases)
            ASSERT_EQ(disagreement(it), "") << it;
    }

private:
    Differential<Family> m_functions;
};

using Families = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(BoundedStrings, Families, );

TYPED_TEST(BoundedStrings, DoAsTheModelDoesInEverySmallCase)
{
    this->checkAll(everySmallCase());
}

TYPED_TEST(BoundedStrings, DoAsTheModelDoesInManyLargerCases)
{
    this->checkAll(manyLargerCases());
}

} // namespace
