#ifndef DOCTOR_DISK_FINDINGS_H
#define DOCTOR_DISK_FINDINGS_H

#include <vector>

#include "doctor/finding.h"
#include "doctor/multipath_disk.h"
#include "multipath/disk_question.h"

namespace command {

/// Whether the volume manager holds one of the disks. Its tools work then.
bool holdsAny(const std::vector<DiskAnswer>& answers);

/// Whether the tools seem not to know one of the disks.
bool mayBeUnknown(const std::vector<DiskAnswer>& answers);

/// Reports what the tools answered about each disk. Failures of the same kind are one finding that
/// names the disks. `knowsOthers`: the volume manager holds some disk of this machine.
void reportAnswers(const std::vector<DiskAnswer>& answers, bool knowsOthers,
                   const FindingReceiver& report);

/// The nodes of the volume manager in these answers with their paths, each once.
std::vector<MultipathDisk> nodesOf(const Inventory& inventory,
                                   const std::vector<DiskAnswer>& answers);

} // namespace command

#endif
