#include "pdk/include/czeerrormanager.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <vector>

using koze_pdk_4_4::CZeErrorManager;
using koze_pdk_4_4::CZeMessage;
using koze_pdk_4_4::CZeMessageHandle;
using koze_pdk_4_4::CZeNullAllocator;
using koze_pdk_4_4::CZeRefCount;
using koze_pdk_4_4::CZeSmartPtr;
using testing::UnorderedElementsAre;

namespace {

std::vector<std::string> events;
void* watched = nullptr;

} // namespace

// The buffer's end is seen here.
void operator delete[](void* memory) noexcept
{
    if (memory != nullptr && memory == watched) {
        watched = nullptr;
        events.emplace_back("buffer");
    }
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    operator delete[](memory);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return std::malloc(size);
}

void* operator new[](std::size_t size)
{
    void* memory = operator new[](size, std::nothrow);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

namespace {

class Message : public CZeMessage {
public:
    explicit Message(std::string name) : m_name(std::move(name)) {}
    ~Message() override { events.push_back(m_name); }

private:
    std::string m_name;
};

class FilledErrorManager : public CZeErrorManager {
public:
    explicit FilledErrorManager(const CZeMessageHandle& shared)
    {
        m_messages[1] = new Message("first");
        m_messages[65537] = new Message("last");
        m_messages[7] = shared;
        m_buffer.reset(new char[16]);
        watched = m_buffer.get();
    }
};

TEST(ErrorManager, FreesItsBufferAndReleasesEveryMessage)
{
    const CZeMessageHandle shared = new Message("shared");
    CZeSmartPtr<CZeErrorManager, CZeNullAllocator<CZeErrorManager>> manager =
        new FilledErrorManager(shared);
    EXPECT_EQ(shared->getCount(), 2);
    manager.release();
    EXPECT_THAT(events, UnorderedElementsAre("buffer", "first", "last"));
    EXPECT_EQ(events.front(), "buffer");
    EXPECT_EQ(shared->getCount(), 1);
}

TEST(ErrorManager, HoldsAMapAndABufferAndNothingElse)
{
    struct Alike : virtual CZeRefCount {
        std::map<std::uint32_t, CZeMessageHandle> messages;
        char* buffer;
    };
    EXPECT_EQ(sizeof(CZeErrorManager), sizeof(Alike));
}

} // namespace
