#include "dmp_nativepath_claim.h"

#include <new>

#include <unistd.h>

#include "dmp_trailing_digits.h"
#include "kovm/command_lines.h"
#include "kovm/pause.h"
#include "kovm/retry_policy.h"
#include "kovm/tables.h"
#include "pdk/include/czeexecpipe.h"
#include "pdk/include/czestringtool.h"
#include "vstring/Y_strings.h"

using koze_pdk_4_4::CZeExecPipePosix;
using koze_pdk_4_4::CZeStringTool;
using koze_pdk_4_4::EZeExecPipe;

namespace {

using AceString = ACE_String_Base<char>;

constexpr char deviceMarker[] = "/dev/sd";

constexpr unsigned long commandLimitSeconds = 600;

/// Appends all of `piece`. ACE's strings do not report that memory ran out: one that could not be
/// made or copied has a null pointer, and one that could not grow keeps its length.
void append(AceString& text, const AceString& piece)
{
    const bool isMade = text.c_str() != nullptr && piece.c_str() != nullptr;
    const std::size_t length = text.length() + piece.length();
    if (!isMade || (text += piece).length() != length)
        throw std::bad_alloc();
}

} // namespace

CNativePathClaim::~CNativePathClaim() = default;

CKoDMPSupport::~CKoDMPSupport() = default;

std::vector<std::string> CNativePathClaim::getDeviceClaimStrings()
{
    CZE_TRACE_FUNCTION();
    std::vector<std::string> strings;
    strings.emplace_back(deviceMarker);
    return strings;
}

std::uint32_t CNativePathClaim::claim(std::string device)
{
    CZE_TRACE_FUNCTION();
    for (const std::string& prefix : getDeviceClaimStrings()) {
        if (prefix.size() < device.size() && device.find(prefix) != std::string::npos)
            return CLAIM_DEFAULT;
    }
    return CLAIM_NONE;
}

bool CNativePathClaim::isPartition(std::string device)
{
    CZE_TRACE_FUNCTION();
    if (device.size() <= 2 || !isDigit(device.back()))
        return false;
    CZE_TRACE(3, "[%s] is a partition", device.c_str());
    return true;
}

std::string CNativePathClaim::appendPartitionSuffix(std::string device, unsigned int partnum)
{
    CZE_TRACE_FUNCTION();
    char partition[1024];
    partition[0] = '\0';
    Y_snprintf(partition, sizeof partition, "%s%d", device.c_str(), static_cast<int>(partnum));
    return partition;
}

std::string CNativePathClaim::removePartitionSuffix(std::string device, unsigned int& partnum)
{
    CZE_TRACE_FUNCTION();
    if (device.find(deviceMarker) != std::string::npos) {
        const std::size_t digits = trailingDigits(device);
        if (digits < device.size()) {
            partnum = numberAt(device, digits);
            device.resize(digits);
        }
    }
    CZE_TRACE(6, "devicename aftering removing partition suffix [%s].", device.c_str());
    return device;
}

std::string CNativePathClaim::getActivePath(std::string device, bool wait)
{
    CZE_TRACE_FUNCTION();
    const std::string name = removeDevPrefix(device);
    CKoDMPSupport support;
    support.registerTraceLog(m_traceLog);
    if (!support.isKoDMPInstalled())
        return device;
    std::string node;
    const int found = wait ? support.getKoVMDiskForOSDiskHandler_Waited(name, node)
                           : support.getKoVMDiskForOSDiskHandler_Refreshed(name, node);
    if (found != 0)
        return device;
    std::string activeName;
    if (support.getOSDiskHandleForKoVMDisk(node, activeName) != 0 || activeName.empty())
        return device;
    // The result is not used: derived modules that override this observe successful lookups here.
    isRawDevice(device);
    std::string activePath = "/dev/" + activeName;
    CZE_TRACE(6, "Got active path [%s].", activePath.c_str());
    return activePath;
}

bool CKoDMPSupport::isCommandAvailable(AceString directory, AceString command)
{
    CZE_TRACE_FUNCTION();
    append(directory, command);
    const std::string path = CZeStringTool::trim(CZeStringTool::tstr2str(directory), " \n\t\r");
    return access(path.c_str(), X_OK) == 0;
}

bool CKoDMPSupport::isKoDMPInstalled()
{
    CZE_TRACE_FUNCTION();
    return isCommandAvailable(kovm::toolDirectory, kovm::adminTool);
}

int CKoDMPSupport::executeCommand(const char* command, std::vector<std::string>& output)
{
    std::string text;
    return executeCommand(command, output, text);
}

int CKoDMPSupport::executeCommand(const char* command, std::vector<std::string>& output,
                                  std::string& text)
{
    CZE_TRACE_FUNCTION();
    CZeExecPipePosix runner(1);
    runner.registerTraceLog(m_traceLog);
    output.clear();
    CZE_TRACE(3, "ExecuteCommand command: %s", command);
    int result = 1;
    bool hasRun = false;
    try {
        result = runner.Exec(command, output, "", commandLimitSeconds, "", "", "");
        hasRun = true;
    } catch (const EZeExecPipe&) {
        CZE_TRACE(1, "ExecuteCommand - exception thrown in command execution.");
    }
    if (m_traceLog)
        text = kovm::joined(output);
    if (hasRun && result != 0)
        CZE_TRACE(2, "Warning - failed with message='%s' and error no '%d'.", text.c_str(), result);
    else if (hasRun && !output.empty())
        CZE_TRACE(6, "ExecuteCommand passed with output '%s'", text.c_str());
    return result;
}

