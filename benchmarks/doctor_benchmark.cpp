// What examining a machine without the volume manager costs: reading the names of its block
// devices, looking for lost paths, and comparing the names with the kernel's devices.
#include "benchmarks/many_disks.h"
#include "doctor/examination.h"

int main()
{
    const std::vector<command::Module> modules = command::makeModules({});
    compareMachines("doctor with so many disks", [&](const ManyDisks& machine) {
        command::ExaminationOrder order;
        order.roots = machine.roots();
        order.showProgress = [](const std::string&) {};
        const auto stop = std::make_shared<command::StopRequest>();
        keep(command::examine(order, modules, stop, [](const command::Finding&) {}).disks.size());
    });
}
