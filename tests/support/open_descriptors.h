#ifndef TESTS_SUPPORT_OPEN_DESCRIPTORS_H
#define TESTS_SUPPORT_OPEN_DESCRIPTORS_H

#include <set>
#include <string>

/// This process's open descriptors, each with its file.
std::set<std::string> openDescriptors();

#endif
