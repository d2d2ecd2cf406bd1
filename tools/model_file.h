// A valid file as commands work on it: its text and the model that it makes.
#ifndef QUARRY_TOOLS_MODEL_FILE_H_
#define QUARRY_TOOLS_MODEL_FILE_H_

#include <list>
#include <string>

#include "dmconfig/config.h"

namespace quarry::tool {

class ModelFile {
 public:
  // Reads and loads the file, "-" being standard input. Throws ToolError: when
  // it cannot be read, and with all of check's errors when it is not valid.
  explicit ModelFile(const std::string& file);
  // The same for a text that has been read already.
  ModelFile(std::string file, std::string text);

  const std::string& file() const { return file_; }
  const std::string& text() const { return text_; }

  // All names, in order of creation.
  std::list<std::string> Sections();

  bool HasSection(const std::string& section);

  // An absent section throws ToolError (kExitNo) that names the nearest ones;
  // so does GetValue for an absent option. StoredName is the section's name as
  // the file first spells it; Options come in order of names.
  std::string StoredName(const std::string& section);
  std::list<std::string> Options(const std::string& section);
  std::string GetValue(const std::string& section, const std::string& option);
  bool Has(const std::string& section, const std::string& option);

  // What the library's writer makes of the model.
  std::string DumpText();

  // The model itself, for what is not asked above.
  storage::dmconfig::DMConfig* model() { return &model_; }

  // The records are the model's own; the section must exist.
  const storage::dmconfig::SectionOptionMap& Record(const std::string& section);

 private:
  void DemandSection(const std::string& section);
  [[noreturn]] void ThrowNoOption(const std::string& section, const std::string& option);

  const std::string file_;
  const std::string text_;
  storage::dmconfig::DMConfig model_;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_MODEL_FILE_H_
