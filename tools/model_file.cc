#include "tools/model_file.h"

#include <istream>
#include <new>
#include <sstream>
#include <streambuf>
#include <utility>

#include "dmconfig/config_file.h"
#include "dmconfig/status.h"
#include "tools/check_text.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/nearest.h"
#include "tools/silent_cerr.h"
#include "tools/terminal.h"

namespace quarry::tool {

using storage::dmconfig::DMConfig;
using storage::dmconfig::DMConfigFile;

namespace {

// Lets a stream read a text where it lies.
class TextBuffer : public std::streambuf {
 public:
  explicit TextBuffer(const std::string& text) {
    char* const begin = const_cast<char*>(text.data());  // never written
    setg(begin, begin, begin + text.size());
  }
};

int Load(const std::string& text, DMConfig* model) {
  TextBuffer buffer(text);
  std::istream in(&buffer);
  const SilentCerr silent;
  return DMConfigFile("", "").LoadConfig(&in, model);
}

std::string ErrorsOf(const std::string& text, const std::string& file) {
  std::string report;
  for (const Finding& finding : CheckText(text, file)) {
    if (!finding.IsError()) continue;
    report += FindingReport(finding, file, ColoursOnStandardError());
  }
  return report;
}

// "nearest: "a", "b"", or where to find all names when none is near.
std::string NearestHint(const std::string& wanted, const std::list<std::string>& names,
                        const std::string& list_command) {
  std::string hint;
  for (const std::string& name : NearestNames(wanted, names)) {
    hint += (hint.empty() ? "nearest: " : ", ") + Quoted(name);
  }
  return hint.empty() ? "see all names with: " + list_command : hint;
}

std::string ListCommand(const std::string& file, const std::string& section = "") {
  std::string command = "quarry-config list ";
  if (section.substr(0, 1) == "-") command += "-- ";
  command += file == "-" ? file : ShellQuotedFile(file);
  return section.empty() ? command : command + ' ' + ShellQuoted(section);
}

}  // namespace

ModelFile::ModelFile(const std::string& file) : ModelFile(file, ReadInput(file)) {}

ModelFile::ModelFile(std::string file, std::string text)
    : file_(std::move(file)), text_(std::move(text)) {
  const int status = Load(text_, &model_);
  if (status == storage::dmconfig::kStatusOk) return;
  if (status == storage::dmconfig::kStatusInvalidLine) {
    throw ToolError(kExitFailed, ErrorsOf(text_, file_));
  }
  throw std::bad_alloc();  // all that is left when a text in memory fails
}

std::list<std::string> ModelFile::Sections() {
  std::list<std::string> sections;
  model_.GetSectionList(&sections);
  return sections;
}

bool ModelFile::HasSection(const std::string& section) {
  return model_.HasSection(section) == storage::dmconfig::kStatusOk;
}

std::string ModelFile::StoredName(const std::string& section) {
  DemandSection(section);
  for (const std::string& name : Sections()) {
    if (&Record(name) == &Record(section)) return name;
  }
  return section;
}

std::list<std::string> ModelFile::Options(const std::string& section) {
  DemandSection(section);
  std::string comment;
  std::list<std::string> options;
  model_.GetSectionOptionList(section, &comment, &options);
  return options;
}

bool ModelFile::Has(const std::string& section, const std::string& option) {
  std::string value, comment;
  return HasSection(section) &&
         model_.GetOptionValue(section, option, &value, &comment) == storage::dmconfig::kStatusOk;
}

std::string ModelFile::GetValue(const std::string& section, const std::string& option) {
  DemandSection(section);
  std::string value, comment;
  const int status = model_.GetOptionValue(section, option, &value, &comment);
  if (status != storage::dmconfig::kStatusOk) ThrowNoOption(section, option);
  return value;
}

std::string ModelFile::DumpText() {
  std::ostringstream out;
  const int status = DMConfigFile("", "").DumpConfig(&out, &model_);
  if (status != storage::dmconfig::kStatusOk) throw std::bad_alloc();
  return out.str();
}

const storage::dmconfig::SectionOptionMap& ModelFile::Record(const std::string& section) {
  return *model_.GetOptionMap(section);
}

void ModelFile::DemandSection(const std::string& section) {
  if (HasSection(section)) return;
  throw ToolError(kExitNo, ErrorReport(DisplayName(file_) + ": no section " + Quoted(section),
                                       NearestHint(section, Sections(), ListCommand(file_))));
}

void ModelFile::ThrowNoOption(const std::string& section, const std::string& option) {
  std::string hint = NearestHint(option, Options(section), ListCommand(file_, section));
  for (const std::string& other : Sections()) {
    if (!Has(other, option)) continue;
    hint = "section " + Quoted(other) + " has an option of this name";
    break;
  }
  throw ToolError(kExitNo, ErrorReport(DisplayName(file_) + ": no option " + Quoted(option) +
                                           " in section " + Quoted(section),
                                       hint));
}

}  // namespace quarry::tool
