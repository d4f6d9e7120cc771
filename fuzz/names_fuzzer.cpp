// Any bytes as a device path: every module and the manager answer as the naming rules say, with
// and without a trace log, and again when asked twice.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "pdk/include/czetracelog.h"
#include "providers/device/scsitool/dmp_built_in_modules.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "require.h"
#include "tests/support/names_model.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;

namespace {

CZeTraceLogHandle logThatWantsEverything()
{
    CZeTraceLogHandle log(new CZeTraceLog);
    log->setSink(
        new CZeTraceCallbackSink(CZeTraceCallbackSink::everything, [](int, std::string_view) {}));
    return log;
}

template <class Module>
void compare(const std::string& device)
{
    static CZeTraceLogHandle log = logThatWantsEverything();
    Module silent;
    Module traced;
    traced.registerTraceLog(log);
    for (const unsigned int partnum : {0U, 9U, 10U, 2147483647U, 2147483648U, 4294967295U}) {
        const Answer expected = model::rules<Module>(device, partnum);
        FUZZ_REQUIRE(answerOf(silent, device, partnum) == expected);
        FUZZ_REQUIRE(answerOf(traced, device, partnum) == expected);
    }
}

template <class... Modules>
void compareAll(const std::string& device, ModuleList<Modules...> /*modules*/)
{
    (compare<Modules>(device), ...);
}

void checkDefaults(const std::string& device)
{
    CDmpDeviceMapperClaim module;
    const std::string rest = module.removeDevPrefix(device);
    FUZZ_REQUIRE(rest == device || "/dev/" + rest == device);
    FUZZ_REQUIRE(rest != device || device.rfind("/dev/", 0) != 0);
    FUZZ_REQUIRE(module.isRawDevice(device) == model::holds(device, "/dev/"));
    FUZZ_REQUIRE(module.getActivePath(device, true) == device);
    FUZZ_REQUIRE(module.getActivePath(device, false) == device);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string device(data, data + size);
    compareAll(device, BuiltInModules());
    compare<CDmpClaimManager>(device);
    checkDefaults(device);
    return 0;
}
