// What a host writes with the headers. It defines what they leave implicit and instantiates their
// templates, so that a warning of these shows too; run, it shows that the binary works.
#include <string>
#include <utility>
#include <vector>

#include "pdk/include/czeerrormanager.h"
#include "pdk/include/czeexecpipe.h"
#include "pdk/include/czestringtool.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"
#include "vstring/Y_strings.h"

using namespace koze_pdk_4_4;

namespace {

class NvmeModule final : public CDmpDeviceClaimBase {
public:
    std::vector<std::string> getDeviceClaimStrings() override
    {
        CZE_TRACE_FUNCTION();
        return {"/dev/nvme"};
    }

    std::uint32_t claim(std::string device) override
    {
        CZE_TRACE_FUNCTION();
        CZE_TRACE(3, "asked for %s", device.c_str());
        return device.find("/dev/nvme") == 0 ? CLAIM_SECONDARY : CLAIM_NONE;
    }

    bool isPartition(std::string device) override { return device.find('p') != std::string::npos; }

    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override
    {
        return std::move(device) + "p" + std::to_string(partnum);
    }

    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override
    {
        partnum = 0;
        return device;
    }
};

/// Copies an object and assigns the copy back.
template <class Copied>
void copy(Copied& original)
{
    Copied copied(original);
    original = copied;
}

void copyAll(CZeTraceLogHandle& log)
{
    NvmeModule nvme;
    CNativePathClaim native;
    CDmpPowerPathClaim powerPath;
    CDmpDeviceMapperClaim mapper;
    CKoDMPSupport support;
    CZeExecPipePosix runner(1);
    EZeExecPipe problem("none");
    copy(nvme);
    copy(native);
    copy(powerPath);
    copy(mapper);
    copy(support);
    copy(runner);
    copy(problem);
    copy(log);
}

bool answers(CDmpClaimManager& manager)
{
    CDmpDeviceClaimBase* owner = nullptr;
    unsigned int partnum = 7;
    const bool isOwn = manager.getClaimModule(owner, "/dev/nvme0n1") == CLAIM_SECONDARY &&
                       owner->removeDevPrefix("/dev/nvme0n1") == "nvme0n1";
    return isOwn && manager.removePartitionSuffix("/dev/sdc12", partnum) == "/dev/sdc" &&
           partnum == 12;
}

} // namespace

int main()
{
    CZeTraceLogHandle log = new CZeTraceLog;
    CZeSmartPtr<CZeErrorManager, CZeNullAllocator<CZeErrorManager>> errors = new CZeErrorManager;
    CDmpClaimManager manager;
    manager.registerTraceLog(log);
    manager.registerClaimModule(new NvmeModule);
    copyAll(log);
#ifdef CZETRACESINK_H
    log->setSink(new CZeTraceStderrSink(2));
    log->setSink(new CZeTraceCallbackSink(2, [](int, std::string_view) {}));
#endif
    char name[8];
    const bool isCopied = Y_strlcpy(name, "sdc", sizeof name) == 3;
    return answers(manager) && isCopied && errors.get() != nullptr ? 0 : 1;
}
