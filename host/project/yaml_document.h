// A YAML document (JSON is read the same way) as the tree the project loader
// walks. libyaml reads the text; the tree keeps what the loader asks of a
// node: its kind, its text, whether a plain scalar may be typed, and its line.
// A node an alias names is shared, not copied, so the tree stays the size of
// the text whatever the aliases repeat.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zt::host {

constexpr int kMaxYamlDepth = 200;
constexpr long kMaxYamlNodes = 1000000;

class YamlNode {
 public:
  enum class Kind { Null, Scalar, Sequence, Map };
  using Entry = std::pair<const YamlNode*, const YamlNode*>;  // key, value

  bool IsNull() const { return Kind_ == Kind::Null; }
  bool IsScalar() const { return Kind_ == Kind::Scalar; }
  bool IsSequence() const { return Kind_ == Kind::Sequence; }
  bool IsMap() const { return Kind_ == Kind::Map; }

  // A scalar's text; "" for the other kinds.
  const std::string& Scalar() const { return Text_; }
  // Written without quotes, block indicator or tag: `true` or `12` may stand
  // for a Boolean or an integer, while `"12"` is always text.
  bool Plain() const { return Plain_; }
  // A `|` or `>` scalar, whose text starts on the line after the indicator.
  bool Block() const { return Block_; }
  // The 1-based line where the node starts; 0 for a node made in code.
  int Line() const { return Line_; }

  const std::vector<const YamlNode*>& Items() const { return Items_; }
  const std::vector<Entry>& Entries() const { return Entries_; }
  // The value of the first entry whose key is the scalar Key, or nullptr.
  const YamlNode* Find(std::string_view Key) const;

 private:
  friend class YamlDocument;
  Kind Kind_ = Kind::Null;
  bool Plain_ = true;
  bool Block_ = false;
  int Line_ = 0;
  std::string Text_;
  std::vector<const YamlNode*> Items_;
  std::vector<Entry> Entries_;
};

struct YamlProblem {
  int Line = 0;  // 1-based; 0 when the text has no place for it
  std::string Text;
};

class YamlDocument {
 public:
  YamlDocument();  // one null node
  YamlDocument(const YamlDocument&) = delete;
  YamlDocument& operator=(const YamlDocument&) = delete;
  YamlDocument(YamlDocument&&) = default;  // the nodes stay where they are

  // Reads the first document of Text (an empty text is one null node).
  // Problems gets every key written twice in one mapping, and the problem
  // that stopped the reading, if one did: the text is not YAML, it nests
  // deeper than kMaxYamlDepth, an alias names no anchor or a node that
  // contains the alias, or the aliases expand past kMaxYamlNodes nodes.
  // False when the reading stopped: the tree must not be walked.
  bool Read(std::string_view Text, std::vector<YamlProblem>& Problems);

  const YamlNode& Root() const { return *Root_; }

  // Building in code (a script's value for a property): the root becomes a
  // scalar, or a sequence of scalars.
  void SetScalar(std::string Text);
  void SetList(std::vector<std::string> Items);

 private:
  class Builder;
  YamlNode& Add(YamlNode::Kind Kind, int Line);
  YamlNode& First() { return Chunks_.front()[0]; }
  // Nodes are made in chunks that never move, each twice the last up to a
  // limit: a script's value has a few nodes, a project tens of thousands.
  std::vector<std::unique_ptr<YamlNode[]>> Chunks_;
  std::size_t Capacity_ = 0;  // of the last chunk
  std::size_t Used_ = 0;      // nodes made in it
  const YamlNode* Root_ = nullptr;
};

// A Boolean written as text: true/false, yes/no, on/off or y/n, in lower,
// upper or title case. False when Text is none of them.
bool YamlBoolean(std::string_view Text, bool& Value);

}  // namespace zt::host
