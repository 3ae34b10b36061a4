#include "tests/host/macho_builder.h"

#include <cstring>

namespace macho_test {

namespace {

constexpr std::uint32_t kPage = 0x1000;

struct Section {
  const char* name;
  std::uint32_t address;
  const Bytes& content;
  std::uint32_t flags;
};

Bytes Segment(const char* name, std::uint32_t address, std::uint32_t fileSize,
              std::uint32_t protection, std::uint32_t flags, const std::vector<Section>& sections) {
  Bytes out;
  out.Word(1).Word(static_cast<std::uint32_t>(56 + 68 * sections.size())).Name(name);
  out.Word(address).Word((fileSize + kPage - 1) / kPage * kPage);
  out.Word(address - kLinked).Word(fileSize).Word(7).Word(protection);
  out.Word(static_cast<std::uint32_t>(sections.size())).Word(flags);
  for (const Section& section : sections) {
    out.Name(section.name).Name(name).Word(section.address);
    out.Word(static_cast<std::uint32_t>(section.content.size())).Word(section.address - kLinked);
    out.Word(2).Word(0).Word(0).Word(section.flags).Word(0).Word(0);
  }
  return out;
}

Bytes Named(std::uint32_t command, const std::string& name) {
  Bytes out;
  const auto size = static_cast<std::uint32_t>((24 + name.size() + 4) / 4 * 4);
  out.Word(command).Word(size).Word(24).Word(2).Word(0x10000).Word(0x10000).Text(name);
  out.resize(size);
  return out;
}

}  // namespace

Bytes& Bytes::Byte(unsigned value) {
  push_back(static_cast<std::uint8_t>(value));
  return *this;
}

Bytes& Bytes::Word(std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) Byte(value >> shift & 0xFF);
  return *this;
}

Bytes& Bytes::Uleb(std::uint64_t value) {
  for (; value > 0x7F; value >>= 7) Byte((value & 0x7F) | 0x80u);
  return Byte(static_cast<unsigned>(value));
}

Bytes& Bytes::Sleb(std::int64_t value) {
  for (; value > 0x3F || value < -0x40; value >>= 7) Byte((value & 0x7F) | 0x80u);
  return Byte(value & 0x7F);
}

Bytes& Bytes::Text(const std::string& text) {
  for (const char letter : text) Byte(static_cast<unsigned char>(letter));
  return Byte(0);
}

Bytes& Bytes::Name(const std::string& text) {
  for (const char letter : text) Byte(static_cast<unsigned char>(letter));
  resize(size() + 16 - text.size());
  return *this;
}

Bytes& Bytes::Add(const std::vector<std::uint8_t>& bytes) {
  insert(end(), bytes.begin(), bytes.end());
  return *this;
}

void Bytes::SetWord(std::size_t offset, std::uint32_t value) {
  std::memcpy(data() + offset, &value, sizeof value);
}

std::uint32_t Bytes::WordAt(std::size_t offset) const {
  std::uint32_t value = 0;
  std::memcpy(&value, data() + offset, sizeof value);
  return value;
}

Bytes Library::Build(std::vector<std::size_t>* commands) const {
  Bytes tables;
  const auto place = [&](const Bytes& part) {
    Bytes where;
    where.Word(static_cast<std::uint32_t>(kTables - kLinked + tables.size()));
    where.Word(static_cast<std::uint32_t>(part.size()));
    tables.Add(part);
    return where;
  };
  Bytes loaderInfo;
  loaderInfo.Word(0x80000022).Word(48);
  for (const Bytes* part : {&rebase, &bind, &weakBind, &lazyBind, &exports}) {
    loaderInfo.Add(place(*part));
  }
  // One symbol, whose name is the tables' last bytes.
  Bytes symbols = place(Bytes().Word(1).Word(0).Word(0));
  symbols.SetWord(4, 1);
  Bytes symbolTable;
  symbolTable.Word(2).Word(24).Add(symbols).Add(place(Bytes().Text("").Text("_f")));

  std::vector<Bytes> all = {
      Segment("__TEXT", kLinked, kPage, 5, 0,
              {{"__text", kCode, code, 0x80000400}, {"__eh_frame", kFrames, frames, 0x6800000B}}),
      Segment("__DATA", kData, kPage, dataProtection, dataFlags,
              {{"__data", kData, data, 0},
               {"__mod_init_func", kStarters, starters, 9},
               {"__mod_term_func", kEnders, enders, 10}}),
      Segment("__LINKEDIT", kTables, static_cast<std::uint32_t>(tables.size()), 1, 0, {}),
      loaderInfo,
      symbolTable,
      Named(0xD, "/usr/lib/trial.dylib"),
  };
  for (const std::string& library : libraries) all.push_back(Named(0xC, library));

  Bytes body;
  for (const Bytes& command : all) {
    if (commands != nullptr) commands->push_back(28 + body.size());
    body.Add(command);
  }
  body.Add(moreCommands);
  Bytes file;
  file.Word(magic).Word(processor).Word(3).Word(kind);
  file.Word(static_cast<std::uint32_t>(all.size()) + moreCommandsCount);
  file.Word(static_cast<std::uint32_t>(body.size())).Word(0x85).Add(body);
  const auto put = [&](std::uint32_t address, const Bytes& content) {
    file.resize(address - kLinked);
    file.Add(content);
  };
  put(kCode, code);
  put(kFrames, frames);
  put(kData, data);
  put(kStarters, starters);
  put(kEnders, enders);
  put(kTables, tables);
  return file;
}

Bytes ExportTree(const std::vector<Export>& exports) {
  // The root has an edge for each whole name. Offsets of children take three bytes always.
  std::size_t offset = 2;
  for (const Export& entry : exports) offset += entry.name.size() + 1 + 3;
  Bytes root, nodes;
  root.Uleb(0).Byte(static_cast<unsigned>(exports.size()));
  for (const Export& entry : exports) {
    const std::size_t child = offset + nodes.size();
    root.Text(entry.name).Byte((child & 0x7F) | 0x80u).Byte((child >> 7 & 0x7F) | 0x80u);
    root.Byte(static_cast<unsigned>(child >> 14));
    const Bytes content = Bytes().Uleb(entry.flags).Uleb(entry.address - kLinked);
    nodes.Uleb(content.size()).Add(content).Byte(0);
  }
  return root.Add(nodes);
}

Bytes Rebases(const std::vector<Pointer>& pointers) {
  Bytes out;
  for (const Pointer& pointer : pointers) {
    out.Byte(0x10 | pointer.kind);
    out.Byte(0x20 | (pointer.address - kLinked) / kPage).Uleb(pointer.address % kPage).Byte(0x51);
  }
  return out.Byte(0);
}

Bytes Binds(const std::vector<Import>& imports) {
  Bytes out;
  for (const Import& import : imports) {
    out.Byte((import.library > 0 ? 0x10u : 0x30u) | (static_cast<unsigned>(import.library) & 15u));
    out.Byte(import.weak ? 0x41 : 0x40).Text(import.symbol).Byte(0x50 | import.kind);
    out.Byte(0x60).Sleb(import.addend);
    out.Byte(0x70 | (import.address - kLinked) / kPage).Uleb(import.address % kPage).Byte(0x90);
  }
  return out.Byte(0);
}

}  // namespace macho_test
