// A host that reaches every library of its framework through the installed library.
#include <cstdio>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"

using namespace koze_pdk_4_4;

namespace {

/// A module of the host's own, which traces as the library's do.
class OwnModule : public CNativePathClaim {
public:
    std::vector<std::string> getDeviceClaimStrings() override
    {
        CZE_TRACE_FUNCTION();
        return {"/own/"};
    }
};

void run(CKoDMPSupport& support, const char* command)
{
    std::vector<std::string> lines;
    const int result = support.executeCommand(command, lines);
    std::printf("%s: %d\n", command, result);
    for (const std::string& line : lines)
        std::printf("  %s\n", line.c_str());
}

} // namespace

int main()
{
    CZeTraceLogHandle log = new CZeTraceLog;
    CDmpClaimManager manager;
    manager.registerClaimModule(new OwnModule);
    manager.registerTraceLog(log);
    std::printf("claim %u\n", manager.claim("/own/disk"));

    CKoDMPSupport support;
    support.registerTraceLog(log);
    run(support, "/bin/echo one  two");
    run(support, "/no/such/tool");
    std::printf("%s\n", support.isCommandAvailable("/bin/", "sh  ") ? "available" : "missing");
}
