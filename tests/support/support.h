// What the tests share.
#ifndef QUARRY_TESTS_SUPPORT_SUPPORT_H_
#define QUARRY_TESTS_SUPPORT_SUPPORT_H_

#include <list>
#include <string>

#include "dmconfig/config.h"
#include "tests/support/streams.h"

// The whole model as one short text: sections in order of creation, options in
// order of names, a comment in parentheses behind what it belongs to:
// "Server(\n; x){path=/a threads=8(\n#y)} client{}". Changes nothing.
std::string Render(quarry::storage::dmconfig::DMConfig* model);

// A folder of its own for a test, gone with all in it at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  // The path of `name` in the folder.
  std::string Path(const std::string& name) const { return folder_ + '/' + name; }
  void Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const;

 private:
  std::string folder_;
};

#endif  // QUARRY_TESTS_SUPPORT_SUPPORT_H_
