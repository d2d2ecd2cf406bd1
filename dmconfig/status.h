// The statuses of the model, the reader and the writer. 0 is success, failures
// are negative. A status that one operation passes on from another keeps its
// number, so a caller may compare with these names wherever it came from.
#ifndef QUARRY_DMCONFIG_STATUS_H_
#define QUARRY_DMCONFIG_STATUS_H_

namespace quarry::storage::dmconfig {

// It was done.
inline constexpr int kStatusOk = 0;

// A null pointer, an empty section or option name, an empty file name.
inline constexpr int kStatusInvalidArgument = -1;

// A line that the text format does not allow; reading stopped there.
inline constexpr int kStatusInvalidLine = -2;

// A stream that cannot be used: a file that does not open, a failed read.
inline constexpr int kStatusStreamFailed = -4;

// A section's record could not be obtained: memory is exhausted.
inline constexpr int kStatusOutOfMemory = -5;

// There is no such section; only HasSection says so.
inline constexpr int kStatusNoSuchSection = -6;

// The section has no such option.
inline constexpr int kStatusNoSuchOption = -7;

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_STATUS_H_
