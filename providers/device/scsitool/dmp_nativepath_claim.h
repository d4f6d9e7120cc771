#ifndef DMP_NATIVEPATH_CLAIM_H
#define DMP_NATIVEPATH_CLAIM_H

#include <ace/SString.h>

#include <cstdint>
#include <string>
#include <vector>

#include "dmp_device_claim_base.h"

/// Claim module of the plain SCSI disk driver: names with "/dev/sd" and something behind it.
///
///     partition = disk digit+          /dev/sdc12
///
/// Its claim is the weakest, so that a multipath driver which claims the same path wins. The
/// marker counts anywhere in the path.
class CZE_EXPORT CNativePathClaim : public CDmpDeviceClaimBase {
public:
    CNativePathClaim() = default;
    CNativePathClaim(const CNativePathClaim&) = default;
    CNativePathClaim& operator=(const CNativePathClaim&) = default;
    ~CNativePathClaim() override;

    /// Returns "/dev/sd".
    std::vector<std::string> getDeviceClaimStrings() override;

    /// Returns CLAIM_DEFAULT for a path that holds, and is longer than, one of
    /// `getDeviceClaimStrings` (asked through its virtual slot, so that a derived class claims by
    /// its own list), else CLAIM_NONE.
    std::uint32_t claim(std::string device) override;

    /// Returns whether the path has three or more characters and ends in a digit; the marker is
    /// not looked for.
    bool isPartition(std::string device) override;

    /// Returns `device` up to its first NUL and the number as a signed decimal (4294967295 gives
    /// "-1"), cut to 1023 characters.
    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override;

    /// Returns a path with "/dev/sd" without the digits that end it, and stores their value in
    /// `partnum`: the low 32 bits of a long, which saturates. A path without the marker or without
    /// digits comes back unchanged and `partnum` is left alone.
    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override;

    /// Returns the path that the KoVM volume manager's multipathing layer (KoDMP) uses now for the
    /// disk of `device`; `device` itself, character for character, when KoDMP is not installed or
    /// does not know.
    ///
    /// The disk's node is found with CKoDMPSupport's waiting lookup when `wait` is true, else with
    /// its refreshing lookup, which removes the node from the volume manager each time. A partition
    /// path is looked up as it is. Blocks while the tools run and the lookups pause.
    std::string getActivePath(std::string device, bool wait) override;
};

/// Bridge to KoDMP: runs the volume manager's tools under /usr/sbin and reads their tables.
///
/// Works on bare names, without "/dev/": an operating-system disk name such as sdc, or the name of
/// a KoDMP node. Names go into the command lines as they are, up to their first NUL. Results are 0
/// for success; names come back through references that are emptied first. Operations run on the
/// caller's thread and block while their tools run, 600 seconds each and what it takes to end one
/// that runs longer. Objects have no state besides the trace log handle; one object serves one
/// thread. What the runner throws besides EZeExecPipe passes through. When memory runs out,
/// std::bad_alloc leaves the operation: a command line is run whole or not at all.
class CZE_EXPORT CKoDMPSupport : public koze_pdk_4_4::CZeTraceable {
public:
    CKoDMPSupport() = default;
    CKoDMPSupport(const CKoDMPSupport&) = default;
    CKoDMPSupport& operator=(const CKoDMPSupport&) = default;
    ~CKoDMPSupport() override;

    /// Returns whether the file `directory` + `command`, without the white space around it, can be
    /// executed by the process's real user, as `access` tells: a directory can, too.
    bool isCommandAvailable(ACE_String_Base<char> directory, ACE_String_Base<char> command);

    /// Returns whether KoDMP's administration tool is installed. Asks the file system each time.
    bool isKoDMPInstalled();

    /// Runs one command line (program path and arguments between spaces) and stores its output
    /// lines in `output`, which is emptied first. Returns 0 on success; the runner's number when
    /// the command failed, with the lines collected so far; 1 when it could not be run at all.
    int executeCommand(const char* command, std::vector<std::string>& output);

    /// Finds the KoDMP node that holds an operating-system disk. Returns 0 with the node's name,
    /// which is empty when the tool printed no table or no row; 1 on failure.
    int getKoVMDiskForOSDiskHandler(std::string osDiskName, std::string& dmpNodeName);

    /// Finds the operating-system disk of a node's best path: the first one enabled and active,
    /// else the first enabled one, else the first primary one. Returns 0 with its name, which is
    /// empty when the tool printed no table; 1 on failure and when no path qualifies.
    int getOSDiskHandleForKoVMDisk(std::string dmpNodeName, std::string& osDiskName);

    /// Removes a disk from the volume manager's database. Returns 0 even when that fails.
    int removeDisksFromKoVM(std::string diskName);

    /// Makes the volume manager rescan the disks named, or every disk when no name is given (an
    /// empty list, or one empty name). Returns 0, or 1 when the command failed.
    int kovmScanDisks(const std::vector<std::string>& diskNames);

    /// Looks the node of a disk up, up to four times; after each failure waits 5 seconds and
    /// rescans that disk. Results are those of the last lookup.
    int getKoVMDiskForOSDiskHandler_Waited(std::string osDiskName, std::string& dmpNodeName);

    /// Looks the node of a disk up and removes it from the volume manager; then rescans every disk
    /// and looks the node up again, up to four times, waiting 10 seconds after each failure.
    /// Results are those of the last lookup.
    int getKoVMDiskForOSDiskHandler_Refreshed(std::string osDiskName, std::string& dmpNodeName);

private:
    enum class Answer { failed, noTable, table };

    /// The public operation of this name, which also joins the lines in `text` when there is a log.
    CZE_LOCAL int executeCommand(const char* command, std::vector<std::string>& output,
                                 std::string& text);

    /// Judges the output of a query, and traces what is wrong with it.
    CZE_LOCAL Answer judge(const std::vector<std::string>& lines);
};

#endif