CKoDMPSupport::Answer CKoDMPSupport::judge(const std::vector<std::string>& lines)
{
    switch (kovm::faultOf(lines)) {
    case kovm::Fault::none:
        return Answer::table;
    case kovm::Fault::noHeader:
        return Answer::noTable;
    case kovm::Fault::noOutput:
        CZE_TRACE(2, "Warning - no output of command.");
        return Answer::failed;
    default:
        CZE_TRACE(2, "Warning - no valid output of command.");
        return Answer::failed;
    }
}

int CKoDMPSupport::getKoVMDiskForOSDiskHandler(std::string osDiskName, std::string& dmpNodeName)
{
    CZE_TRACE_FUNCTION();
    dmpNodeName.clear();
    const std::string command = kovm::nodeQuery(osDiskName);
    std::vector<std::string> lines;
    std::string text;
    if (executeCommand(command.c_str(), lines, text) != 0) {
        CZE_TRACE(2,
                  "CKoDMPSupport::getKoVMDiskForOSDiskHandler : Command [%s] failed with error "
                  "[%s]",
                  command.c_str(), text.c_str());
        return 1;
    }
    const Answer answer = judge(lines);
    if (answer != Answer::table)
        return answer == Answer::failed ? 1 : 0;
    dmpNodeName = kovm::firstNode(lines).name;
    return 0;
}

int CKoDMPSupport::getOSDiskHandleForKoVMDisk(std::string dmpNodeName, std::string& osDiskName)
{
    CZE_TRACE_FUNCTION();
    osDiskName.clear();
    const std::string command = kovm::pathQuery(dmpNodeName);
    std::vector<std::string> lines;
    std::string text;
    if (executeCommand(command.c_str(), lines, text) != 0) {
        CZE_TRACE(2,
                  "CKoDMPSupport::getOSDiskHandleForKoVMDisk : Command [%s] failed with error [%s]",
                  command.c_str(), text.c_str());
        return 1;
    }
    const Answer answer = judge(lines);
    if (answer != Answer::table)
        return answer == Answer::failed ? 1 : 0;
    osDiskName = kovm::bestPath(lines).name;
    if (!osDiskName.empty())
        return 0;
    CZE_TRACE(2, "Unable to get enabled disk path for dmp node '%s'", dmpNodeName.c_str());
    return 1;
}

int CKoDMPSupport::removeDisksFromKoVM(std::string diskName)
{
    CZE_TRACE_FUNCTION();
    const std::string command = kovm::removal(diskName);
    std::vector<std::string> lines;
    if (executeCommand(command.c_str(), lines) != 0)
        CZE_TRACE(2, "Warning - removing disk from kovm db is failed.");
    return 0;
}

int CKoDMPSupport::kovmScanDisks(const std::vector<std::string>& diskNames)
{
    CZE_TRACE_FUNCTION();
    const std::string command = kovm::rescan(diskNames);
    std::vector<std::string> lines;
    std::string text;
    if (executeCommand(command.c_str(), lines, text) == 0)
        return 0;
    CZE_TRACE(2, "CKoDMPSupport::kovmScanDisks : Command [%s] failed with error [%s]",
              command.c_str(), text.c_str());
    return 1;
}

int CKoDMPSupport::getKoVMDiskForOSDiskHandler_Waited(std::string osDiskName,
                                                      std::string& dmpNodeName)
{
    CZE_TRACE_FUNCTION();
    const std::vector<std::string> disk{osDiskName};
    constexpr kovm::RetryPolicy policy = kovm::waitingPolicy;
    int result = 0;
    for (int attempt = 0; attempt < policy.attempts; ++attempt) {
        dmpNodeName.clear();
        result = getKoVMDiskForOSDiskHandler(osDiskName, dmpNodeName);
        if (result == 0)
            return 0;
        CZE_TRACE(6, "Obtaining dmp nodes failed. need to retry.");
        kovm::pauseFor(policy.pause);
        kovmScanDisks(disk);
    }
    CZE_TRACE(2, "Warning - obtaining dmp nodes failed even after multiple retries.");
    return result;
}

int CKoDMPSupport::getKoVMDiskForOSDiskHandler_Refreshed(std::string osDiskName,
                                                         std::string& dmpNodeName)
{
    CZE_TRACE_FUNCTION();
    constexpr kovm::RetryPolicy policy = kovm::refreshingPolicy;
    const std::vector<std::string> everyDisk;
    CZE_TRACE(6,
              "We will remove dmp node from kovm and rescan to regenerate dmp node for disk [%s].",
              osDiskName.c_str());
    dmpNodeName.clear();
    int result = getKoVMDiskForOSDiskHandler(osDiskName, dmpNodeName);
    if (result == 0) {
        CZE_TRACE(6, "Obtained dmp nodes is [%s].", dmpNodeName.c_str());
        removeDisksFromKoVM(dmpNodeName);
    }
    dmpNodeName.clear();
    for (int attempt = 0; attempt < policy.attempts; ++attempt) {
        kovmScanDisks(everyDisk);
        result = getKoVMDiskForOSDiskHandler(osDiskName, dmpNodeName);
        if (result == 0)
            break;
        CZE_TRACE(6, "Obtaining dmp nodes failed. need to retry.");
        kovm::pauseFor(policy.pause);
    }
    if (result != 0)
        CZE_TRACE(2, "Warning - obtaining dmp nodes failed even after multiple retries.");
    if (!dmpNodeName.empty())
        CZE_TRACE(6, "After refresh, obtained dmp nodes is [%s].", dmpNodeName.c_str());
    return result;
}
