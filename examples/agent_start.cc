// How an agent starts: usage: agent_start CONFIG-FILE.
//
// Makes the metabase service library, takes the configuration in one go, and
// handles the one kind of exception that says why it cannot.

#include <iostream>
#include <memory>

#include "config/agent_config.h"
#include "platform/cr_runtime.h"
#include "platform/local/local_metab.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: agent_start CONFIG-FILE\n";
    return 2;
  }
  const auto metab = std::make_shared<storage::utils::LocalMetab>();
  try {
    const storage::config::AgentCfg cfg(metab, argv[1]);
    std::cout << "agent " << cfg.numeric_option() << " of " << cfg.cr_login() << " listens on "
              << cfg.ctrl_address() << '\n'
              << "routing tables: " << cfg.routing_table_r_path() << ", "
              << cfg.routing_table_c_path() << '\n';
  } catch (const Cr_ErrnoException& error) {
    std::cerr << "agent: " << error.what() << " (status " << error.status() << ")\n";
    return 1;
  }
  return 0;
}
