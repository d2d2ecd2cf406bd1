// A valid text together with the model that a load makes of it.
#ifndef QUARRY_SETTINGS_DOCUMENT_H_
#define QUARRY_SETTINGS_DOCUMENT_H_

#include <list>
#include <string>
#include <utility>

#include "dmconfig/config.h"

namespace quarry::settings {

// One thread at a time may use a Document.
class Document {
 public:
  // `file` is the name for messages. Throws Error: kInvalidText with the first invalid line; `text`
  // is left as it was then.
  Document(std::string file, std::string&& text);

  const std::string& file() const { return file_; }
  const std::string& text() const { return text_; }
  // Gives the text away; nothing but the model's operations may be called after it.
  std::string&& TakeText() { return std::move(text_); }

  // The names of all sections, in order of creation.
  std::list<std::string> Sections();
  // The section's name as the text first spells it; empty when there is no such section.
  std::string StoredName(const std::string& section);
  // The names of a section's options, in order; empty when there is no such section.
  std::list<std::string> Options(const std::string& section);

  bool HasSection(const std::string& section);
  bool Has(const std::string& section, const std::string& option);

  // Null when there is no such option. The result is the model's own.
  const storage::dmconfig::OptionValue* Find(const std::string& section, const std::string& option);

  // The section must exist; the result is the model's own.
  const storage::dmconfig::SectionOptionMap& Record(const std::string& section);

  // The text that the library's writer makes of the model.
  std::string DumpText();

  // The model itself, for what the operations above do not offer.
  storage::dmconfig::DMConfig* model() { return &model_; }

 private:
  const std::string file_;
  std::string text_;
  storage::dmconfig::DMConfig model_;
};

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_DOCUMENT_H_
