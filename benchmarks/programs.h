// What an agent and a client do with their configuration, as far as it is ours.
#ifndef QUARRY_BENCHMARKS_PROGRAMS_H_
#define QUARRY_BENCHMARKS_PROGRAMS_H_

#include <cstddef>
#include <string>

namespace quarry::benchmarks {

// What an agent's file must have beside a workload's text.
extern const char kAgentText[];

// Makes an AgentCfg whose metabase answers, and whose password is decrypted, at
// once. The length of what it took.
std::size_t StartAgent(const std::string& path);

// ClientCfg::SetCfg; its status.
int SetClient(const std::string& text);

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_PROGRAMS_H_
