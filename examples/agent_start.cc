// A minimal agent: agent_start CONFIG-FILE.
//
// Creates the metabase service library, loads the configuration, and handles the exception that
// says why a start fails.

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
