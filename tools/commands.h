// The commands of quarry-config: what the command line gives each and the
// function that carries it out. Each returns the exit status or throws
// ToolError. A file "-" is standard input.
#ifndef QUARRY_TOOLS_COMMANDS_H_
#define QUARRY_TOOLS_COMMANDS_H_

#include <optional>
#include <string>
#include <vector>

namespace quarry::tool {

struct CheckRequest {
  std::vector<std::string> files;
  bool strict = false;          // warnings count as errors
  std::string format = "text";  // as of MakeCheckReport
  std::string as;               // "agent", "client": also what that program would take
};
int RunCheck(const CheckRequest& request);

struct ListRequest {
  std::string file;
  std::optional<std::string> section;
  bool origin = false;
  bool json = false;
};
int RunList(const ListRequest& request);

struct GetRequest {
  std::string file;
  std::string section;
  std::string option;
  std::optional<std::string> default_text;
};
int RunGet(const GetRequest& request);

// An option and its value, or the name of a text whose options are set.
struct SetRequest {
  std::string file;
  std::optional<std::string> section, option, value;
  std::optional<std::string> changes;
  bool create = false;   // the file may be absent
  bool dry_run = false;  // shows the edit and does not make it
};
int RunSet(const SetRequest& request);

struct UnsetRequest {
  std::string file;
  std::string section;
  std::string option;
  bool with_comment = false;
  bool dry_run = false;
};
int RunUnset(const UnsetRequest& request);

struct EditRequest {
  std::string file;
  std::string as;  // as of CheckRequest
};
int RunEdit(const EditRequest& request);

struct DumpRequest {
  std::string file;
  bool json = false;
  std::optional<std::string> output;  // standard output when there is none
};
int RunDump(const DumpRequest& request);

struct DiffRequest {
  std::string left, right;
  bool json = false;
};
int RunDiff(const DiffRequest& request);

struct ClientRequest {
  std::string file;
  bool json = false;
};
int RunClient(const ClientRequest& request);

// A real start of an agent, against the metabase on a folder.
struct AgentRequest {
  std::string file;
  bool json = false;
};
int RunAgent(const AgentRequest& request);

// Keys and sealed passwords. `folder` holds, or is to hold, the key file.
struct KeyRequest {
  std::string folder;
};
int RunKeygen(const KeyRequest& request);
int RunSeal(const KeyRequest& request);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_H_
