#include "tools/declare_commands.h"

#include <algorithm>
#include <memory>
#include <string>

#include "tools/check_report.h"
#include "tools/commands.h"

namespace quarry::tool {

namespace {

using Action = std::function<int()>;

constexpr char kLiteralMark = '\x01';

std::string Marked(const std::string& word) {
  const bool marks = !word.empty() && (word[0] == '[' || word[0] == kLiteralMark);
  return marks ? kLiteralMark + word : word;
}

std::string Unmarked(const std::string& word) {
  return !word.empty() && word[0] == kLiteralMark ? word.substr(1) : word;
}

// What declares a command has its request; `run` gets it.
template <typename Request>
Action Running(const std::shared_ptr<Request>& request, int (*run)(const Request&)) {
  return [request, run] { return run(*request); };
}

void AddAs(CLI::App* command, std::string* as) {
  command->add_option("--as", *as, "Check also what this program takes: agent or client")
      ->type_name("PROGRAM")
      ->check(CLI::IsMember({"agent", "client"}));
}

void AddDryRun(CLI::App* command, bool* dry_run) {
  command->add_flag("--dry-run", *dry_run, "Show the edit as a unified diff, do not make it");
}

Action DeclareCheck(CLI::App* command) {
  const auto request = std::make_shared<CheckRequest>();
  command->add_option("FILE", request->files, "Files to check")->required();
  command->add_flag("--strict", request->strict, "Let warnings count as errors");
  CLI::Option* const format =
      command
          ->add_option("--format", request->format,
                       "How findings are shown: text, json, sarif or github")
          ->type_name("FORMAT")
          ->check(CLI::IsMember(CheckFormats()));
  command
      ->add_flag_callback(
          "--json", [request] { request->format = "json"; }, "The same as --format=json")
      ->excludes(format);
  AddAs(command, &request->as);
  return [request] {
    std::transform(request->files.begin(), request->files.end(), request->files.begin(), Unmarked);
    return RunCheck(*request);
  };
}

Action DeclareList(CLI::App* command) {
  const auto request = std::make_shared<ListRequest>();
  command->add_option("FILE", request->file, "File to read")->required();
  command->add_option("SECTION", request->section, "Show this section only");
  command->add_flag("--origin", request->origin, "Show every option with its value and line");
  command->add_flag("--json", request->json,
                    "Print sections, options, values and comments as JSON");
  return Running(request, RunList);
}

Action DeclareGet(CLI::App* command) {
  const auto request = std::make_shared<GetRequest>();
  command->add_option("FILE", request->file, "File to read")->required();
  command->add_option("SECTION", request->section, "Its section")->required();
  command->add_option("OPTION", request->option, "Its option")->required();
  command
      ->add_option("--default", request->default_text, "Show this text when the option is absent")
      ->type_name("VALUE");
  return Running(request, RunGet);
}

Action DeclareSet(CLI::App* command) {
  const auto request = std::make_shared<SetRequest>();
  command->add_option("FILE", request->file, "File to edit")->required();
  command->add_option("SECTION", request->section, "The section");
  command->add_option("OPTION", request->option, "Its option");
  command->add_option("VALUE", request->value, "The option's new value");
  command->add_option("--from", request->changes, "Set all options of this file, or none")
      ->type_name("CHANGES");
  command->add_flag("--create", request->create, "Make a new file when there is none");
  AddDryRun(command, &request->dry_run);
  return Running(request, RunSet);
}

Action DeclareUnset(CLI::App* command) {
  const auto request = std::make_shared<UnsetRequest>();
  command->add_option("FILE", request->file, "File to edit")->required();
  command->add_option("SECTION", request->section, "Its section")->required();
  command->add_option("OPTION", request->option, "The option")->required();
  command->add_flag("--with-comment", request->with_comment,
                    "Remove also the comment lines directly above it");
  AddDryRun(command, &request->dry_run);
  return Running(request, RunUnset);
}

Action DeclareEdit(CLI::App* command) {
  const auto request = std::make_shared<EditRequest>();
  command->add_option("FILE", request->file, "File to edit")->required();
  AddAs(command, &request->as);
  return Running(request, RunEdit);
}

Action DeclareDump(CLI::App* command) {
  const auto request = std::make_shared<DumpRequest>();
  command->add_option("FILE", request->file, "File to read")->required();
  command->add_flag("--json", request->json, "Print it as JSON");
  command->add_option("-o", request->output, "Write it to this file")->type_name("OUT");
  return Running(request, RunDump);
}

Action DeclareDiff(CLI::App* command) {
  const auto request = std::make_shared<DiffRequest>();
  command->add_option("A", request->left, "One file")->required();
  command->add_option("B", request->right, "The other file")->required();
  command->add_flag("--json", request->json, "Print the differences as JSON");
  return Running(request, RunDiff);
}

Action DeclareClient(CLI::App* command) {
  const auto request = std::make_shared<ClientRequest>();
  command->add_option("FILE", request->file, "The client's file")->required();
  command->add_flag("--json", request->json, "Print it as JSON");
  return Running(request, RunClient);
}

Action DeclareAgent(CLI::App* command) {
  const auto request = std::make_shared<AgentRequest>();
  command->add_option("FILE", request->file, "The agent's file")->required();
  command->add_flag("--json", request->json, "Print the settings as JSON");
  return Running(request, RunAgent);
}

Action DeclareKeygen(CLI::App* command) {
  const auto request = std::make_shared<KeyRequest>();
  command->add_option("DIR", request->folder, "Folder for the key file auth.key")->required();
  return Running(request, RunKeygen);
}

Action DeclareSeal(CLI::App* command) {
  const auto request = std::make_shared<KeyRequest>();
  command->add_option("DIR", request->folder, "Folder with the key file auth.key")->required();
  return Running(request, RunSeal);
}

}  // namespace

const std::vector<Command>& Commands() {
  static const std::vector<Command> kCommands = {
      {"check", "Show every error and warning in files", true, DeclareCheck},
      {"list", "Show the sections of a file, or one section's options", true, DeclareList},
      {"get", "Show the value of one option", true, DeclareGet},
      {"set", "Set options, leaving every other line as it is", true, DeclareSet},
      {"unset", "Remove an option, leaving every other line as it is", true, DeclareUnset},
      {"edit", "Edit a file with $VISUAL or $EDITOR and check it before it is saved", false,
       DeclareEdit},
      {"dump", "Show a file as a program would save it", true, DeclareDump},
      {"diff", "Show what differs between two files for programs", true, DeclareDiff},
      {"client", "Show what a client takes from a file", true, DeclareClient},
      {"agent", "Start an agent for a trial and show its settings", false, DeclareAgent},
      {"keygen", "Make a key file to seal passwords with", false, DeclareKeygen},
      {"seal", "Seal the password on standard input with a key", false, DeclareSeal},
  };
  return kCommands;
}

std::string MarkedIfListed(const std::string& command, const std::string& word) {
  return command == "check" ? Marked(word) : word;
}

}  // namespace quarry::tool
