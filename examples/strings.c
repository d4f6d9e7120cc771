/* A C program that uses the bounded string functions: the node of a disk's partition. */

#include <stdio.h>

#include "vstring/Y_strings.h"

/* Writes the path of a partition, and returns whether it fits. */
static int partition_path(char* path, size_t size, const char* disk, unsigned int number)
{
    if (disk[Y_strlcpy(path, disk, size)] != '\0')
        return 0;
    char suffix[16];
    Y_snprintf(suffix, sizeof suffix, "p%u", number);
    return suffix[Y_strlcat(path, suffix, size)] == '\0';
}

int main(void)
{
    char path[24];
    const char* const disks[] = {"/dev/mapper/mpathb", "/dev/mapper/a_name_that_is_too_long"};
    for (size_t i = 0; i < 2; ++i) {
        if (partition_path(path, sizeof path, disks[i], 12))
            printf("%s\n", path);
        else
            printf("%s: no room for its partition\n", disks[i]);
    }
    return 0;
}
