// A text in the hands of the user's own editor.
#ifndef QUARRY_TOOLS_EDITOR_H_
#define QUARRY_TOOLS_EDITOR_H_

#include <string>

namespace quarry::tool {

// A copy of a text that only the user can read, in a folder of its own. It may
// hold work, so it stays until it is discarded.
class EditorCopy {
 public:
  // `name` is that of the copy; editors choose their mode by it. Throws
  // ToolError.
  EditorCopy(const std::string& name, const std::string& text);
  EditorCopy(const EditorCopy&) = delete;
  EditorCopy& operator=(const EditorCopy&) = delete;

  // Runs $VISUAL, $EDITOR or vi on the copy and waits for its end; false when
  // the editor fails. Throws ToolError. A signal that ends this program waits
  // for the editor; where the copy is is said then.
  bool Edit() const;

  std::string Read() const;

  // Removes the copy and its folder.
  void Discard();
  bool is_discarded() const { return discarded_; }

  // The path, for messages.
  std::string Place() const;

 private:
  std::string folder_;
  std::string path_;
  bool discarded_ = false;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_EDITOR_H_
