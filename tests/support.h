// What the tests share.
#ifndef QUARRY_TESTS_SUPPORT_H_
#define QUARRY_TESTS_SUPPORT_H_

#include <list>
#include <sstream>
#include <string>

#include "dmconfig/config.h"

// The whole model as one short text: sections in order of creation, options in
// order of names, a comment in parentheses behind what it belongs to:
// "Server(\n; x){path=/a threads=8(\n#y)} client{}". Changes nothing.
std::string Render(quarry::storage::dmconfig::DMConfig* model);

// What operations of the model write to.
struct Outputs {
  std::string value = "old", comment = "old";
  std::list<std::string> names = {"old"};
};

// An operation of the model in words, taken apart: "SetOptionValue s o v".
// "''" is an empty text; "null" at the end stands for a null output, as the
// first ("null -") or the last one ("- null" or "null").
struct Operation {
  explicit Operation(const std::string& words);

  int Run(quarry::storage::dmconfig::DMConfig* model, Outputs* outputs) const;

  std::string name, section, option, value, comment;
  bool has_comment, first_null, last_null;
};

// A folder of its own for a test, gone with all in it at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  // The path of `name` in the folder.
  std::string operator/(const std::string& name) const { return folder_ + '/' + name; }
  void Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const;

 private:
  std::string folder_;
};

// Catches what is written to std::cerr during its life.
class CerrCapture {
 public:
  CerrCapture();
  ~CerrCapture();
  CerrCapture(const CerrCapture&) = delete;
  CerrCapture& operator=(const CerrCapture&) = delete;
  std::string text() const { return caught_.str(); }

 private:
  std::ostringstream caught_;
  std::streambuf* const original_;
};

#endif  // QUARRY_TESTS_SUPPORT_H_
