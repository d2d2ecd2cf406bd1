// QUARRY_EXPORT marks what a shared library offers to its users. Everything
// else is built with hidden visibility and stays inside.
#ifndef QUARRY_PLATFORM_EXPORT_H_
#define QUARRY_PLATFORM_EXPORT_H_

// Stands before a class, a function or a variable that users may link to.
#define QUARRY_EXPORT __attribute__((visibility("default")))

#endif  // QUARRY_PLATFORM_EXPORT_H_
