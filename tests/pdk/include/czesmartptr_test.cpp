#include "pdk/include/czesmartptr.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "pdk/include/czerefcount.h"

using koze_pdk_4_4::CZeNullAllocator;
using koze_pdk_4_4::CZeRefCount;
using koze_pdk_4_4::CZeSmartPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Records the operations on the objects, in order.
class Journal {
public:
    void note(const std::string& event) { m_events.push_back(event); }
    std::vector<std::string> take() { return std::exchange(m_events, {}); }

    /// Runs in the destructor of an object.
    std::function<void()> atEnd = [] {};

private:
    std::vector<std::string> m_events;
};

class Noted : public virtual CZeRefCount {
public:
    Noted(Journal& journal, std::string name) : m_journal(journal), m_name(std::move(name)) {}

    ~Noted() override
    {
        m_journal.note(m_name + " ends with " + std::to_string(CZeRefCount::getCount()));
        m_journal.atEnd();
    }

    std::int32_t increment() override
    {
        m_journal.note(m_name + "+");
        return CZeRefCount::increment();
    }

    std::int32_t decrement() override
    {
        m_journal.note(m_name + "-");
        return CZeRefCount::decrement();
    }

private:
    Journal& m_journal;
    std::string m_name;
};

using Handle = CZeSmartPtr<Noted, CZeNullAllocator<Noted>>;

static_assert(sizeof(Handle) == sizeof(void*), "a handle is one pointer");
static_assert(!std::is_convertible_v<Handle, bool>, "a handle is no number");

class SmartPtr : public testing::Test {
protected:
    Noted* make(const std::string& name) { return new Noted(journal, name); }

    Journal journal;
};

TEST_F(SmartPtr, IsEmptyAfterConstruction)
{
    const Handle handle;
    EXPECT_EQ(handle.get(), nullptr);
    EXPECT_FALSE(handle);
}

TEST_F(SmartPtr, MadeFromAPlainPointerCountsOneReference)
{
    Noted* object = make("a");
    const Handle handle = object;
    EXPECT_THAT(journal.take(), ElementsAre("a+"));
    EXPECT_EQ(handle.get(), object);
    EXPECT_EQ(handle->getCount(), 1);
    EXPECT_TRUE(handle);
}

TEST_F(SmartPtr, MadeFromNullIsEmpty)
{
    const Handle handle = nullptr;
    EXPECT_FALSE(handle);
}

TEST_F(SmartPtr, ACopySharesTheObjectAndCountsIt)
{
    const Handle first = make("a");
    journal.take();
    const Handle second = first; // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_THAT(journal.take(), ElementsAre("a+"));
    EXPECT_EQ(second.get(), first.get());
}

TEST_F(SmartPtr, ACopyOfAnEmptyHandleIsEmpty)
{
    const Handle first;
    const Handle second = first; // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_FALSE(second);
}

TEST_F(SmartPtr, LeavingItsScopeReleases)
{
    const Handle first = make("a");
    {
        const Handle second = first; // NOLINT(performance-unnecessary-copy-initialization)
        journal.take();
    }
    EXPECT_THAT(journal.take(), ElementsAre("a-"));
}

TEST_F(SmartPtr, LeavingItsScopeEmptyDoesNothing)
{
    {
        const Handle handle;
    }
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_F(SmartPtr, ReleaseReturnsTheCountThatIsLeft)
{
    const Handle first = make("a");
    const Handle second = first; // NOLINT(performance-unnecessary-copy-initialization)
    Handle third = first;
    EXPECT_EQ(third.release(), 2);
    EXPECT_FALSE(third);
}

TEST_F(SmartPtr, ReleasingAnEmptyHandleReturnsMinusOne)
{
    Handle handle;
    EXPECT_EQ(handle.release(), -1);
}

TEST_F(SmartPtr, TheLastReleaseDestroysOnceWithTheCountBackAtOne)
{
    Handle handle = make("a");
    journal.take();
    EXPECT_EQ(handle.release(), 0);
    EXPECT_THAT(journal.take(), ElementsAre("a-", "a+", "a ends with 1"));
    EXPECT_FALSE(handle);
    EXPECT_EQ(handle.release(), -1);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_F(SmartPtr, AReleaseThatFallsBelowZeroDestroysNothing)
{
    Noted* object = make("a");
    Handle handle = object;
    object->decrement();
    journal.take();
    EXPECT_EQ(handle.release(), -1);
    EXPECT_THAT(journal.take(), ElementsAre("a-"));
    EXPECT_FALSE(handle);
    delete object;
}

TEST_F(SmartPtr, AHandleMadeDuringTheDestructionDestroysNothing)
{
    Handle handle = make("a");
    journal.atEnd = [object = handle.get()] { const Handle late = object; };
    journal.take();
    handle.release();
    EXPECT_THAT(journal.take(), ElementsAre("a-", "a+", "a ends with 1", "a+", "a-"));
}

TEST_F(SmartPtr, KeepsItsPointerUntilTheObjectIsGone)
{
    Handle handle = make("a");
    Noted* object = handle.get();
    Noted* seen = nullptr;
    journal.atEnd = [&] { seen = handle.get(); };
    handle.release();
    EXPECT_EQ(seen, object);
}

TEST_F(SmartPtr, AssignmentReleasesTheOldObjectBeforeItCountsTheNew)
{
    Handle handle = make("old");
    const Handle other = make("new");
    journal.take();
    handle = other;
    EXPECT_THAT(journal.take(), ElementsAre("old-", "old+", "old ends with 1", "new+"));
    EXPECT_EQ(handle.get(), other.get());
}

TEST_F(SmartPtr, AssignmentToAnEmptyHandleOnlyCounts)
{
    Handle handle;
    const Handle other = make("new");
    journal.take();
    handle = other;
    EXPECT_THAT(journal.take(), ElementsAre("new+"));
    EXPECT_EQ(handle.get(), other.get());
}

TEST_F(SmartPtr, AssignmentOfAnEmptyHandleReleasesAndEmpties)
{
    const Handle first = make("a");
    Handle second = first;
    journal.take();
    second = Handle();
    EXPECT_THAT(journal.take(), ElementsAre("a-"));
    EXPECT_FALSE(second);
}

TEST_F(SmartPtr, AssignmentToItselfDoesNothing)
{
    Handle handle = make("a");
    const Handle& same = handle;
    journal.take();
    handle = same;
    EXPECT_THAT(journal.take(), IsEmpty());
    EXPECT_TRUE(handle);
}

TEST_F(SmartPtr, AssignmentBetweenTwoHandlesOfOneObjectReleasesAndCounts)
{
    Handle first = make("a");
    const Handle second = first; // NOLINT(performance-unnecessary-copy-initialization)
    journal.take();
    first = second;
    EXPECT_THAT(journal.take(), ElementsAre("a-", "a+"));
    EXPECT_EQ(first->getCount(), 2);
}

TEST_F(SmartPtr, AssignmentReturnsTheHandleAssignedTo)
{
    Handle first;
    const Handle second = make("a");
    EXPECT_EQ(&(first = second), &first);
}

} // namespace
