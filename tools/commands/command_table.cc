#include "tools/commands/command.h"

namespace quarry::tool {

// Each is defined in the command's own file.
Declaration DeclareCheck();
Declaration DeclareList();
Declaration DeclareGet();
Declaration DeclareSurvey();
Declaration DeclareSet();
Declaration DeclareUnset();
Declaration DeclareRename();
Declaration DeclareEdit();
Declaration DeclareDump();
Declaration DeclareDiff();
Declaration DeclareClient();
Declaration DeclareAgent();
Declaration DeclareKeygen();
Declaration DeclareSeal();

const std::vector<Command>& Commands() {
  static const std::vector<Command> kCommands = {
      {"check", "Show every error and warning in files", true, DeclareCheck},
      {"list", "Show the sections, or the options of one section", true, DeclareList},
      {"get", "Show the value of one option", true, DeclareGet},
      {"survey", "Show the value of one option in many files", true, DeclareSurvey},
      {"set", "Set options, leaving other lines as they are", true, DeclareSet},
      {"unset", "Remove an option or a section, leaving other lines as they are", true,
       DeclareUnset},
      {"rename", "Rename a section or an option at every line where it is", true, DeclareRename},
      {"edit", "Edit a file with $VISUAL or $EDITOR and check it before it is saved", false,
       DeclareEdit},
      {"dump", "Show a file as a program would save it", true, DeclareDump},
      {"diff", "Show what differs between files for programs", true, DeclareDiff},
      {"client", "Show what a client reads from a file", true, DeclareClient},
      {"agent", "Start an agent for a trial and show its settings", false, DeclareAgent},
      {"keygen", "Make a key file to seal passwords with", false, DeclareKeygen},
      {"seal", "Seal the password on standard input with a key", false, DeclareSeal},
  };
  return kCommands;
}

}  // namespace quarry::tool
