// A text in the hands of the user's own editor.
#ifndef QUARRY_TOOLS_EDITOR_H_
#define QUARRY_TOOLS_EDITOR_H_

#include <string>

namespace quarry::tool {

// A copy of a text that only the user can read, in a folder of its own. It goes
// with this object unless it is kept.
class EditorCopy {
 public:
  // `name` is that of the copy; editors choose their mode by it. Throws
  // ToolError.
  EditorCopy(const std::string& name, const std::string& text);
  ~EditorCopy();
  EditorCopy(const EditorCopy&) = delete;
  EditorCopy& operator=(const EditorCopy&) = delete;

  // Runs $VISUAL, $EDITOR or vi on the copy and waits for its end; false when
  // the editor fails. Throws ToolError.
  bool Edit() const;

  std::string Read() const;

  // Leaves the copy where it is, and returns the remark that says so.
  std::string Keep();

 private:
  std::string folder_;
  std::string path_;
  bool kept_ = false;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_EDITOR_H_
