// Objects cross binaries, so their sizes and the order of their fields never change.
#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "tests/support/built_in_modules.h"

using koze_pdk_4_4::CZeErrorManager;
using koze_pdk_4_4::CZeRefCount;
using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogFunction;
using koze_pdk_4_4::CZeTraceLogHandle;

namespace {

constexpr std::size_t pointer = sizeof(void*);

/// The field of an object at a byte offset.
template <class Field>
Field fieldAt(const void* object, std::size_t offset)
{
    Field field;
    std::memcpy(&field, static_cast<const unsigned char*>(object) + offset, sizeof field);
    return field;
}

template <class Field>
std::size_t offsetIn(const void* object, const Field& field)
{
    return static_cast<std::size_t>(reinterpret_cast<const unsigned char*>(&field) -
                                    static_cast<const unsigned char*>(object));
}

TEST(Fields, OfAHandleAreOnePointer)
{
    static_assert(sizeof(CZeTraceLogHandle) == pointer);
    const CZeTraceLogHandle handle(new CZeTraceLog);
    EXPECT_EQ(fieldAt<CZeTraceLog*>(&handle, 0), handle.get());
}

TEST(Fields, OfAReferenceCountAreTheCount)
{
    static_assert(sizeof(CZeRefCount) == 2 * pointer);
    CZeRefCount count;
    count.increment();
    EXPECT_EQ(fieldAt<std::int32_t>(&count, pointer), 1);
}

template <class Module>
using ModuleFields = testing::Test;
TYPED_TEST_SUITE(ModuleFields, BuiltInModulesAnd<CZeTraceable>);

TYPED_TEST(ModuleFields, AreTheTraceLogHandleOnly)
{
    static_assert(sizeof(TypeParam) == 2 * pointer);
    const CZeTraceLogHandle log(new CZeTraceLog);
    TypeParam module;
    module.registerTraceLog(log);
    EXPECT_EQ(fieldAt<CZeTraceLog*>(&module, pointer), log.get());
}

TEST(Fields, OfTheManagerAreTheModuleListAndTheVirtualBase)
{
    using List = std::vector<CDmpDeviceClaimBase*>;
    static_assert(sizeof(CDmpClaimManager) == 3 * pointer + sizeof(List));
    CDmpClaimManager manager;
    CDmpDeviceClaimBase* native = nullptr;
    manager.getClaimModule(native, "/dev/sda");
    EXPECT_EQ(*fieldAt<CDmpDeviceClaimBase**>(&manager, pointer), native);
    EXPECT_EQ(offsetIn(&manager, static_cast<CZeTraceable&>(manager)), pointer + sizeof(List));
}

TEST(Fields, OfATracerAreHandleNameLineAndFile)
{
    static_assert(sizeof(CZeTraceLogFunction) == 5 * pointer);
    constexpr char name[] = "claim";
    constexpr char file[] = "providers/module.cpp";
    const CZeTraceLogHandle log(new CZeTraceLog);
    const CZeTraceLogFunction tracer(log, name, 42, file);
    EXPECT_EQ(fieldAt<CZeTraceLog*>(&tracer, pointer), log.get());
    EXPECT_EQ(fieldAt<const char*>(&tracer, 2 * pointer), name);
    EXPECT_EQ(fieldAt<std::int32_t>(&tracer, 3 * pointer), 42);
    EXPECT_STREQ(fieldAt<const char*>(&tracer, 4 * pointer), "module.cpp");
}

/// A trace log that tells where its fields are.
struct OpenTraceLog : CZeTraceLog {
    using CZeTraceLog::m_flags;
    using CZeTraceLog::m_object;
    using CZeTraceLog::m_setting;
    using CZeTraceLog::m_texts;
};

TEST(Fields, OfATraceLogAreTextsFlagsSettingAndHandle)
{
    const OpenTraceLog log;
    const std::size_t flags = pointer + 5 * sizeof(ACE_String_Base<char>);
    EXPECT_EQ(offsetIn(&log, log.m_texts), pointer);
    EXPECT_EQ(offsetIn(&log, log.m_flags), flags);
    EXPECT_EQ(offsetIn(&log, log.m_setting), flags + 4);
    EXPECT_EQ(offsetIn(&log, log.m_object), flags + 8);
    EXPECT_EQ(sizeof log, flags + 8 + pointer + sizeof(CZeRefCount));
    EXPECT_EQ(fieldAt<std::int32_t>(&log, flags + 4), 12345);
}

/// An error manager that tells where its fields are.
struct OpenErrorManager : CZeErrorManager {
    using CZeErrorManager::m_buffer;
    using CZeErrorManager::m_messages;
};

TEST(Fields, OfAnErrorManagerAreMessagesAndBuffer)
{
    const OpenErrorManager manager;
    EXPECT_EQ(offsetIn(&manager, manager.m_messages), pointer);
    EXPECT_EQ(offsetIn(&manager, manager.m_buffer), pointer + sizeof manager.m_messages);
    EXPECT_EQ(sizeof manager, 2 * pointer + sizeof manager.m_messages + sizeof(CZeRefCount));
}

} // namespace
