#ifndef CZEEXPORT_H
#define CZEEXPORT_H

/// Marks what leaves a shared library. Everything is built with hidden visibility, so a class that
/// the host, the framework and the library exchange carries this mark.
#define CZE_EXPORT __attribute__((visibility("default")))

/// Keeps a private operation of an exported class inside its library.
#define CZE_LOCAL __attribute__((visibility("hidden")))

#endif
