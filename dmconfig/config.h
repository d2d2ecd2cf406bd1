// DMConfig holds one configuration text in memory: named sections, each with a comment and with
// named options; each option with a value and a comment.
//
//   DMConfig model;
//   model.SetOptionValue("Server", "threads", "4");
//   model.SetOptionValue("SERVER", "Threads", "8");      // the same option
//   std::string value, comment;
//   model.GetOptionValue("server", "threads", &value, &comment);  // value "8"
//
// Names are compared without regard to the case of ASCII letters and keep the case in which they
// were first used. Whitespace is part of a name. Two names that agree up to a NUL byte are one
// name. Values and comments are stored unchanged.
//
// THE TRAP: every operation that names a section creates it when it is missing, empty and last in
// order, even one that only reads or deletes. The exceptions are HasSection and GetSectionList;
// call HasSection first where it matters.
//
// Statuses (dmconfig/status.h): every operation that returns `int` returns 0 or
//   -1  an empty section or option name, or a null output pointer; checked
//       first, before anything is created or any output is written
//   -5  memory ran out while the section was being created; the model is
//       unchanged and no output is written. Deletions return 0 in this case
// and what the operation's own comment adds. An output is written only when the result is 0.
// Memory that runs out anywhere else: std::bad_alloc passes to the caller and the model stays
// consistent; each comment says what remains.
//
// Threads: one thread at a time may use a DMConfig, for reading too, since a read may create a
// section. Separate objects share nothing.
//
// Compile programs with the standard library's usual containers, as the library is: with
// -D_GLIBCXX_DEBUG they differ, and the program does not link, or crashes.
#ifndef QUARRY_DMCONFIG_CONFIG_H_
#define QUARRY_DMCONFIG_CONFIG_H_

#include <forward_list>
#include <list>
#include <map>
#include <string>
#include <string_view>

#include "../platform/export.h"
#include "string_case_cmp.h"

namespace quarry::storage::dmconfig {

// What is stored for one option. An empty comment means that there is none.
struct OptionValue {
  // Both texts are empty.
  OptionValue() = default;
  // Copies the texts.
  OptionValue(std::string_view value_text, std::string_view comment_text)
      : value(value_text), comment(comment_text) {}

  std::string value;    // the text after the "="
  std::string comment;  // in the form of a section's
};

// What is stored for one section. A comment read from a text begins with a line feed and has none
// at its end; an empty one means that there is none.
struct SectionOptionMap {
  // Several lines are one text, separated by line feeds.
  std::string comment;
  // The options by name, in the case of first use.
  std::map<std::string, OptionValue, StringCaseCmp> option_map;
};

// One configuration text. The top of dmconfig/config.h says what holds for all operations.
class QUARRY_EXPORT DMConfig {
 public:
  DMConfig() = default;
  ~DMConfig();
  DMConfig(const DMConfig&) = delete;
  DMConfig& operator=(const DMConfig&) = delete;

  // Removes every section. The model is then like a new one; pointers that GetOptionMap returned
  // are invalid.
  void Reset();

  // Returns the section's record, creating the section when it is missing. The record belongs to
  // the model; the pointer stays valid until Reset or the model's destruction, and its fields may
  // be changed through it. Null when memory ran out; the model is unchanged then. This is the only
  // operation that accepts an empty name, which is a section like any other here.
  SectionOptionMap* GetOptionMap(const std::string& section);

  // Returns 0 when the section exists, else -6. Never creates anything.
  int HasSection(const std::string& section);

  // Replaces the caller's list with the names of all sections, in the order in which they were
  // created and in the case of their creation. -1: null list. Never creates anything. On
  // std::bad_alloc the contents of the list are unspecified.
  int GetSectionList(std::list<std::string>* sections);

  // Copies the section's comment to `*comment`.
  int GetSectionComment(const std::string& section, std::string* comment);

  // Replaces the section's comment; an empty one clears it. On std::bad_alloc the old comment
  // stays (in a section that was missing: none).
  int SetSectionComment(const std::string& section, const std::string& comment);

  // Clears the section's comment.
  int DelSectionComment(const std::string& section);

  // Sets the option's value, adding the option when it is missing. Its comment stays. On
  // std::bad_alloc the old value stays; an option added by this call may stay too, with an empty
  // value.
  int SetOptionValue(const std::string& section, const std::string& option,
                     const std::string& value);

  // Sets value and comment together; an empty comment clears the stored one. On std::bad_alloc
  // both stay unchanged; an option added by this call may stay too, with both empty.
  int SetOptionValue(const std::string& section, const std::string& option,
                     const std::string& value, const std::string& comment);

  // Sets the option's comment, adding the option with an empty value when it is missing. Its value
  // stays. On std::bad_alloc the old comment stays; an option added by this call may stay too, with
  // both empty.
  int SetOptionComment(const std::string& section, const std::string& option,
                       const std::string& comment);

  // Copies the option's value and comment to the caller's strings; both are required. 0, or
  //   -7  the section has no such option; nothing is added to it
  // On std::bad_alloc `*value` may have been written already.
  int GetOptionValue(const std::string& section, const std::string& option, std::string* value,
                     std::string* comment);

  // Copies the section's comment to `*comment` and replaces the caller's list with the section's
  // option names in ascending order of StringCaseCmp. On std::bad_alloc the list may be partly
  // replaced.
  int GetSectionOptionList(const std::string& section, std::string* comment,
                           std::list<std::string>* options);

  // Removes the option with its value and comment; 0 also when it is missing. The section stays
  // when its last option is removed.
  int DelOption(const std::string& section, const std::string& option);

  // Clears the option's comment; 0 also when there is no such option, which is not added.
  int DelOptionComment(const std::string& section, const std::string& option);

 private:
  friend class DMConfigFile;  // walks the records in order

  std::map<std::string, SectionOptionMap*, StringCaseCmp> section_map_;
  std::list<std::string> section_list_;  // in order of creation
  // What section_map_ points to, the last section first. So it is freed first, and the C library
  // joins each free block with the rest of the heap at once.
  std::forward_list<SectionOptionMap> records_;
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_CONFIG_H_
