// The statuses of the model, the reader and the writer. 0 is success, failures are negative. An
// operation that passes on the status of another one does not change it, so a caller may compare
// with these names wherever it came from.
#ifndef QUARRY_DMCONFIG_STATUS_H_
#define QUARRY_DMCONFIG_STATUS_H_

namespace quarry::storage::dmconfig {

// Success.
inline constexpr int kStatusOk = 0;

// A null pointer, or an empty section, option or file name.
inline constexpr int kStatusInvalidArgument = -1;

// A line that is invalid in the text format; reading stopped there.
inline constexpr int kStatusInvalidLine = -2;

// A stream failed: a file could not be opened, or a read or write failed.
inline constexpr int kStatusStreamFailed = -4;

// Memory ran out while a section was being created.
inline constexpr int kStatusOutOfMemory = -5;

// There is no such section; only HasSection returns this.
inline constexpr int kStatusNoSuchSection = -6;

// The section has no such option.
inline constexpr int kStatusNoSuchOption = -7;

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_STATUS_H_
