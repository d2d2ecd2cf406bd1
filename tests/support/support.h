// What the tests share.
#ifndef QUARRY_TESTS_SUPPORT_SUPPORT_H_
#define QUARRY_TESTS_SUPPORT_SUPPORT_H_

#include <functional>
#include <string>

#include "dmconfig/config.h"
#include "tests/support/streams.h"

// The text of a key file, and "correct horse" sealed with that key and the nonce 0x40, 0x41, ... by
// another implementation of both ciphers.
inline const std::string kKeyFile =
    "quarry-config-key:v1:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8\n";
inline const std::string kSealed =
    "sealed:v1:1J0pvUBBQkNERUZHSElKS0xNTk9QUVJTVFVWV7dWdwK1gw0255v1zcocZZKSuq3EE1lTmmox_UUJBCOQFvkC"
    "blWShBD_svRMCtra8ZtrfehvhbSctvwI9BOyTFQXgFQ_kvFhMs8Ic3cTnFQ4";

// The whole model as one short text: sections in order of creation, options in
// order of names, each with its comment in parentheses:
// "Server(\n; x){path=/a threads=8(\n#y)} client{}". Changes nothing.
std::string Render(quarry::storage::dmconfig::DMConfig* model);

// The text with every `from` replaced by `to`.
std::string ReplaceAll(std::string text, const std::string& from, const std::string& to);

// What a function left on the stack, where later calls may have overwritten the beginnings of
// texts, and in the registers right after its end.
struct Remains {
  std::string stack;
  std::string registers;
};

// Runs `work` in a new thread. For one thread at a time.
Remains RemainsOf(const std::function<void()>& work);

// A new folder for a test, removed with all its files at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(TempFolder&&) = delete;
  // The path of `name` in the folder.
  std::string Path(const std::string& name) const { return folder_ + '/' + name; }
  void Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const;

 private:
  std::string folder_;
};

#endif  // QUARRY_TESTS_SUPPORT_SUPPORT_H_
