// The start of an agent and of a client, as far as this library is concerned.
#ifndef QUARRY_BENCHMARKS_PROGRAMS_H_
#define QUARRY_BENCHMARKS_PROGRAMS_H_

#include <cstddef>
#include <string>

namespace quarry::benchmarks {

// The settings that an agent's file must have, to be appended to a workload's text.
extern const char kAgentText[];

// Constructs an AgentCfg with a metabase and a decryption that return at once. Returns the length
// of the password.
std::size_t StartAgent(const std::string& path);

// Calls ClientCfg::SetCfg and returns its status.
int SetClient(const std::string& text);

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_PROGRAMS_H_
