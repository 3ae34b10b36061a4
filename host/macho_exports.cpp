#include "host/macho_exports.h"

#include <cstddef>
#include <vector>

#include "host/macho_format.h"

namespace host {

namespace {

constexpr char kWhose[] = "exported symbols";

struct Edge {
  std::string part;
  std::uint64_t child;
};

struct Node {
  ByteView entry;  // empty when no name ends here
  std::vector<Edge> edges;
};

struct Entry {
  std::uint64_t flags, offset;
};

Entry ReadEntry(ByteView bytes) {
  ByteCursor cursor(bytes);
  const std::uint64_t flags = cursor.Uleb();
  return {flags, cursor.Uleb()};
}

Node ReadNode(ByteView tree, std::uint64_t offset) {
  const ByteView rest = tree.Part(offset, tree.Size() - offset, kWhose);
  ByteCursor cursor(rest);
  Node node;
  const std::uint64_t size = cursor.Uleb();
  node.entry = rest.Part(cursor.Offset(), size, kWhose);
  cursor.Skip(size);
  for (int left = cursor.Byte(); left > 0; --left) {
    Edge edge;
    edge.part = cursor.Text();
    edge.child = cursor.Uleb();
    if (edge.part.empty()) throw FileFault("its exported symbols go on without a letter");
    if (edge.child >= tree.Size()) throw FileFault("its exported symbols lead out of them");
    node.edges.push_back(std::move(edge));
  }
  return node;
}

}  // namespace

MachoExports::MachoExports(ByteView tree) : tree_(tree) {
  if (tree.Size() == 0) return;
  std::vector<bool> reached(tree.Size());
  std::vector<std::uint64_t> waiting = {0};
  reached[0] = true;
  while (!waiting.empty()) {
    const Node node = ReadNode(tree, waiting.back());
    waiting.pop_back();
    if (node.entry.Size() != 0) ReadEntry(node.entry);
    for (const Edge& edge : node.edges) {
      if (reached[edge.child]) throw FileFault("its exported symbols lead in circles");
      reached[edge.child] = true;
      waiting.push_back(edge.child);
    }
  }
}

std::optional<std::uint32_t> MachoExports::Find(const std::string& name) const {
  if (tree_.Size() == 0) return std::nullopt;
  std::size_t matched = 0;
  Node node = ReadNode(tree_, 0);
  while (matched < name.size()) {
    const Edge* next = nullptr;
    for (const Edge& edge : node.edges) {
      if (name.compare(matched, edge.part.size(), edge.part) == 0) next = &edge;
    }
    if (next == nullptr) return std::nullopt;
    matched += next->part.size();
    node = ReadNode(tree_, next->child);
  }
  if (node.entry.Size() == 0) return std::nullopt;
  const Entry entry = ReadEntry(node.entry);
  const std::uint64_t elsewhere = macho::kExportKind | macho::kReexported | macho::kResolver;
  if ((entry.flags & elsewhere) != 0) return std::nullopt;
  return static_cast<std::uint32_t>(entry.offset);
}

}  // namespace host
