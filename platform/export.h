// QUARRY_EXPORT marks the public symbols of a shared library. Everything else is compiled with
// hidden visibility.
#ifndef QUARRY_PLATFORM_EXPORT_H_
#define QUARRY_PLATFORM_EXPORT_H_

// Precedes the declaration of a class, function or variable that users may link to.
#define QUARRY_EXPORT __attribute__((visibility("default")))

#endif  // QUARRY_PLATFORM_EXPORT_H_
