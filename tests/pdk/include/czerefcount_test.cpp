#include "pdk/include/czerefcount.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "tests/support/slots.h"

using koze_pdk_4_4::CZeRefCount;

namespace {

TEST(RefCount, StartsAtZero)
{
    CZeRefCount object;
    EXPECT_EQ(object.getCount(), 0);
}

TEST(RefCount, IncrementAddsOneAndReturnsTheNewCount)
{
    CZeRefCount object;
    EXPECT_EQ(object.increment(), 1);
    EXPECT_EQ(object.increment(), 2);
    EXPECT_EQ(object.getCount(), 2);
}

TEST(RefCount, DecrementTakesOneAndReturnsTheNewCount)
{
    CZeRefCount object;
    object.increment();
    object.increment();
    EXPECT_EQ(object.decrement(), 1);
    EXPECT_EQ(object.getCount(), 1);
}

TEST(RefCount, DecrementDestroysNothing)
{
    CZeRefCount object;
    EXPECT_EQ(object.decrement(), -1);
    EXPECT_EQ(object.getCount(), -1);
}

TEST(RefCount, TheCountIsItsOnlyField)
{
    struct CountAlone {
        void* slots;
        std::int32_t count;
    };
    EXPECT_EQ(sizeof(CZeRefCount), sizeof(CountAlone));
}

class NotesItsEnd : public CZeRefCount {
public:
    explicit NotesItsEnd(bool& ended) : m_ended(ended) {}
    ~NotesItsEnd() override { m_ended = true; }

private:
    bool& m_ended;
};

TEST(RefCount, TheDestructorsHaveTheFirstSlots)
{
    bool ended = false;
    auto* object = new NotesItsEnd(ended);
    slot<void(CZeRefCount*)>(object, 1)(object);
    EXPECT_TRUE(ended);

    ended = false;
    alignas(NotesItsEnd) unsigned char storage[sizeof(NotesItsEnd)];
    object = new (storage) NotesItsEnd(ended);
    slot<void(CZeRefCount*)>(object, 0)(object);
    EXPECT_TRUE(ended);
}

TEST(RefCount, CountingFollowsInTheOrderOfItsSlots)
{
    using Operation = std::int32_t(CZeRefCount*);
    CZeRefCount object;
    slot<Operation>(&object, 2)(&object);
    EXPECT_EQ(slot<Operation>(&object, 2)(&object), 2);
    EXPECT_EQ(slot<Operation>(&object, 3)(&object), 1);
    EXPECT_EQ(slot<Operation>(&object, 4)(&object), 1);
}

static_assert(!std::is_copy_constructible_v<CZeRefCount> && !std::is_copy_assignable_v<CZeRefCount>,
              "a copy would share the count's value, but not the handles");

} // namespace
